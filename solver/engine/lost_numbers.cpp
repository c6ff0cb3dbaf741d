#include "solver/engine/lost_numbers.h"

#include <fmt/format.h>

#include <cmath>

#include "solver/model/plain_reason.h"

namespace qvslv {

namespace {

/// The largest speed coordinate of a body; infinite if one of its coordinates or speeds is no finite number.
double wildness(const SimTK::MobilizedBody& body, const SimTK::State& state) {
  double largest = 0;
  const SimTK::Vector q = body.getQAsVector(state), u = body.getUAsVector(state);
  for (int k = 0; k < q.size(); ++k)
    if (!std::isfinite(q[k])) return SimTK::Infinity;
  for (int k = 0; k < u.size(); ++k) {
    if (!std::isfinite(u[k])) return SimTK::Infinity;
    largest = std::max(largest, std::abs(u[k]));
  }
  return largest;
}

std::string wildest_body(const Multibody& multibody, const SimTK::State& state) {
  std::string name;
  double largest = 0;
  for (size_t i = 0; i < multibody.model().bodies.size(); ++i) {
    const double wild = wildness(multibody.body(static_cast<int>(i)), state);
    if (!(wild > largest)) continue;
    largest = wild;
    name = multibody.model().bodies[i].name;
  }
  if (name.empty()) return "";
  if (!std::isfinite(largest)) return "; body " + name + " has no finite place or speed any more";
  return fmt::format("; body {} is the fastest, at {:.3g}", name, largest);
}

}  // namespace

std::string engine_reason(const std::exception& error, const Multibody& multibody, const SimTK::State& state) {
  if (dynamic_cast<const SimTK::Exception::Base*>(&error) == nullptr) return plain_reason(error);
  const bool has_motion = state.getSystemStage() >= SimTK::Stage::Model;
  return fmt::format(
      "at time {} the motion leaves what numbers can hold{}. Masses, inertias, forces or speeds are too "
      "small or too large against each other; look at their units",
      has_motion ? state.getTime() : 0.0, has_motion ? wildest_body(multibody, state) : "");
}

}  // namespace qvslv
