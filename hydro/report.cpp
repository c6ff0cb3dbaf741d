#include <algorithm>
#include <cmath>
#include <exception>

#include "common/call/parameters.h"
#include "common/call/requests.h"
#include "common/kernels/kernels.h"
#include "hydro/hydro_force.h"
#include "qvbrisk/constants.h"

namespace qvhydro {
namespace {

/// The parameter list of a report.
struct parameters {
  int force, body_marker, water_marker, reported_force, reported_marker, points;
  const double* point_list;
  qv::fault_channel channel;

  parameters(const double* par, int point_count, const qv::fault_channel& to)
      : force(qv::to_int(par[1], "hydro force ID (parameter 1)", to)),
        body_marker(qv::to_int(par[2], "body marker (parameter 2)", to)),
        water_marker(qv::to_int(par[3], "water marker (parameter 3)", to)),
        reported_force(qv::to_int(par[5], "reported force (parameter 5)", to)),
        reported_marker(qv::to_int(par[6], "marker of the reported force (parameter 6)", to)),
        points(point_count),
        point_list(par + 12),
        channel(to) {}

  int point(int i) const { return qv::to_int(point_list[i], "marker of a check point", channel); }
};

/// What is asked of the host, in a set-up call too: so it learns what a report depends on.
struct answers {
  double body_axes[9] = {}, water_axes[9] = {}, force[3] = {};

  answers(void* handle, const parameters& p) {
    qv::fetch_vector(handle, "AM", {p.body_marker}, body_axes, 9);
    qv::fetch_vector(handle, "AM", {p.water_marker}, water_axes, 9);
    qv::fetch_vector(handle, "TFORCE", {p.reported_force, p.reported_marker, p.reported_marker}, force, 3);
  }
};

/// Height over the water marker, and global position, of each check point.
void fetch_points(void* handle, const parameters& p, double* at) {
  for (int i = 0; i < p.points; ++i, at += 4) {
    double over_water[3] = {};
    qv::fetch_vector(handle, "TDISP", {p.point(i), p.water_marker, p.water_marker}, over_water, 3);
    at[0] = over_water[2];
    qv::fetch_vector(handle, "TDISP", {p.point(i)}, at + 1, 3);
  }
}

/// Centres of mass G and buoyancy B, and the total buoyancy.
struct centres {
  double G[3], B[3], D[3], buoyancy;
};

/// Takes the sums of an element: they start again from zero.
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

/// Axes that stand upright and follow the body's heading: z up, x across the body's y axis.
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

void write(const answers& a, const centres& c, double* result) {
  double L[9], M[9], lever[3];
  find_level_frame(a, L);
  qv::mattrmat(L, a.body_axes, M);
  qv::mattrvec(L, c.D, lever);
  result[0] = c.buoyancy;
  result[4] = degrees(std::atan2(M[5], M[8]));
  result[5] = std::fabs(lever[1]);
  result[9] = degrees(std::atan2(-M[2], std::sqrt(M[1] * M[1] + M[0] * M[0])));
  result[10] = std::fabs(lever[0]);
  result[14] = a.force[2];
  for (int k = 0; k < 3; ++k) {
    result[1 + k] = c.B[k];
    result[6 + k] = c.G[k] + L[3 + k] * lever[1];
    result[11 + k] = c.G[k] + L[k] * lever[0];
    result[15 + k] = c.G[k];
  }
}

Chydro_force& find_element(const parameters& p) {
  if (gp_hydro_force.empty()) {
    qv::fault(k_report_prefix + ("The hydro force ID (parameter 1) is " + std::to_string(p.force)) +
                  "; no hydro force was evaluated before this report.",
              p.channel.ierr, p.channel.msg);
  }
  qv::check_index(p.force, gp_hydro_force.size(), "hydro force ID (parameter 1)", p.channel);
  return gp_hydro_force[static_cast<std::size_t>(p.force)];
}

void report(void* handle, const double* par, int iflag, double* result, int& ierr, char** msg) {
  const qv::fault_channel channel{k_report_prefix, ierr, msg};
  constexpr std::size_t k_fixed_slots = 18;
  std::fill_n(result, k_fixed_slots, 0.0);  // even when the number of points is none
  const int points = qv::to_count(par[11], "number of check points (parameter 11)", channel);
  const std::size_t slots = k_fixed_slots + 4 * static_cast<std::size_t>(points);
  std::fill_n(result, slots, 0.0);
  const parameters p(par, points, channel);
  if (iflag == 1) {
    const answers unused(handle, p);
    fetch_points(handle, p, result + k_fixed_slots);
    std::fill_n(result, slots, 0.0);
    return;
  }
  Chydro_force& element = find_element(p);
  if (element.report_mass_sum == 0.0) qv::fault("HYDRO FORCE REPORT ERROR : THE MASS EQUALS ZERO", ierr, msg);
  const centres c = consume(element);
  write(answers(handle, p), c, result);
  fetch_points(handle, p, result + k_fixed_slots);
}

}  // namespace

void qvhydro_report(void* handle, double /*time*/, double* par, int /*npar*/, int /*difflag*/, int iflag,
                    double* result, int& ierr, char** msg) {
  try {
    report(handle, par, iflag, result, ierr, msg);
  } catch (const std::exception& error) {
    qv::fault(std::string(k_report_prefix) + error.what(), ierr, msg);
  }
}

}  // namespace qvhydro
