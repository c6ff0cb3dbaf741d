#pragma once

#include "solver/model_file/reading.h"

namespace qvslv {

/// Adds the elements of equations whose right-hand side is a subroutine's result. They follow all other elements,
/// because the equation of a track reads sums that the track's element leaves in the same round of calls.
void add_equation_elements(Reading& reading);

}  // namespace qvslv
