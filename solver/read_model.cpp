#include "solver/read_model.h"

#include <filesystem>
#include <fstream>
#include <sstream>

#include "solver/checks/checks.h"
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
  check_model(file);
  return std::move(file);
}

ModelFile read_model_file(const std::string& path, const std::vector<std::string>& overrides,
                          const std::string& made_folder) {
  return read_model_text(file_text(path), path, overrides, made_folder);
}

}  // namespace qvslv
