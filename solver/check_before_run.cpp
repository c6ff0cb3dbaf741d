#include "solver/check_before_run.h"

#include "solver/engine/lost_numbers.h"
#include "solver/engine/multibody.h"
#include "solver/engine/plugin.h"

namespace qvslv {

namespace {

void check_motion(const Model& model) {
  const FilePosition anywhere = {model.path, 0, 0};
  Fault fault;
  try {
    Multibody multibody(model, fault);
    SimTK::State state;
    try {
      state = multibody.make_state();
    } catch (const SimTK::Exception::Base& error) {
      fault.raise(RunOutcome::failed, engine_reason(error, multibody, state));
    }
  } catch (const MultibodyError& error) {
    throw ModelError(anywhere, error.what());
  }
  if (fault.raised()) throw ModelError(anywhere, fault.message());
}

void check_subroutines(const Model& model, const std::string& plugin_path) {
  if (model.elements.empty()) return;
  const Plugin plugin(plugin_path);
  for (const Element& element : model.elements) {
    try {
      plugin.find(element.subroutine);
    } catch (const PluginError& error) {
      throw ModelError(element.at, "element '" + element.name + "', subroutine: " + error.what() +
                                       " (a library of your own is named with --library)");
    }
  }
}

}  // namespace

void check_before_run(const Model& model, const std::string& plugin_path) {
  check_motion(model);
  check_subroutines(model, plugin_path);
}

}  // namespace qvslv
