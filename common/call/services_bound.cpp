#include "qvbrisk/services.h"

namespace {

// One reference to every service that the library may call, so that all ten are bound while the host loads the library:
// a host that lacks one learns its name then and not in the middle of a run.
[[gnu::used]] const void* const k_bound_services[] = {
    reinterpret_cast<const void*>(&sysary),       reinterpret_cast<const void*>(&sysfnc),
    reinterpret_cast<const void*>(&get_string_s), reinterpret_cast<const void*>(&GET_QVSPATH_S),
    reinterpret_cast<const void*>(&stop_solver),  reinterpret_cast<const void*>(&THROW_ERROR),
    reinterpret_cast<const void*>(&AKISPL),       reinterpret_cast<const void*>(&GTUNTS),
    reinterpret_cast<const void*>(&STEP),         reinterpret_cast<const void*>(&get_mass)};

}  // namespace
