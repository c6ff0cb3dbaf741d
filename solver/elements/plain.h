#pragma once

#include "solver/model_file/reading.h"

/// type = "subroutine": an element written as the host calls it, subroutine and `par`.
namespace qvslv {

/// The element that gives the right-hand side of an [[equation]]. It is called with the forces, but applies none. The
/// equation has the same keys for it as a plain element.
Element read_equation_call(const TableReader& table, Reading& reading);

}  // namespace qvslv
