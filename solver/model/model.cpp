#include "solver/model/model.h"

#include <algorithm>
#include <cmath>

namespace qvslv {

const char* integrator_name(Integrator integrator) {
  switch (integrator) {
    case Integrator::runge_kutta_fixed:
      return "runge-kutta-fixed";
    case Integrator::semi_explicit_euler:
      return "semi-explicit";
    case Integrator::runge_kutta_merson:
      break;
  }
  return "runge-kutta-merson";
}

std::string placed(const FilePosition& at, const std::string& text) {
  std::string place = at.file;
  if (at.line > 0) place += ":" + std::to_string(at.line);
  if (at.line > 0 && at.column > 0) place += ":" + std::to_string(at.column);
  return place.empty() ? text : place + ": " + text;
}

ModelError::ModelError(const FilePosition& where, const std::string& what)
    : std::runtime_error(placed(where, what)), at(where), text(what) {}

namespace {

template <class Entities>
int index_of_id(const Entities& entities, int id) {
  for (size_t i = 0; i < entities.size(); ++i)
    if (entities[i].id == id) return static_cast<int>(i);
  return k_none;
}

}  // namespace

double find_frame_step(const Simulation& simulation) {
  if (simulation.frame_step > 0) return simulation.frame_step;
  if (!(simulation.output_step > 0)) return simulation.end_time;
  constexpr double k_slack = 1e-9;  // of a step: the last output may miss its multiple by a rounding
  const double outputs = std::ceil(simulation.end_time / simulation.output_step - k_slack);
  return simulation.output_step * std::max(1.0, std::ceil(outputs / (k_default_frames - 1)));
}

bool thins_frames(const Simulation& simulation) {
  return !(simulation.frame_step > 0) && find_frame_step(simulation) > simulation.output_step;
}

int find_marker(const Model& model, int id) { return index_of_id(model.markers, id); }

int find_body(const Model& model, int id) { return index_of_id(model.bodies, id); }

}  // namespace qvslv
