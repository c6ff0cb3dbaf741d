#include "solver/elements/kinds.h"

#include <cmath>
#include <map>

#include "solver/elements/hull.h"
#include "solver/elements/thruster.h"
#include "solver/elements/track.h"
#include "solver/model/nearest_name.h"
#include "solver/model/units.h"
#include "solver/model_file/par.h"

namespace qvslv {

namespace {

const std::vector<std::string> k_types = {"subroutine", "soil_contact", "track", "hull", "thruster", "balls"};

const std::vector<std::string>& keys_of(const std::string& type) {
  static const std::map<std::string, std::vector<std::string>> keys = {
      {"subroutine",
       {"name", "type", "subroutine", "par", "kind", "marker", "reaction", "axes", "result_length", "columns"}},
      {"soil_contact",
       {"name", "type", "shape", "marker", "road", "road_marker", "radius", "length", "width", "grid", "sum"}},
      {"track",
       {"name", "type", "hull", "wheels", "road", "road_marker", "reference", "width", "thickness", "grid",
        "belt_speed", "drive"}},
      {"hull", {"name",   "type",       "body", "mesh",    "mesh_scale", "flip",    "mesh_marker",
                "marker", "water",      "wave", "current", "density",    "gravity", "scale",
                "active", "drag_scale", "mass", "parts",   "tangential", "report"}},
      {"thruster",
       {"name", "type", "marker", "mode", "variable", "equation", "speed_control", "gains", "limit", "wave", "water"}},
      {"balls", {"name", "type", "bodies", "diameters"}}};
  return keys.at(type);
}

/// Every key of every type: which ones belong is judged once the type is known.
std::vector<std::string> all_keys() {
  std::vector<std::string> keys;
  for (const std::string& type : k_types)
    for (const std::string& key : keys_of(type)) keys.push_back(key);
  return keys;
}

void check_keys(const TableReader& table, const std::string& type) {
  const std::vector<std::string>& known = keys_of(type);
  for (const std::string& key : all_keys()) {
    bool belongs = false;
    for (const std::string& own : known) belongs = belongs || own == key;
    if (!belongs && table.has(key)) table.fail(key, "a " + type + " has no such key; known: " + listed(known));
  }
}

/// Indices into Model::elements of those that a readable layer made and numbers, and what to call them.
struct Numbered {
  std::vector<size_t> elements;
  std::string subroutine, type, counted;
};

/// Numbered elements and hand-numbered ones would claim the same places.
void check_not_mixed(const Model& model, const Numbered& numbered) {
  if (numbered.elements.empty()) return;
  for (size_t i = 0; i < model.elements.size(); ++i) {
    bool readable = false;
    for (const size_t own : numbered.elements) readable = readable || own == i;
    if (!readable && model.elements[i].subroutine == numbered.subroutine)
      throw ModelError(model.elements[i].at, "element '" + model.elements[i].name + "': " + numbered.subroutine +
                                                 " beside a " + numbered.type + "; " + numbered.counted +
                                                 ", so write either all of them plain or all as " + numbered.type);
  }
}

std::vector<std::string> names(const std::vector<const char*>& texts) { return {texts.begin(), texts.end()}; }

std::string symbol(UnitQuantity quantity, const std::string& name) {
  const UnitName* unit = find_unit(quantity, name);
  return unit == nullptr ? name : unit->symbol;
}

struct Symbols {
  std::string length, force, moment, area, volume, energy, speed;
};

Symbols symbols_of(const Units& units) {
  Symbols s;
  s.length = symbol(UnitQuantity::length, units.length);
  s.force = symbol(UnitQuantity::force, units.force);
  const std::string mass = symbol(UnitQuantity::mass, units.mass), time = symbol(UnitQuantity::time, units.time);
  s.moment = s.force + " " + s.length;
  s.area = s.length + "^2";
  s.volume = s.length + "^3";
  s.speed = s.length + "/" + time;
  s.energy = mass == "kg" && s.length == "m" && time == "s" ? "J" : mass + " " + s.length + "^2/" + time + "^2";
  return s;
}

void add(std::vector<ResultColumn>& columns, const std::vector<std::string>& more, const std::string& unit) {
  for (const std::string& name : more) columns.push_back({static_cast<int>(columns.size()), name, unit});
}

void add_vector(std::vector<ResultColumn>& columns, const std::string& name, const std::string& unit) {
  add(columns, {name + "_x", name + "_y", name + "_z"}, unit);
}

void add_hull_columns(std::vector<ResultColumn>& columns, const Symbols& s) {
  add_vector(columns, "force", s.force);
  add_vector(columns, "torque", s.moment);
  add_vector(columns, "buoyancy", s.force);
  add_vector(columns, "buoyancy_centre", s.length);
  for (const char* part : {"drag", "normal_drag", "tangential_drag"}) {
    add_vector(columns, std::string(part) + "_force", s.force);
    add_vector(columns, std::string(part) + "_torque", s.moment);
  }
  add_vector(columns, "force_marker", s.length);
  add(columns, {"submerged_volume"}, s.volume);
}

void add_hull_report_columns(std::vector<ResultColumn>& columns, const Element& element, const Symbols& s) {
  add(columns, {"buoyancy"}, s.force);
  add_vector(columns, "buoyancy_centre", s.length);
  add(columns, {"roll"}, "deg");
  add(columns, {"lever_y"}, s.length);
  add_vector(columns, "lever_y_point", s.length);
  add(columns, {"pitch"}, "deg");
  add(columns, {"lever_x"}, s.length);
  add_vector(columns, "lever_x_point", s.length);
  add(columns, {"force_z"}, s.force);
  add_vector(columns, "mass_centre", s.length);
  for (int i = 0; i < static_cast<int>(element.par[11]); ++i) {
    add(columns, {"point_" + std::to_string(i) + "_height"}, s.length);
    add_vector(columns, "point_" + std::to_string(i), s.length);
  }
}

void add_ball_columns(std::vector<ResultColumn>& columns, const Element& element, const Model& model,
                      const Symbols& s) {
  for (size_t i = 0; i < static_cast<size_t>(element.par[1]); ++i) {
    const int body = body_with_id(model, element.par[2 + i]);
    const std::string ball =
        body == k_none ? "ball_" + std::to_string(i) : model.bodies[static_cast<size_t>(body)].name;
    add(columns, {ball + ".diameter"}, s.length);
    add(columns, {ball + ".translational_energy", ball + ".rotational_energy"}, s.energy);
  }
}

ContactPoints contact_points(const Element& element) {
  if (element.subroutine == "qvsoil_interaction") return {7, (element.result_length - 7) / 8};
  if (element.subroutine == "qvsoil_interaction_mtl") return {4, (element.result_length - 4) / 8};
  return {};
}

}  // namespace

std::string speed_symbol(const Units& units) { return symbols_of(units).speed; }

int marker_with_id(const Model& model, double id) {
  for (size_t i = 0; i < model.markers.size(); ++i)
    if (model.markers[i].id == static_cast<int>(id)) return static_cast<int>(i);
  return k_none;
}

int body_with_id(const Model& model, double id) {
  for (size_t i = 0; i < model.bodies.size(); ++i)
    if (model.bodies[i].id == static_cast<int>(id)) return static_cast<int>(i);
  return k_none;
}

std::vector<ResultColumn> default_columns(const Element& element, const Model& model) {
  const Symbols s = symbols_of(model.units);
  const std::string& name = element.subroutine;
  std::vector<ResultColumn> columns;
  if (name == "qvsoil_interaction") {
    add_vector(columns, "force", s.force);
    add_vector(columns, "moment", s.moment);
    add(columns, {"area"}, s.area);
  } else if (name == "qvsoil_interaction_Sum" || name == "qvsoil_interaction_mtl_sum") {
    add_vector(columns, "force", s.force);
    add(columns, {"area"}, s.area);
  } else if (name == "qvballplacing_report") {
    add_ball_columns(columns, element, model, s);
  } else if (name == "qvsoil_interaction_mtl") {
    add(columns, {"shear_1", "shear_2", "normal"}, s.force);
  } else if (name == "qvsoil_shearforce_mtl" || name == "qvsoil_normalforce_mtl" || name == "qvsoil_thrustforce") {
    add_vector(columns, "force", s.force);
    add_vector(columns, "torque", s.moment);
  } else if (name == "qvhydro_force") {
    add_hull_columns(columns, s);
  } else if (name == "qvhydro_report") {
    add_hull_report_columns(columns, element, s);
  } else if (name == "qvsoil_mtl_eom") {
    add(columns, names({"state_rate", "force", "variable", "soil_shear", "resistance", "derivative"}), "");
  } else if (name == "qvsoil_mtl_velocity") {
    add(columns, {"value"}, "");
  } else if (name == "qvsoil_error_velocity") {
    add(columns, {"velocity_error"}, s.speed);
  } else {
    for (int i = 0; i < element.result_length; ++i) columns.push_back({i, "result_" + std::to_string(i), ""});
  }
  return columns;
}

void set_defaults(Element& element, const SubroutineLayout& layout, const Model& model) {
  const auto marker_of_par = [&](int position, int otherwise) {
    return position < 0 ? otherwise : marker_with_id(model, element.par[static_cast<size_t>(position)]);
  };
  if (element.result_length == 0) element.result_length = layout.result_length(element.par);
  if (element.columns.empty()) element.columns = default_columns(element, model);
  element.points = contact_points(element);
  if (element.marker == k_none) element.marker = marker_of_par(layout.marker_par, k_none);
  if (element.axes == k_none) element.axes = marker_of_par(layout.axes_par, 0);
  if (element.reaction == k_none) element.reaction = marker_of_par(layout.reaction_par, k_none);
  const bool soil = element.subroutine == "qvsoil_interaction";
  if (soil || element.subroutine == "qvsoil_interaction_mtl") {
    element.road_string = static_cast<int>(element.par[soil ? 4 : 2]);
    element.road_marker = marker_with_id(model, element.par[soil ? 5 : 4]);
  }
}

namespace {

Element made_equation_element(const SubroutineEquation& from, const Model& model) {
  Element element;
  element.kind = ElementKind::evaluated;
  element.subroutine = from.subroutine;
  element.par = from.par;
  set_defaults(element, *find_layout(from.subroutine), model);
  return element;
}

/// Behind all others: an equation of a track reads what the track's element left behind in the same round.
void add_equation_elements(Reading& reading) {
  Model& model = reading.model();
  for (const SubroutineEquation& from : reading.subroutine_equations) {
    for (const SubroutineEquation::NamedForce& force : from.forces)
      ask_for_force(reading, model.elements.size(), force.position, force.name, force.role, force.at);
    Equation& equation = model.equations[from.equation];
    Element element = from.table ? read_equation_element(*from.table, reading) : made_equation_element(from, model);
    element.name = equation.name;
    element.at = equation.at;
    equation.element = static_cast<int>(model.elements.size());
    reading.elements.add_internal(element.name, equation.element);
    model.elements.push_back(std::move(element));
  }
}

}  // namespace

namespace {

/// The elements of readable layers whose numbers follow from all of their kind.
struct ReadLayers {
  std::vector<SoilContact> contacts;
  std::vector<TrackElement> tracks;
  std::vector<size_t> made_by_tracks;
  std::vector<HullElement> hulls;
  std::vector<size_t> thrusters;
};

/// What one table comes to: an element, or several.
std::vector<Element> read_element(const TableReader& table, const std::string& type, Reading& reading,
                                  ReadLayers& layers) {
  const size_t index = reading.model().elements.size();
  if (type == "subroutine") return {read_plain_element(table, reading)};
  if (type == "balls") return {read_balls(table, reading)};
  if (type == "soil_contact") {
    layers.contacts.emplace_back();
    layers.contacts.back().element = index;
    return {read_soil_contact(table, reading, layers.contacts.back())};
  }
  if (type == "thruster") {
    layers.thrusters.push_back(index);
    return {read_thruster(table, reading)};
  }
  if (type == "track") {
    const int slot = static_cast<int>(layers.tracks.size());
    layers.tracks.emplace_back();
    layers.tracks.back().first_element = index;
    std::vector<Element> made = read_track(table, slot, reading, layers.tracks.back());
    for (size_t i = 0; i < made.size(); ++i) layers.made_by_tracks.push_back(index + i);
    return made;
  }
  layers.hulls.emplace_back();
  layers.hulls.back().first_element = index;
  return read_hull(table, reading, layers.hulls.back());
}

/// One element has its table's name, the several ones of a table that and a number unless they have names already.
void add_elements(const TableReader& table, std::vector<Element> elements, Reading& reading) {
  Model& model = reading.model();
  for (size_t i = 0; i < elements.size(); ++i) {
    elements[i].at = table.at();
    if (elements[i].name.empty())
      elements[i].name = table.text("name") + (elements.size() > 1 ? "_" + std::to_string(i + 1) : "");
    const int index = static_cast<int>(model.elements.size());
    if (elements[i].name != table.text("name")) reading.elements.add(elements[i].name, index, table.position("name"));
    model.elements.push_back(std::move(elements[i]));
  }
}

void check_none_mixed(const Model& model, const ReadLayers& layers) {
  Numbered contacts{{}, "qvsoil_interaction", "soil_contact", "road and element numbers are counted over all contacts"};
  for (const SoilContact& contact : layers.contacts) contacts.elements.push_back(contact.element);
  check_not_mixed(model, contacts);
  for (const char* subroutine :
       {"qvsoil_interaction_mtl", "qvsoil_normalforce_mtl", "qvsoil_shearforce_mtl", "qvsoil_interaction_mtl_sum"})
    check_not_mixed(model, {layers.made_by_tracks, subroutine, "track", "road numbers are counted over all tracks"});
  Numbered hulls{{}, "qvhydro_force", "hull", "hydro force ids are counted over all hulls"};
  for (const HullElement& hull : layers.hulls)
    for (int part = 0; part < hull.parts; ++part)
      hulls.elements.push_back(hull.first_element + static_cast<size_t>(part));
  check_not_mixed(model, hulls);
  check_not_mixed(
      model, {layers.thrusters, "qvsoil_thrustforce", "thruster", "thrust element ids are counted over all thrusters"});
}

}  // namespace

void read_elements(const TableReader& root, Reading& reading) {
  ReadLayers layers;
  for (const TableReader& table : tables_of(root, "element", all_keys())) {
    const std::string type = table.choice("type", k_types);
    check_keys(table, type);
    const bool several = type == "hull" && table.has("parts") && table.count("parts") > 1;
    reading.elements.add(table.text("name"), several ? k_none : static_cast<int>(reading.model().elements.size()),
                         table.position("name"));
    add_elements(table, read_element(table, type, reading, layers), reading);
  }
  check_none_mixed(reading.model(), layers);
  number_soil_contacts(layers.contacts, reading);
  number_tracks(layers.tracks, reading);
  number_hulls(layers.hulls, reading);
  number_thrusters(layers.thrusters, reading);
  add_equation_elements(reading);
  number_elements(reading);
}

}  // namespace qvslv
