#pragma once

#include <cstddef>
#include <vector>

#include "solver/model/model.h"

namespace qvslv {

/// Divides forces and evaluated elements among threads. Elements that share data in the library of subroutines come to
/// one thread (docs/library.md, "Two elements at a time"): of a track, of a hydro force, of a thrust, and a soil
/// element with its sums. Subroutines that are not the library's own may share anything, and all of them come to one
/// thread.
/// @return  per thread the indices into Model::elements in file order. At most `threads` lists, none of them empty but
///          the only one
std::vector<std::vector<size_t>> divide_calls(const Model& model, int threads);

}  // namespace qvslv
