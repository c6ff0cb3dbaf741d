#include "solver/check_subroutines.h"

#include "solver/engine/plugin.h"

namespace qvslv {

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

}  // namespace qvslv
