
#include "solver/model_file/reading.h"

namespace qvslv {

namespace {

const std::vector<std::string> k_road_keys = {
    "name", "file", "kind", "seed", "size", "corner", "spacing", "height", "amplitude", "wavelength", "grade", "soil",
    // values in place of the preset's
    "shear_displacement", "shear_modulus", "sensitivity", "damp_ratio", "boundary_sinkage"};

/// Shear displacement K of Wong's law [length]. Model files used to call it a modulus; that name is still read.
double shear_displacement(const TableReader& table, double of_preset) {
  if (!table.has("shear_modulus")) return table.positive("shear_displacement", of_preset);
  if (table.has("shear_displacement"))
    table.fail("shear_modulus", "give either shear_displacement or shear_modulus, its former name, not both");
  return table.positive("shear_modulus");
}

void read_components(const TableReader& table, const char* key, std::array<Expression, 3>& components) {
  for (Expression& component : components) component.at = table.at();
  if (!table.has(key)) return;
  const Value& value = table.value(key);
  if (value.kind != Value::Kind::list || value.list.size() != 3)
    table.fail(key, "a list of 3 numbers or expressions is expected, not " + described(value));
  for (size_t i = 0; i < 3; ++i) components[i] = table.state_expression_of(value.list[i], key);
}

RoadKind road_kind(const std::string& word) {
  if (word == "flat") return RoadKind::flat;
  if (word == "slope") return RoadKind::slope;
  return word == "sine" ? RoadKind::sine : RoadKind::rolling;
}

RoadSettings read_road(const TableReader& table, const Units& units) {
  RoadSettings road;
  road.kind = road_kind(table.choice("kind", {"flat", "slope", "sine", "rolling"}));
  const std::vector<double> size = table.numbers("size", 2);
  road.size_x = size[0];
  road.size_y = size[1];
  road.spacing = table.positive("spacing");
  if (table.has("corner")) {
    const std::vector<double> corner = table.numbers("corner", 2);
    road.corner_x = corner[0];
    road.corner_y = corner[1];
  } else {
    road.corner_x = -0.5 * road.size_x;
    road.corner_y = -0.5 * road.size_y;
  }
  road.seed = table.has("seed") ? static_cast<unsigned>(table.count("seed")) : 1;
  road.height = table.number("height", 0);
  road.amplitude = table.number("amplitude", 0);
  road.wavelength = table.positive("wavelength", 0);
  road.grade = table.number("grade", 0);
  road.units = units;
  const std::string soil = table.choice("soil", soil_preset_names());
  road.soil = soil_in_units(*find_soil_preset(soil), units);
  road.soil_name = soil;
  road.soil.shear_displacement = shear_displacement(table, road.soil.shear_displacement);
  road.soil.sensitivity = table.positive("sensitivity", road.soil.sensitivity);
  road.soil.damp_ratio = table.number("damp_ratio", road.soil.damp_ratio);
  road.soil.boundary_sinkage = table.positive("boundary_sinkage", road.soil.boundary_sinkage);
  const std::string mistake = mistake_in(road);
  if (!mistake.empty()) table.fail(mistake);
  return road;
}

}  // namespace

void read_forces(const TableReader& root, Reading& reading) {
  const std::vector<std::string> keys = {"name", "marker", "reaction", "axes", "force", "torque"};
  for (const TableReader& table : tables_of(root, "force", keys)) {
    AppliedForce force;
    force.at = table.at();
    const size_t number = reading.model().forces.size() + 1;
    force.id = static_cast<int>(reading.model().markers.size() + number);
    force.name = table.text("name", "force_" + std::to_string(number));
    reading.forces.add(force.name, static_cast<int>(number) - 1,
                       table.has("name") ? table.position("name") : table.at());
    force.marker = reading.marker(table, "marker");
    force.reaction = reading.marker_or(table, "reaction", k_none);
    force.axes = reading.marker_or(table, "axes", k_none);
    if (!table.has("force") && !table.has("torque")) table.fail("give a force or a torque (or both)");
    read_components(table, "force", force.force);
    read_components(table, "torque", force.torque);
    reading.model().forces.push_back(std::move(force));
  }
}

void read_strings(const TableReader& root, Reading& reading) {
  for (const TableReader& table : tables_of(root, "string", {"name", "text"})) {
    const int index = static_cast<int>(reading.model().strings.size());
    reading.strings.add(table.text("name"), index, table.position("name"));
    reading.model().strings.push_back({index + 1, table.text("name"), table.text("text")});
  }
}

void read_roads(const TableReader& root, Reading& reading) {
  for (const TableReader& table : tables_of(root, "road", k_road_keys)) {
    std::vector<RoadRecipe>& roads = reading.file.roads;
    if (table.has("name"))
      reading.roads.add(table.text("name"), static_cast<int>(roads.size()), table.position("name"));
    const RoadSettings settings = read_road(table, reading.model().units);
    const std::string path = path_of_recipe(table, reading, settings_line(settings), "road", roads);
    roads.push_back({table.text("file"), path, settings});
  }
}

}  // namespace qvslv
