#pragma once

#include <vector>

#include "solver/model_file/layouts.h"

namespace qvslv {

/// Sets what an element of one of the thirteen subroutines has unless the file says otherwise: result length, columns,
/// contact points, and marker, axes, reaction and road from the ids in `par`. An element of another subroutine only
/// gets columns, if it has none yet. Throws std::runtime_error when a count in `par` is no sensible number.
void set_defaults(Element& element, const Model& model);

/// Columns of an element's result, names and units: those of its layout, or one per value of an unknown subroutine.
std::vector<ResultColumn> default_columns(const Element& element, const Model& model);

/// Id of a marker as an entry of `par`.
/// @param marker  index into Model::markers
double marker_id(const Model& model, int marker);

}  // namespace qvslv
