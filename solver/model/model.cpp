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

namespace {

std::string placed(const FilePosition& at, const std::string& text) {
  if (at.line == 0) return at.file.empty() ? text : at.file + ": " + text;
  return at.file + ":" + std::to_string(at.line) + ":" + std::to_string(at.column) + ": " + text;
}

}  // namespace

ModelError::ModelError(const FilePosition& where, const std::string& what)
    : std::runtime_error(placed(where, what)), at(where), text(what) {}

}  // namespace qvslv
