#include "solver/checks/soil_contact.h"

#include "qvbrisk/layouts.h"
#include "solver/checks/hull_patches.h"

namespace qvslv {

std::vector<SoilContact> soil_contacts_of(const Model& model) {
  std::vector<SoilContact> contacts;
  for (size_t i = 0; i < model.elements.size(); ++i) {
    const std::vector<double>& par = model.elements[i].par;
    if (model.elements[i].subroutine != "qvsoil_interaction" || par.size() < QV_SOIL_LENGTH) continue;
    const int marker = find_marker(model, whole(par[QV_SOIL_BODY_MARKER])),
              road_marker = find_marker(model, whole(par[QV_SOIL_ROAD_MARKER]));
    if (marker == k_none || road_marker == k_none) continue;
    contacts.push_back({model.elements[i], i, whole(par[QV_SOIL_SHAPE]) != 1, par[QV_SOIL_SIZE], par[QV_SOIL_WIDTH],
                        marker, road_marker});
  }
  return contacts;
}

}  // namespace qvslv
