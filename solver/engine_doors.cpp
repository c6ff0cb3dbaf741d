#include "solver/check_before_run.h"
#include "solver/engine_library.h"
#include "solver/run.h"

const qvslv::EngineDoors qvslv_engine_doors = {&qvslv::run_model, &qvslv::check_before_run};
