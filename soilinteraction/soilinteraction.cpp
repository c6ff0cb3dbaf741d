#include "soilinteraction/soilinteraction.h"

#include <algorithm>
#include <array>
#include <exception>

#include "common/call/entry_frame.h"
#include "common/call/kept_set_up.h"
#include "common/call/messages.h"
#include "common/call/parameters.h"
#include "soilinteraction/evaluation.h"
#include "soilinteraction/parameters.h"
#include "soilrdf/load_road.h"

namespace qvsoilinteraction {
namespace {

using qvsoilrdf::CRoad;
using force_sums = std::array<double, QV_SOIL_SUM_RESULT_LENGTH>;  // force x, y, z and area

// Module state, indexed by road and element. It lives from load to unload; each container is sized once.
std::vector<CRoad> s_3Dsoil_roads;
std::vector<int> s_road_strings;  // by road: the string id that it was read by
std::vector<std::vector<CSoilInteraction>> s_3Dsoil_forces;
std::vector<std::vector<force_sums>> s_3Dsoil_contact_forces_Sum;

qv::kept_set_up s_kept("SOILINTERACTION WARNING : ");

void set_up_road(void* handle, const parameters& p, const qv::fault_channel& channel) {
  if (s_3Dsoil_roads.empty()) {
    s_road_strings.resize(static_cast<std::size_t>(p.roads));
    s_3Dsoil_roads.resize(static_cast<std::size_t>(p.roads));
  }
  qv::check_index(p.road, s_3Dsoil_roads.size(), k_road_index, channel);
  CRoad& road = s_3Dsoil_roads[static_cast<std::size_t>(p.road)];
  int& string_id = s_road_strings[static_cast<std::size_t>(p.road)];
  if (road.road_id != qvsoilrdf::k_not_set) {
    const auto asked = static_cast<double>(p.file_name);
    s_kept.compare(handle, {p.road, p.element}, {{k_road_string, asked, string_id}});
    return;
  }
  qvsoilrdf::load_road(handle, p.file_name, p.road, road, channel);
  string_id = p.file_name;
}

/// The entry of (road, element) in a container; sizes the container first if it is still empty.
template <class Entry>
Entry& sized_entry(std::vector<std::vector<Entry>>& container, const parameters& p, const qv::fault_channel& channel) {
  if (container.empty()) container.resize(static_cast<std::size_t>(p.roads));
  qv::check_index(p.road, container.size(), k_road_index, channel);
  std::vector<Entry>& entries = container[static_cast<std::size_t>(p.road)];
  if (entries.empty()) entries.resize(static_cast<std::size_t>(p.elements));
  qv::check_index(p.element, entries.size(), k_element_index, channel);
  return entries[static_cast<std::size_t>(p.element)];
}

void set_up_element(void* handle, const parameters& p, const qv::fault_channel& channel) {
  CSoilInteraction& element = sized_entry(s_3Dsoil_forces, p, channel);
  if (element.element_id == qvsoilrdf::k_not_set) {
    const auto rows = static_cast<std::size_t>(p.patch.nx);
    const auto columns = static_cast<std::size_t>(p.patch.ny);
    element.road_contacts.assign(rows, std::vector<Croad_contact>(columns));
    element.soil_contacts.assign(rows, std::vector<Csoil_contact>(columns));
    for (std::vector<double>& coordinate : element.on_body) coordinate.assign(rows * columns, 0.0);
    element.nx = p.patch.nx;
    element.ny = p.patch.ny;
    element.element_id = p.element;  // last: an element without its grids is not set up
  } else {
    s_kept.compare(handle, {p.road, p.element},
                   {{k_count_along, static_cast<double>(p.patch.nx), element.nx},
                    {k_count_across, static_cast<double>(p.patch.ny), element.ny}});
  }
  sized_entry(s_3Dsoil_contact_forces_Sum, p, channel);
}

/// The entry of (road, element); null if there is none.
template <class Entry>
Entry* entry_or_null(std::vector<std::vector<Entry>>& container, const parameters& p) {
  if (p.road < 0 || static_cast<std::size_t>(p.road) >= container.size()) return nullptr;
  std::vector<Entry>& entries = container[static_cast<std::size_t>(p.road)];
  if (p.element < 0 || static_cast<std::size_t>(p.element) >= entries.size()) return nullptr;
  return &entries[static_cast<std::size_t>(p.element)];
}

/// Refuses an index outside a filled container. Containers that are still empty are not looked at: before the set-up a
/// call exerts nothing, whatever its indices.
void check_indices(const parameters& p, const qv::fault_channel& channel) {
  if (s_3Dsoil_roads.empty()) return;
  qv::check_index(p.road, s_3Dsoil_roads.size(), k_road_index, channel);
  if (s_3Dsoil_forces.empty()) return;
  const std::size_t elements = s_3Dsoil_forces[static_cast<std::size_t>(p.road)].size();
  if (elements > 0) qv::check_index(p.element, elements, k_element_index, channel);
}

/// Refuses a grid larger than the one set up: neither the records nor the host's result array have room for it.
void check_grid(const parameters& p, const CSoilInteraction& element, const qv::fault_channel& channel) {
  const auto check = [&](int count, int set_up, const qv::parameter& entry) {
    if (count <= set_up) return;
    qv::fault(channel, "The " + text_of(entry) + " is " + std::to_string(count) + "; the element was set up with " +
                           std::to_string(set_up) + ".");
  };
  check(p.patch.nx, element.nx, k_count_along);
  check(p.patch.ny, element.ny, k_count_across);
}

/// The element if it is set up, else null: before its set-up an element has no points and exerts nothing.
CSoilInteraction* find_element(const parameters& p) {
  CSoilInteraction* element = entry_or_null(s_3Dsoil_forces, p);
  return element != nullptr && element->element_id != qvsoilrdf::k_not_set ? element : nullptr;
}

void interaction(void* handle, double* par, int iflag, double* result, const qv::fault_channel& channel) {
  std::fill_n(result, QV_SOIL_RESULT_LENGTH, 0.0);
  const parameters p(par, channel);
  if (const CSoilInteraction* known = find_element(p)) check_grid(p, *known, channel);
  std::fill_n(result, QV_SOIL_RESULT_LENGTH + QV_SOIL_POINT_LENGTH * p.points(), 0.0);
  if (iflag == 1) {
    set_up_road(handle, p, channel);
    set_up_element(handle, p, channel);
  }
  check_indices(p, channel);
  CSoilInteraction* element = find_element(p);
  force_sums* sums = entry_or_null(s_3Dsoil_contact_forces_Sum, p);
  if (element == nullptr || sums == nullptr) return;
  sums->fill(0.0);
  const CRoad& road = s_3Dsoil_roads[static_cast<std::size_t>(p.road)];
  const kinematics k = fetch_kinematics(handle, p);
  if (iflag == 1) place_on_body(p.patch, road, *element);
  evaluate_points(handle, p, iflag, road, k, *element, result, channel);
  const double* force = result + QV_SOIL_RESULT_FORCE;
  *sums = {force[0], force[1], force[2], result[QV_SOIL_RESULT_AREA]};
}

}  // namespace

void qvsoil_interaction(void* handle, double /*time*/, double* par, int /*npar*/, int /*difflag*/, int iflag,
                        double* result, int& ierr, char** msg) {
  try {
    interaction(handle, par, iflag, result, {k_prefix, ierr, msg});
  } catch (const std::exception& error) {
    qv::fault({k_prefix, ierr, msg}, error.what());
  }
}

// This function has no handler of its own: a standard exception passes to the frame, which reports the stored messages
// (none).
void qvsoil_interaction_Sum(void* /*handle*/, double /*time*/, double* par, int /*npar*/, int /*difflag*/, int iflag,
                            double* result, int& ierr, char** msg) {
  std::fill_n(result, QV_SOIL_SUM_RESULT_LENGTH, 0.0);
  if (iflag != 2 || s_3Dsoil_contact_forces_Sum.empty()) return;
  const qv::fault_channel channel{k_prefix, ierr, msg};
  constexpr qv::parameter k_summed_road{QV_SOIL_SUM_ROAD, "road index"};
  const int road = qv::to_int(par, k_summed_road, channel);
  qv::check_index(road, s_3Dsoil_contact_forces_Sum.size(), k_summed_road, channel);
  for (const force_sums& sums : s_3Dsoil_contact_forces_Sum[static_cast<std::size_t>(road)]) {
    for (std::size_t c = 0; c < sums.size(); ++c) result[c] += sums[c];
  }
}

}  // namespace qvsoilinteraction

extern "C" QV_EXPORT void qvsoil_interaction(void* handle, double time, double* par, int npar, int difflag, int iflag,
                                             double* result) {
  qv::run_user_subroutine(qvsoilinteraction::qvsoil_interaction, handle, time, par, npar, difflag, iflag, result);
}

extern "C" QV_EXPORT void qvsoil_interaction_Sum(void* handle, double time, double* par, int npar, int difflag,
                                                 int iflag, double* result) {
  qv::run_user_subroutine(qvsoilinteraction::qvsoil_interaction_Sum, handle, time, par, npar, difflag, iflag, result);
}
