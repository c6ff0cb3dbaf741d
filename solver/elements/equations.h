#pragma once

#include "solver/model_file/reading.h"

namespace qvslv {

/// Adds the elements of equations whose right-hand side is a subroutine's result. They stand behind all others: an
/// equation of a track reads what the track's element left behind in the same round of calls.
void add_equation_elements(Reading& reading);

}  // namespace qvslv
