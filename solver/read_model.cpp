#include "solver/read_model.h"

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "solver/data_files/find_data_file.h"
#include "solver/data_files/road_check.h"
#include "solver/elements/kinds.h"
#include "solver/model/check_expressions.h"
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
  check_expressions(model);
}

/// Warns of text in existing road files that the library's reader would silently misunderstand.
void warn_about_roads(Reading& reading) {
  std::set<std::string> seen;
  for (const Element& element : reading.model().elements) {
    if (element.road_string == 0) continue;
    const std::string& name = reading.model().strings[static_cast<size_t>(element.road_string - 1)].text;
    const std::string path = find_data_file(name, reading.model().path);
    if (path.empty() || !seen.insert(path).second) continue;
    const Findings found = check_road_file(path, &reading.model().units).found;
    reading.file.findings.insert(reading.file.findings.end(), found.begin(), found.end());
  }
}

std::string file_text(const std::string& path) {
  std::ifstream stream(path, std::ios::binary);
  if (fs::is_directory(path) || !stream) throw ModelError({path, 0, 0}, "there is no such model file");
  std::ostringstream text;
  text << stream.rdbuf();
  return text.str();
}

}  // namespace

ModelFile read_model_text(const std::string& text, const std::string& path, const std::vector<std::string>& overrides) {
  Value document = parse_toml(text, path);
  for (const std::string& option : overrides) apply_override(document, option);
  Reading reading;
  reading.model().path = path;
  read_root(document, reading);
  warn_about_roads(reading);
  return std::move(reading.file);
}

ModelFile read_model_file(const std::string& path, const std::vector<std::string>& overrides) {
  return read_model_text(file_text(path), path, overrides);
}

}  // namespace qvslv
