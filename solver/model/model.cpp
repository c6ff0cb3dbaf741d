#include "solver/model/model.h"

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

int find_marker(const Model& model, int id) { return index_of_id(model.markers, id); }

int find_body(const Model& model, int id) { return index_of_id(model.bodies, id); }

}  // namespace qvslv
