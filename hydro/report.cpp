#include <algorithm>
#include <cmath>
#include <exception>

#include "common/call/parameters.h"
#include "common/call/requests.h"
#include "common/kernels/kernels.h"
#include "hydro/hydro_force.h"
#include "qvbrisk/constants.h"
#include "qvbrisk/layouts.h"

namespace qvhydro {
namespace {

constexpr qv::parameter k_force_id{QV_HULL_REPORT_FORCE_ID, "hydro force ID"};

/// The parameter list of a report, read and checked in its order. The number of check points is checked before it.
struct report_parameters {
  int force, body_marker, water_marker, reported_force, reported_marker, points;
  const double* point_list;
  qv::fault_channel channel;

  report_parameters(const double* par, int point_count, const qv::fault_channel& to)
      : force(qv::to_int(par, k_force_id, to)),
        body_marker(qv::to_int(par, {QV_HULL_REPORT_BODY_MARKER, "body marker"}, to)),
        water_marker(qv::to_int(par, {QV_HULL_REPORT_WATER_MARKER, "water marker"}, to)),
        reported_force(qv::to_int(par, {QV_HULL_REPORT_REPORTED_FORCE, "reported force"}, to)),
        reported_marker(qv::to_int(par, {QV_HULL_REPORT_REPORTED_FORCE_MARKER, "marker of the reported force"}, to)),
        points(point_count),
        point_list(par + QV_HULL_REPORT_LENGTH),
        channel(to) {}

  int point(int i) const { return qv::to_int(point_list[i], "marker of a check point", channel); }
};

/// What the host answers about the body. A set-up call asks too, because the host learns from the questions what a
/// report depends on.
struct answers {
  double body_axes[9] = {}, water_axes[9] = {};  ///< rotations to global axes, column by column
  double force[3] = {};                          ///< axes of its marker

