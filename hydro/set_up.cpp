#include <algorithm>
#include <cmath>
#include <string>

#include "common/call/parameters.h"
#include "common/kernels/kernels.h"
#include "hydro/files.h"
#include "hydro/hydro_force.h"
#include "hydro/lanes.h"
#include "qvbrisk/layouts.h"
#include "qvbrisk/services.h"

namespace qvhydro {
namespace {

using qv::fault_channel;

void fetch_units(void* handle, inverse_units& inverse) {
  double scale[5] = {};
  void* names[5] = {};
  int flag = 0;
  GTUNTS(handle, scale, names, &flag);
  inverse = {1.0 / scale[1], 1.0 / scale[0], 1.0 / scale[3], 1.0 / scale[2]};
}

void read_files(void* handle, Chydro_force& element, const fault_channel& channel) {
  named_file wave, current;
  std::wstring model_path;
  wave.name = fetch_file_name(handle, element.wave_string_id, channel);
  if (!open_wave_file(handle, wave, model_path, channel)) {
    qv::fault("HYDRO FORCE ERROR : Failded to open WAVE file. HYDRO FORCE ID = " + std::to_string(element.id),
              channel.ierr, channel.msg);
  }
  element.wave_path = wave.second_path;
  read_wave_file(wave, element, channel);

  current.name = fetch_file_name(handle, element.current_string_id, channel);
  // Kept: the model's path is the one that the WAVE file asked for. If that file opened as named, there is none, and a
  // CURRENT file that does not open as named is not found.
  if (!current.open_as_named() && !current.open_beside(model_path)) {
    qv::fault("HYDRO FORCE ERROR : Failded to open CURREWNT file. HYDRO FORCE ID = " + std::to_string(element.id),
              channel.ierr, channel.msg);
  }
  element.current_path = current.second_path;
  read_current_file(current, element.current1, element.current2, channel);
}

void read_nodes(Chydro_force_sub& sub, const double* par, const fault_channel& channel) {
  sub.node_count = qv::to_count(par, k_node_count, channel);
  const auto count = static_cast<std::size_t>(sub.node_count);
  sub.places.assign(count + 1, node_place());
  sub.flows.assign(count + 1, node_flow());
  sub.intervals.assign(count + 1, node_intervals());
  sub.marks.assign(count + 1, k_never_marked);
  for (auto* row : {&sub.node_x, &sub.node_y, &sub.node_z}) row->assign(whole_vectors(count + 1), 0.0);
  sub.nodes.assign(count + 1, Cnode{0.0, 0.0, 0.0});  // last: every node that exists has all the others
  sub.nodes_in_use = 1;
  for (std::size_t i = 0; i < count; ++i) {
    const double* at = par + QV_HULL_LENGTH + QV_HULL_NODE_LENGTH * i;
    sub.nodes[i] = {at[0], at[1], at[2]};
    sub.node_x[i] = at[0];
    sub.node_y[i] = at[1];
    sub.node_z[i] = at[2];
    if (i == 0 || sub.nodes[i].z > sub.max_node_z) sub.max_node_z = sub.nodes[i].z;
  }
}

patch_outline outline_of(const Chydro_force_sub& sub, const int* node_ids) {
  const Cnode& p0 = sub.nodes[static_cast<std::size_t>(node_ids[0])];
  const Cnode& p1 = sub.nodes[static_cast<std::size_t>(node_ids[1])];
  const Cnode& p2 = sub.nodes[static_cast<std::size_t>(node_ids[2])];
  const double a[3] = {p0.x, p0.y, p0.z}, b[3] = {p1.x, p1.y, p1.z}, c[3] = {p2.x, p2.y, p2.z};
  patch_outline outline;
  for (int k = 0; k < 3; ++k) {
    outline.centroid[k] = (a[k] + b[k] + c[k]) / 3.0;
    outline.edge01[k] = b[k] - a[k];
    outline.edge12[k] = c[k] - b[k];
    outline.edge20[k] = a[k] - c[k];
    outline.edge02[k] = -outline.edge20[k];
  }
  return outline;
}

/// Computes the area by the Gram determinant, and the normal before it is brought to unit length.
void measure(const patch_outline& outline, Cpatch& patch) {
  double aa = 0.0, bb = 0.0, ab = 0.0;
  qv::vectrvec(outline.edge01, outline.edge01, aa);
  qv::vectrvec(outline.edge02, outline.edge02, bb);
  qv::vectrvec(outline.edge01, outline.edge02, ab);
  const double gram = aa * bb - ab * ab;
  patch.area = gram >= 0.0 ? 0.5 * std::sqrt(gram) : 0.0;
  qv::vectlvec(outline.edge01, outline.edge02, patch.normal);
}

std::string point_text(const Chydro_force_sub& sub, int node) {
  const Cnode& p = sub.nodes[static_cast<std::size_t>(node)];
  return std::to_string(node) + ", Point = " + qv::fixed_text(p.x) + ", " + qv::fixed_text(p.y) + ", " +
         qv::fixed_text(p.z);
}

/// Kept: the third node is labelled "Node2" as well.
std::string degenerate_text(const Chydro_force_sub& sub, const Cpatch& patch, int number, double length, int force_id) {
  return "HYDRO FORCE ERROR : Failded to calculate the normal direction of the patch. HYDRO FORCE ID = " +
         std::to_string(force_id) + " , Patch ID = " + std::to_string(number) +
         "\n Area = " + qv::fixed_text(patch.area) + ", Determinant = " + qv::fixed_text(length) +
         ", Normal Direction = " + qv::fixed_text(patch.normal[0]) + ", " + qv::fixed_text(patch.normal[1]) + ", " +
         qv::fixed_text(patch.normal[2]) + "\n Node1 ID = " + point_text(sub, patch.node_ids[0]) +
         "\n Node2 ID = " + point_text(sub, patch.node_ids[1]) + "\n Node2 ID = " + point_text(sub, patch.node_ids[2]);
}

/// Reads the node numbers of patch i. The spare node behind the last one may be named.
void read_node_ids(const Chydro_force_sub& sub, const double* numbers, int i, int* node_ids,
                   const fault_channel& channel) {
  for (int k = 0; k < QV_HULL_PATCH_LENGTH; ++k) {
    const double node = numbers[k];
    if (!(node > -1.0 && node < sub.node_count + 1.0)) {
      const std::string quantity = "node of patch " + std::to_string(i + 1);
      qv::to_int(node, quantity.c_str(), channel);
      qv::check_index(static_cast<int>(node), sub.nodes.size(), quantity.c_str(), channel);
    }
    node_ids[k] = static_cast<int>(node);
  }
}

/// Reads patch after patch. One that cannot be set up leaves its record and those after it at zero: they add nothing.
void read_patches(Chydro_force_sub& sub, const double* par, int force_id, const fault_channel& channel) {
  const std::size_t count_at = QV_HULL_LENGTH + QV_HULL_NODE_LENGTH * static_cast<std::size_t>(sub.node_count);
  const int count = qv::to_count(par[count_at], "number of patches", channel);
  sub.patches.assign(static_cast<std::size_t>(count) + 1, Cpatch());
  sub.outlines.assign(static_cast<std::size_t>(count) + 1, patch_outline());
  sub.corners.assign(static_cast<std::size_t>(count), patch_corners());
  sub.planes.assign(static_cast<std::size_t>(count), patch_plane());
  sub.patch_count = count;
  for (int i = 0; i < count; ++i) {
    const auto at = static_cast<std::size_t>(i);
    Cpatch patch;
    read_node_ids(sub, par + count_at + 1 + QV_HULL_PATCH_LENGTH * at, i, patch.node_ids, channel);
    const patch_outline outline = outline_of(sub, patch.node_ids);
    measure(outline, patch);
    double square = 0.0;
    qv::vectrvec(patch.normal, patch.normal, square);
    const double length = square > 0.0 ? std::sqrt(square) : 0.0;
    if (length <= 0.0) qv::fault(degenerate_text(sub, patch, i + 1, length, force_id), channel.ierr, channel.msg);
    int flag = 0;
    qv::normalization_vec(patch.normal, flag);
    sub.nodes_in_use = std::max(sub.nodes_in_use, *std::max_element(patch.node_ids, patch.node_ids + 3) + 1);
    sub.patches[at] = patch;
    sub.outlines[at] = outline;
    std::copy_n(patch.node_ids, 3, sub.corners[at].node);
    std::copy_n(patch.normal, 3, sub.planes[at].normal);
    sub.planes[at].area = patch.area;
  }
}

}  // namespace

void ini_hydro_force(void* handle, Chydro_force* element, const double* par, int& ierr, char** msg) {
  const fault_channel channel{k_prefix, ierr, msg};
  fetch_units(handle, element->inv_unit);
  element->subelement_count = qv::to_count(par, {QV_HULL_PART_COUNT, "number of sub-elements"}, channel);
  element->subs.resize(static_cast<std::size_t>(element->subelement_count) + 1);
  for (int k = 0; k < 3; ++k) element->report_mass_moment[k] = element->report_buoyancy_moment[k] = 0.0;
  element->report_mass_sum = element->report_buoyancy_sum = 0.0;
  element->density = par[QV_HULL_DENSITY];
  element->gravity = par[QV_HULL_GRAVITY];
  element->drag_scale = par[QV_HULL_DRAG_SCALE];
  element->time_index = 0;
  element->wave_string_id = qv::to_int(par, k_wave_string, channel);
  element->current_string_id = qv::to_int(par, k_current_string, channel);
  read_files(handle, *element, channel);
  element->files_read = true;
}

void ini_hydro_force_sub(Chydro_force_sub* sub, const double* par, int& ierr, char** msg, int force_id) {
  const fault_channel channel{k_prefix, ierr, msg};
  sub->index = qv::to_int(par, {QV_HULL_PART, "sub-element index"}, channel);
  sub->force_id = qv::to_int(par, {QV_HULL_FORCE_ID, "hydro force ID"}, channel);
  sub->force_marker = qv::to_int(par, {QV_HULL_FORCE_MARKER, "force marker"}, channel);
  sub->water_marker = qv::to_int(par, {QV_HULL_WATER_MARKER, "water marker"}, channel);
  sub->body_marker = qv::to_int(par, {QV_HULL_BODY_MARKER, "body marker"}, channel);
  sub->mass = par[QV_HULL_MASS];
  sub->option = qv::to_int(par, {QV_HULL_OPTION, "option"}, channel);
  sub->reserve = par[QV_HULL_RESERVE];
  sub->scale = par[QV_HULL_LOAD_SCALE];
  sub->t_start = par[QV_HULL_ACTIVE_FROM];
  sub->t_end = par[QV_HULL_ACTIVE_TO];
  sub->tangential_coef = par[QV_HULL_TANGENTIAL_COEFFICIENT];
  sub->tangential_exp = par[QV_HULL_TANGENTIAL_EXPONENT];
  read_nodes(*sub, par, channel);
  read_patches(*sub, par, force_id, channel);
}

}  // namespace qvhydro
