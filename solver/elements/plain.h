#pragma once

#include "solver/model_file/reading.h"

/// type = "subroutine": an element written as the host calls it, subroutine and `par`.
namespace qvslv {

/// The subroutine that gives the right-hand side of an [[equation]]: called with the forces and not applied. It is
/// written with the same keys as a plain element.
Element read_equation_call(const TableReader& table, Reading& reading);

}  // namespace qvslv
