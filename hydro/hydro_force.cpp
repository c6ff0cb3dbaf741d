#include "hydro/hydro_force.h"

#include <algorithm>
#include <cmath>
#include <exception>

#include "common/call/entry_frame.h"
#include "common/call/kept_set_up.h"
#include "common/call/parameters.h"
#include "hydro/evaluation.h"
#include "qvbrisk/layouts.h"

namespace qvhydro {

std::vector<Chydro_force> gp_hydro_force;
std::vector<std::array<double, 2>> s_HydroForce_Report;

namespace {

using qv::fault_channel;

constexpr qv::parameter k_force_id{QV_HULL_FORCE_ID, "hydro force ID"};
constexpr qv::parameter k_part{QV_HULL_PART, "sub-element index"};

qv::kept_set_up s_kept("HYDRO FORCE WARNING : ");

/// The element that the call is for. Its first call sets it up.
Chydro_force& find_element(void* handle, const double* par, int iflag, const fault_channel& channel) {
  const int id = qv::to_int(par, k_force_id, channel);
  if (gp_hydro_force.empty()) {
    const auto count =
        static_cast<std::size_t>(qv::to_count(par, {QV_HULL_FORCE_COUNT, "number of hydro force elements"}, channel));
    s_HydroForce_Report.resize(count + 1);
    gp_hydro_force.resize(count + 1);
  }
  qv::check_index(id, gp_hydro_force.size(), k_force_id, channel);
  Chydro_force& element = gp_hydro_force[static_cast<std::size_t>(id)];
  if (element.initialized != 1) {
    element.id = id;
    element.initialized = 1;  // before the set-up: an element is set up once, even if that fails
    ini_hydro_force(handle, &element, par, channel.ierr, channel.msg);
  } else if (!element.files_read) {
    qv::fault(k_prefix + ("The set-up failed before, there are no forces. HYDRO FORCE ID = " + std::to_string(id)) +
                  ". Mend what the first message named (parameters, WAVE or CURRENT file) and start again.",
              channel.ierr, channel.msg);
  } else if (iflag == 1) {
    s_kept.compare(handle, {id, -1},
                   {{k_wave_string, par[QV_HULL_WAVE_STRING], element.wave_string_id},
                    {k_current_string, par[QV_HULL_CURRENT_STRING], element.current_string_id}});
  }
  return element;
}

/// Only a list of the same number of nodes has its number of patches where it is looked for.
void compare_mesh(void* handle, const Chydro_force_sub& sub, const double* par) {
  const int at = patch_count_at(sub.node_count);
  const bool same_nodes = static_cast<double>(sub.node_count) == std::trunc(par[QV_HULL_NODE_COUNT]);
  s_kept.compare(handle, {sub.force_id, sub.index},
                 {{k_node_count, par[QV_HULL_NODE_COUNT], sub.node_count},
                  {{at, "number of patches"}, same_nodes ? par[at] : sub.patch_count, sub.patch_count}});
}

/// The patch mesh of the element that the call is for. Its first call sets it up.
Chydro_force_sub& find_mesh(void* handle, Chydro_force& element, const double* par, int iflag,
                            const fault_channel& channel) {
  const int index = qv::to_int(par, k_part, channel);
  qv::check_index(index, element.subs.size(), k_part, channel);
  Chydro_force_sub& sub = element.subs[static_cast<std::size_t>(index)];
  if (sub.initialized != 1) {
    sub.initialized = 1;  // before the set-up, as for the element
    ini_hydro_force_sub(&sub, par, channel.ierr, channel.msg, element.id);
  } else if (iflag == 1) {
    compare_mesh(handle, sub, par);
  }
  return sub;
}

void force(void* handle, double time, const double* par, int iflag, double* result, const fault_channel& channel) {
  std::fill_n(result, QV_HULL_RESULT_LENGTH, 0.0);
  Chydro_force& element = find_element(handle, par, iflag, channel);
  element.wave_x_first = element.wave_x[0];
  element.wave_x_last = element.wave_x.last();
  Chydro_force_sub& sub = find_mesh(handle, element, par, iflag, channel);
  evaluate(handle, time, iflag, element, sub, result);
}

}  // namespace

void qvhydro_force(void* handle, double time, double* par, int /*npar*/, int /*difflag*/, int iflag, double* result,
                   int& ierr, char** msg) {
  try {
    force(handle, time, par, iflag, result, {k_prefix, ierr, msg});
  } catch (const std::exception& error) {
    qv::fault(std::string(k_prefix) + error.what(), ierr, msg);
  }
}

}  // namespace qvhydro

extern "C" QV_EXPORT void qvhydro_force(void* handle, double time, double* par, int npar, int difflag, int iflag,
                                        double* result) {
  qv::run_user_subroutine(qvhydro::qvhydro_force, handle, time, par, npar, difflag, iflag, result);
}

extern "C" QV_EXPORT void qvhydro_report(void* handle, double time, double* par, int npar, int difflag, int iflag,
                                         double* result) {
  qv::run_user_subroutine(qvhydro::qvhydro_report, handle, time, par, npar, difflag, iflag, result);
}
