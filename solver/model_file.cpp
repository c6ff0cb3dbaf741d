#include "solver/model_file.h"

#include <cmath>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "solver/model_expressions.h"
#include "solver/model_file_reading.h"
#include "solver/nearest_name.h"
#include "solver/road_check.h"
#include "solver/toml_override.h"
#include "solver/unit_names.h"

namespace qvslv {

namespace fs = std::filesystem;

namespace {

const std::vector<std::string> k_root_keys = {"title",    "simulation", "units",  "gravity", "parameters", "body",
                                              "marker",   "joint",      "force",  "string",  "road",       "element",
                                              "variable", "equation",   "spline", "wave",    "current"};

void read_unit(const TableReader& table, const char* key, UnitQuantity quantity, std::string& name, double& factor) {
  if (!table.has(key)) return;
  const UnitName* unit = find_unit(quantity, table.text(key));
  if (unit == nullptr)
    table.fail(key, "'" + table.text(key) + "' is no unit known here; " +
                        name_hint(table.text(key), all_unit_names(quantity)));
  name = unit->name;
  factor = unit->factor;
}

void read_units(const TableReader& root, Reading& reading) {
  if (!root.has("units")) return;
  const TableReader table = root.table("units", {"length", "mass", "time", "force", "angle"});
  Units& units = reading.model().units;
  read_unit(table, "length", UnitQuantity::length, units.length, units.length_factor);
  read_unit(table, "mass", UnitQuantity::mass, units.mass, units.mass_factor);
  read_unit(table, "time", UnitQuantity::time, units.time, units.time_factor);
  read_unit(table, "force", UnitQuantity::force, units.force, units.force_factor);
  read_unit(table, "angle", UnitQuantity::angle, units.angle, units.angle_factor);
}

/// The equations of motion have no room for conversion factors: force must be mass times length over time squared.
void check_units_consistent(const TableReader& root, const Units& units) {
  const double needed = units.mass_factor * units.length_factor / (units.time_factor * units.time_factor);
  constexpr double k_relative = 1e-3;  // the tables give some factors to four digits
  if (std::abs(units.force_factor / needed - 1.0) <= k_relative) return;
  std::string fitting;
  for (const UnitName& mass : unit_names(UnitQuantity::mass)) {
    const double unit_force = mass.factor * units.length_factor / (units.time_factor * units.time_factor);
    if (std::abs(units.force_factor / unit_force - 1.0) <= k_relative) fitting = mass.name;
  }
  const std::string text = "units: the force unit " + units.force + " is not the one that belongs to " + units.mass +
                           ", " + units.length + " and " + units.time + " (force = mass length / time^2)" +
                           (fitting.empty() ? "" : "; with these a mass in " + fitting + " would fit");
  throw ModelError(root.has("units") ? root.position("units") : root.at(), text);
}

void read_simulation(const TableReader& root, Reading& reading) {
  const TableReader table =
      root.table("simulation", {"end_time", "output_step", "frame_step", "integrator", "accuracy", "step", "max_step"});
  constexpr double k_default_rows = 200;
  Simulation& simulation = reading.model().simulation;
  simulation.end_time = table.positive("end_time");
  simulation.output_step = table.positive("output_step", simulation.end_time / k_default_rows);
  simulation.frame_step = table.positive("frame_step", 0);
  simulation.accuracy = table.positive("accuracy", simulation.accuracy);
  simulation.step = table.positive("step", 0);
  simulation.max_step = table.positive("max_step", 0);
  if (simulation.accuracy >= 1) table.fail("accuracy", "must be less than 1 (1e-4 is a good start)");
  const std::string integrator =
      table.has("integrator") ? table.choice("integrator", {"runge-kutta-merson", "runge-kutta-fixed", "semi-explicit"})
                              : "runge-kutta-merson";
  if (integrator == "semi-explicit") simulation.integrator = Integrator::semi_explicit_euler;
  if (integrator == "runge-kutta-fixed") simulation.integrator = Integrator::runge_kutta_fixed;
  const bool fixed = simulation.integrator != Integrator::runge_kutta_merson;
  if (fixed && !table.has("step")) table.fail("integrator", "the " + integrator + " integrator needs a 'step' as well");
}

void read_root(const Value& document, Reading& reading) {
  if (const Value* parameters = document.find("parameters")) reading.parameters = Parameters(*parameters);
  const TableReader root(document, k_root, reading.parameters, k_root_keys);
  Model& model = reading.model();
  model.title = root.text("title", fs::path(model.path).stem().string());
  read_units(root, reading);
  check_units_consistent(root, model.units);
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

/// Road files that are there already are looked into for what their reader would silently misunderstand.
void warn_about_roads(Reading& reading) {
  std::set<std::string> seen;
  for (const Element& element : reading.model().elements) {
    if (element.road_string == 0) continue;
    const std::string& name = reading.model().strings[static_cast<size_t>(element.road_string - 1)].text;
    const std::string path = find_data_file(name, reading.model().path);
    if (path.empty() || !seen.insert(path).second) continue;
    for (const std::string& finding : check_road_file(path, &reading.model().units).findings())
      reading.file.warnings.push_back(finding);
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

std::vector<TableReader> tables_of(const TableReader& root, const std::string& key,
                                   const std::vector<std::string>& known) {
  std::vector<TableReader> result;
  if (!root.has(key)) return result;
  if (root.value(key).kind == Value::Kind::table)
    throw ModelError(root.position(key), "write [[" + key + "]] in double brackets: a model may have several");
  result = root.tables(key, known);
  return result;
}

std::string find_data_file(const std::string& name, const std::string& model_path) {
  if (fs::is_regular_file(name)) return name;
  const fs::path beside = fs::path(model_path).parent_path() / name;
  return fs::is_regular_file(beside) ? beside.string() : "";
}

std::string require_data_file(const std::string& name, const Reading& reading, const std::string& role,
                              const FilePosition& at, const std::string& table) {
  const std::string& model_path = reading.file.model.path;
  std::string path = find_data_file(name, model_path);
  if (!path.empty()) return path;
  const std::string folder = fs::absolute(model_path).parent_path().lexically_normal().string();
  const fs::path beside = (fs::path(model_path).parent_path() / name).lexically_normal();
  const auto made = [&](const auto& recipes) {
    for (const auto& recipe : recipes)
      if (fs::path(recipe.path).lexically_normal() == beside) path = recipe.path;
    return !path.empty();
  };
  if (made(reading.file.roads) || made(reading.file.waves) || made(reading.file.currents)) return path;
  throw ModelError(at, role + ": there is no file '" + name +
                           "', neither in the current folder nor beside the model in " + folder + " (a [[" + table +
                           "]] table could describe it)");
}

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

std::vector<std::string> bring_files_up_to_date(const ModelFile& file) {
  std::vector<std::string> lines;
  for (const RoadRecipe& road : file.roads) {
    const RoadFileState state = road_file_state(road.path, road.settings);
    if (state == RoadFileState::foreign)
      lines.push_back("road " + road.path + " is there and was not made from settings: used as it is");
    if (state == RoadFileState::foreign || state == RoadFileState::current) continue;
    write_road_file(road.settings, road.path);
    lines.push_back("made road " + road.path + " (" + std::to_string(triangle_count(road.settings)) + " triangles)");
  }
  bring_water_up_to_date(file, lines);
  return lines;
}

}  // namespace qvslv
