#pragma once

#include <vector>

#include "solver/model/model.h"

namespace qvslv {

/// A wheel or plate on soil (qvsoil_interaction).
struct SoilContact {
  const Element& element;
  size_t index = 0;  ///< of the element in Model::elements
  bool wheel = false;
  double size = 0, width = 0;       ///< radius of the wheel or length of the plate; width [length]
  int marker = 0, road_marker = 0;  ///< indices into Model::markers
  const char* size_key() const { return wheel ? "radius" : "length"; }
};

/// The wheels and plates of a model, less those whose `par` names no markers.
std::vector<SoilContact> soil_contacts_of(const Model& model);

}  // namespace qvslv