  answers(void* handle, const report_parameters& p) {
    qv::fetch_vector(handle, "AM", {p.body_marker}, body_axes, 9);
    qv::fetch_vector(handle, "AM", {p.water_marker}, water_axes, 9);
    qv::fetch_vector(handle, "TFORCE", {p.reported_force, p.reported_marker, p.reported_marker}, force, 3);
  }
};

/// Asks for the height over the water marker and the global position of each check point, straight into `at`.
void fetch_points(void* handle, const report_parameters& p, double* at) {
  for (int i = 0; i < p.points; ++i, at += QV_HULL_REPORT_POINT_LENGTH) {
    double over_water[3] = {};
    qv::fetch_vector(handle, "TDISP", {p.point(i), p.water_marker, p.water_marker}, over_water, 3);
    at[QV_HULL_REPORT_POINT_HEIGHT] = over_water[2];
    qv::fetch_vector(handle, "TDISP", {p.point(i)}, at + QV_HULL_REPORT_POINT_POSITION, 3);
  }
}

struct centres {
  double G[3], B[3];  ///< of mass and of buoyancy, global
  double D[3];        ///< B - G, global axes
  double buoyancy;    ///< the sum of the meshes' magnitudes [force]
};

/// Takes the sums of an element, which start again from zero.
centres consume(Chydro_force& element) {
  centres c{};
  for (int k = 0; k < 3; ++k) {
    c.G[k] = element.report_mass_moment[k] / element.report_mass_sum;
    c.B[k] = c.G[k];
    if (element.report_buoyancy_sum != 0.0) {
      c.B[k] = element.report_buoyancy_moment[k] / element.report_buoyancy_sum;
      c.D[k] = c.B[k] - c.G[k];
    }
    element.report_mass_moment[k] = element.report_buoyancy_moment[k] = 0.0;
  }
  c.buoyancy = element.report_buoyancy_sum;
  element.report_mass_sum = element.report_buoyancy_sum = 0.0;
  return c;
}

/// Axes L that stand upright and follow the body's heading, column by column: z up, x along (body's y axis) x z,
/// y along z x x. If the body's y axis is upright, x and y are the zero vector.
void find_level_frame(const answers& a, double* L) {
  int flag = 0;
  const double* z = a.water_axes + 6;
  qv::vectlvec(a.body_axes + 3, z, L);
  qv::normalization_vec(L, flag);
  qv::vectlvec(z, L, L + 3);
  qv::normalization_vec(L + 3, flag);
  qv::assgvec(z, 3, L + 6);
}

double degrees(double angle) {
  const double value = angle * RTOD;
  return value < 0.0 ? value + 360.0 : value;
}

/// Writes the results before those of the check points.
void write_results(const answers& a, const centres& c, double* result) {
  double L[9], M[9], lever[3];
  find_level_frame(a, L);
  qv::mattrmat(L, a.body_axes, M);
  qv::mattrvec(L, c.D, lever);
  result[QV_HULL_REPORT_RESULT_BUOYANCY] = c.buoyancy;
  result[QV_HULL_REPORT_RESULT_ROLL] = degrees(std::atan2(M[5], M[8]));
  result[QV_HULL_REPORT_RESULT_LEVER_Y] = std::fabs(lever[1]);
  result[QV_HULL_REPORT_RESULT_PITCH] = degrees(std::atan2(-M[2], std::sqrt(M[1] * M[1] + M[0] * M[0])));
  result[QV_HULL_REPORT_RESULT_LEVER_X] = std::fabs(lever[0]);
  result[QV_HULL_REPORT_RESULT_FORCE_Z] = a.force[2];
  for (int k = 0; k < 3; ++k) {
    result[QV_HULL_REPORT_RESULT_BUOYANCY_CENTRE + k] = c.B[k];
    result[QV_HULL_REPORT_RESULT_LEVER_Y_POINT + k] = c.G[k] + L[3 + k] * lever[1];
    result[QV_HULL_REPORT_RESULT_LEVER_X_POINT + k] = c.G[k] + L[k] * lever[0];
    result[QV_HULL_REPORT_RESULT_MASS_CENTRE + k] = c.G[k];
  }
}

Chydro_force& find_element(const report_parameters& p) {
  if (gp_hydro_force.empty()) {
    qv::fault(k_report_prefix + ("The " + text_of(k_force_id) + " is " + std::to_string(p.force)) +
                  "; no hydro force was evaluated before this report.",
              p.channel.ierr, p.channel.msg);
  }
  qv::check_index(p.force, gp_hydro_force.size(), k_force_id, p.channel);
  return gp_hydro_force[static_cast<std::size_t>(p.force)];
}

void report(void* handle, const double* par, int iflag, double* result, const qv::fault_channel& channel) {
  std::fill_n(result, QV_HULL_REPORT_RESULT_LENGTH, 0.0);  // now: how many follow is only known behind the next guard
  const int points = qv::to_count(par, {QV_HULL_REPORT_POINT_COUNT, "number of check points"}, channel);
  double* const point_results = result + QV_HULL_REPORT_RESULT_LENGTH;
  const std::size_t point_slots = QV_HULL_REPORT_POINT_LENGTH * static_cast<std::size_t>(points);
  std::fill_n(point_results, point_slots, 0.0);
  const report_parameters p(par, points, channel);
  if (iflag == 1) {
    const answers unused(handle, p);
    fetch_points(handle, p, point_results);
    std::fill_n(point_results, point_slots, 0.0);
    return;
  }
  Chydro_force& element = find_element(p);
  if (element.report_mass_sum == 0.0) {
    qv::fault("HYDRO FORCE REPORT ERROR : THE MASS EQUALS ZERO", channel.ierr, channel.msg);
  }
  const centres c = consume(element);
  write_results(answers(handle, p), c, result);
  fetch_points(handle, p, point_results);
}

}  // namespace

void qvhydro_report(void* handle, double /*time*/, double* par, int /*npar*/, int /*difflag*/, int iflag,
                    double* result, int& ierr, char** msg) {
  try {
    report(handle, par, iflag, result, {k_report_prefix, ierr, msg});
  } catch (const std::exception& error) {
    qv::fault(std::string(k_report_prefix) + error.what(), ierr, msg);
  }
}

}  // namespace qvhydro
