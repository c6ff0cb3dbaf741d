#include "solver/checks/checks.h"
#include "solver/data_files/find_data_file.h"

namespace qvslv {

namespace {

/// Tells when a file beside the model has the name of one that a table describes: it is not the one that is used. What
/// an earlier version made there from a table is passed over.
template <class Recipe>
void check_beside(const std::vector<Recipe>& recipes, const Model& model, Findings& findings) {
  for (const Recipe& recipe : recipes) {
    const std::string beside = find_data_file(recipe.file, model.path);
    if (beside.empty() || made_file_state(beside, recipe.settings) != MadeFileState::foreign) continue;
    findings.push_back(finding_in(model.path, 0, Level::warning, "file-beside-table",
                                  "the file '" + recipe.file +
                                      "' beside the model is not used: a table of this name describes one, which is "
                                      "made; to use the file, take the table out"));
  }
}

}  // namespace

void check_described_files(const Scene& scene, Findings& findings) {
  check_beside(scene.file.roads, scene.model, findings);
  check_beside(scene.file.waves, scene.model, findings);
  check_beside(scene.file.currents, scene.model, findings);
}

}  // namespace qvslv
