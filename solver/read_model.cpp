#include "solver/read_model.h"

#include <filesystem>
#include <fstream>
#include <sstream>

#include "solver/data_files/find_data_file.h"
#include "solver/data_files/road_check.h"
#include "solver/elements/kinds.h"
#include "solver/model/check_expressions.h"
#include "solver/model_file/document_json.h"
#include "solver/model_file/reading.h"
#include "solver/model_file/toml_override.h"

namespace qvslv {

namespace fs = std::filesystem;

namespace {

const std::vector<std::string> k_root_keys = {"title",    "simulation", "units",  "gravity", "parameters", "body",
                                              "marker",   "joint",      "force",  "string",  "road",       "element",
                                              "variable", "equation",   "spline", "wave",    "current"};

void read_root(const Value& document, Reading& reading) {
  if (const Value* parameters = document.find("parameters")) reading.parameters = Parameters(*parameters);
  const TableReader root(document, k_root, reading.parameters, k_root_keys);
  Model& model = reading.model();
  model.title = root.text("title", fs::path(model.path).stem().string());
  read_units(root, reading);
  read_simulation(root, reading);
  model.gravity = root.vector3("gravity");
  read_bodies(root, reading);
  read_markers(root, reading);
  read_joints(root, reading);
  read_variables(root, reading);
  read_equations(root, reading);
  read_splines(root, reading);
  read_forces(root, reading);
  read_strings(root, reading);
  read_roads(root, reading);
  read_waves(root, reading);
  read_currents(root, reading);
  read_elements(root, reading);
  resolve_file_strings(reading);
  check_expressions(model);
}

/// Is it made for this model? Such a file is whole, or will be.
bool is_described(const InputFile& input, const ModelFile& file) {
  for (const RoadRecipe& road : file.roads)
    if (road.path == input.path) return true;
  return false;
}

/// Tells what the library's reader would refuse or silently misunderstand in the road files that are there already.
void check_roads(ModelFile& file) {
  for (const InputFile& input : file.inputs) {
    if (input.role != "road" || is_described(input, file)) continue;
    const Findings found = check_road_file(input.path, &file.model.units).found;
    file.findings.insert(file.findings.end(), found.begin(), found.end());
  }
}

/// Tells when a file beside the model has the name of one that a table describes: it is not the one that is used.
template <class Recipe>
void check_files_beside(const std::vector<Recipe>& recipes, ModelFile& file) {
  for (const Recipe& recipe : recipes) {
    const std::string beside = find_data_file(recipe.file, file.model.path);
    if (beside.empty() || made_file_state(beside, recipe.settings) != MadeFileState::foreign) continue;
    file.findings.push_back(finding_in(file.model.path, 0, Level::warning, "file-beside-table",
                                       "the file '" + recipe.file +
                                           "' beside the model is not used: a table of this name describes one, which "
                                           "is made; to use the file, take the table out"));
  }
}

std::string file_text(const std::string& path) {
  constexpr std::uintmax_t k_most = 64U << 20U;
  std::error_code failure;
  if (fs::exists(path, failure) && !fs::is_directory(path, failure) && !fs::is_regular_file(path, failure))
    throw ModelError({path, 0, 0}, "this is no regular file; a model file (TOML) is expected");
  if (fs::is_regular_file(path, failure) && fs::file_size(path, failure) > k_most)
    throw ModelError({path, 0, 0}, "this has more than 64 MB; a model file (TOML) is expected");
  std::ifstream stream(path, std::ios::binary);
  if (fs::is_directory(path, failure) || !stream) throw ModelError({path, 0, 0}, "there is no such model file");
  std::ostringstream text;
  text << stream.rdbuf();
  return text.str();
}

}  // namespace

ModelFile read_model_text(const std::string& text, const std::string& path, const std::vector<std::string>& overrides,
                          const std::string& made_folder) {
  Value document = parse_toml(text, path);
  for (const std::string& option : overrides) apply_override(document, option);
  Reading reading;
  ModelFile& file = reading.file;
  file.model.path = path;
  file.text = text;
  file.resolved = json_text(document);
  file.made_folder = made_folder;
  file.inputs.push_back({"model", path, path_beside(path, fs::path(path).filename().string())});
  read_root(document, reading);
  check_roads(file);
  check_files_beside(file.roads, file);
  check_files_beside(file.waves, file);
  check_files_beside(file.currents, file);
  return std::move(file);
}

ModelFile read_model_file(const std::string& path, const std::vector<std::string>& overrides,
                          const std::string& made_folder) {
  return read_model_text(file_text(path), path, overrides, made_folder);
}

}  // namespace qvslv
