#include "solver/engine/model_check.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <utility>

namespace qvslv {

namespace {

/// Beyond this, products of three numbers of a model overflow.
constexpr double k_most = 1e100;

template <class Values>
void require_finite(const Values& values, const std::string& what) {
  for (const double value : values) {
    if (!std::isfinite(value)) throw MultibodyError(fmt::format("{}: {} is no finite number", what, value));
    if (std::abs(value) > k_most)
      throw MultibodyError(
          fmt::format("{}: {} is too large to compute with; at most {} is expected, other units bring "
                      "it there",
                      what, value, k_most));
  }
}

/// The same for what is divided by: 0 is a case of its own, but the reciprocal of anything else must not overflow.
template <class Values>
void require_divisor(const Values& values, const std::string& what) {
  require_finite(values, what);
  for (const double value : values) {
    if (value != 0 && std::abs(value) < 1 / k_most)
      throw MultibodyError(
          fmt::format("{}: {} is too small to compute with; at least {} is expected, other units bring "
                      "it there",
                      what, value, 1 / k_most));
  }
}

/// Requires columns of length 1, perpendicular to each other and right-handed, as exact as typed digits can be.
void require_rotation(const Rotation& r, const std::string& what) {
  constexpr double k_typed_digits = 1e-3;
  require_finite(r, what);
  const auto column = [&](size_t k) { return Vec3{r[3 * k], r[3 * k + 1], r[3 * k + 2]}; };
  const Vec3 x = column(0), y = column(1), z = column(2);
  const Vec3 x_cross_y = cross(x, y);
  const double off =
      std::max({std::abs(dot(x, x) - 1), std::abs(dot(y, y) - 1), std::abs(dot(x, y)), std::abs(x_cross_y[0] - z[0]),
                std::abs(x_cross_y[1] - z[1]), std::abs(x_cross_y[2] - z[2])});
  if (off > k_typed_digits) throw MultibodyError(what + " are no right-handed axes of length 1");
}

/// A rigid body's inertia: in any axes each moment is at most the sum of the other two. The principal axes decide, and
/// Sylvester's criterion decides for them without computing them.
bool is_rigid_inertia(const Inertia& i) {
  // E = trace(I)/2 - I holds the second moments of mass, which are positive semidefinite for a real body.
  const double half = 0.5 * (i.xx + i.yy + i.zz);
  const double slack = 1e-9 * std::abs(half);  // values are exact to the digits that someone typed
  const double xx = half - i.xx + slack, yy = half - i.yy + slack, zz = half - i.zz + slack;
  const double xy = -i.xy, xz = -i.xz, yz = -i.yz;
  const double det = xx * (yy * zz - yz * yz) - xy * (xy * zz - yz * xz) + xz * (xy * yz - yy * xz);
  return xx >= 0 && yy >= 0 && zz >= 0 && xx * yy >= xy * xy && yy * zz >= yz * yz && xx * zz >= xz * xz && det >= 0;
}

void check_body(const Body& body) {
  const std::string name = "body " + body.name;
  const Inertia& i = body.inertia;
  const std::array<double, 6> moments = {i.xx, i.yy, i.zz, i.xy, i.xz, i.yz};
  require_divisor(std::array<double, 1>{body.mass}, name + ", mass");
  require_divisor(std::array<double, 3>{i.xx, i.yy, i.zz}, name + ", inertia");
  require_finite(moments, name + ", inertia");
  require_finite(body.center, name + ", center");
  require_finite(body.position, name + ", position");
  require_finite(body.velocity, name + ", velocity");
  require_finite(body.angular_velocity, name + ", angular velocity");
  require_rotation(body.orientation, name + ": its axes");
  if (body.mass < 0) throw MultibodyError(fmt::format("{}: the mass {} is negative", name, body.mass));
  const bool no_inertia = std::all_of(moments.begin(), moments.end(), [](double m) { return m == 0; });
  if (body.mass == 0 && !no_inertia) throw MultibodyError(name + ": a body with inertia needs a mass");
  if (!is_rigid_inertia(i)) {
    throw MultibodyError(fmt::format(
        "{}: no rigid body has the inertia xx {} yy {} zz {} xy {} xz {} yz {}; each moment must be positive and at "
        "most the sum of the other two",
        name, i.xx, i.yy, i.zz, i.xy, i.xz, i.yz));
  }
}

/// A step that is lost in the rounding of the times it is added to would never end the run.
void check_steps(const Simulation& simulation) {
  const double least = k_shortest_step * simulation.end_time;
  require_divisor(std::array<double, 1>{simulation.end_time}, "simulation, end_time");
  const auto check = [least](const char* key, double step) {
    if (step > 0 && step < least)
      throw MultibodyError(
          fmt::format("simulation, {}: {} is too short for the end time; at least {:.3g} is expected, so "
                      "that there are {:.0e} steps at most",
                      key, step, least, 1 / k_shortest_step));
  };
  check("output_step", simulation.output_step);
  check("max_step", simulation.max_step);
  if (simulation.integrator != Integrator::runge_kutta_merson) check("step", simulation.step);
}

void check_simulation(const Simulation& simulation) {
  const std::pair<const char*, double> numbers[] = {{"end_time", simulation.end_time},
                                                    {"output_step", simulation.output_step},
                                                    {"frame_step", simulation.frame_step},
                                                    {"accuracy", simulation.accuracy},
                                                    {"step", simulation.step},
                                                    {"smallest_motion", simulation.smallest_motion},
                                                    {"max_step", simulation.max_step}};
  for (const auto& [key, value] : numbers)
    require_finite(std::array<double, 1>{value}, std::string("simulation, ") + key);
  check_steps(simulation);
  if (simulation.integrator != Integrator::runge_kutta_merson) {
    if (!(simulation.step > 0)) {
      throw MultibodyError(fmt::format("simulation: the fixed step {} must be above 0", simulation.step));
    }
  } else if (!(simulation.accuracy > 0 && simulation.accuracy < 1)) {
    throw MultibodyError(fmt::format("simulation: the accuracy {} must lie between 0 and 1", simulation.accuracy));
  }
}

}  // namespace

void check_model(const Model& model) {
  check_simulation(model.simulation);
  require_finite(model.gravity, "gravity");
  for (const Body& body : model.bodies) check_body(body);
  for (const Marker& marker : model.markers) {
    require_finite(marker.position, "marker " + marker.name + ", position");
    require_rotation(marker.orientation, "marker " + marker.name + ": its axes");
  }
  for (const Equation& equation : model.equations) {
    require_finite(std::array<double, 2>{equation.value, equation.rate}, "equation " + equation.name + ", start");
    if (equation.order != 1 && equation.order != 2) {
      throw MultibodyError(fmt::format("equation {}: the order {} must be 1 or 2", equation.name, equation.order));
    }
  }
  for (const Joint& joint : model.joints) {
    require_finite(joint.position, "joint " + joint.name + ", start");
    require_finite(joint.velocity, "joint " + joint.name + ", start");
  }
}

}  // namespace qvslv
