#include "solver/elements.h"

#include <cmath>

#include "solver/nearest_name.h"
#include "solver/unit_names.h"

namespace qvslv {

namespace {

const std::vector<std::string> k_types = {"subroutine", "soil_contact", "balls"};

const std::vector<std::string>& keys_of(const std::string& type) {
  static const std::vector<std::string> plain = {"name",   "type",     "subroutine", "par",           "kind",
                                                 "marker", "reaction", "axes",       "result_length", "columns"};
  static const std::vector<std::string> soil = {"name",   "type",   "shape", "marker", "road", "road_marker",
                                                "radius", "length", "width", "grid",   "sum"};
  static const std::vector<std::string> balls = {"name", "type", "bodies", "diameters"};
  return type == "subroutine" ? plain : type == "soil_contact" ? soil : balls;
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

/// Numbered contacts and hand-numbered ones would claim the same places.
void check_not_mixed(const Model& model, const std::vector<SoilContact>& contacts) {
  if (contacts.empty()) return;
  for (size_t i = 0; i < model.elements.size(); ++i) {
    bool readable = false;
    for (const SoilContact& contact : contacts) readable = readable || contact.element == i;
    if (!readable && model.elements[i].subroutine == "qvsoil_interaction")
      throw ModelError(model.elements[i].at,
                       "element '" + model.elements[i].name +
                           "': qvsoil_interaction beside a soil_contact; road and element numbers are counted over all "
                           "contacts, so write either all of them plain or all as soil_contact");
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

std::string name_behind(const Model& model, const ParSlot& slot, double value) {
  if (slot.kind == ParKind::marker) {
    const int marker = marker_with_id(model, value);
    return marker == k_none ? "" : "marker:" + model.markers[static_cast<size_t>(marker)].name;
  }
  if (slot.kind == ParKind::body) {
    const int body = body_with_id(model, value);
    return body == k_none ? "" : "body:" + model.bodies[static_cast<size_t>(body)].name;
  }
  if (slot.kind == ParKind::file && value >= 1 && value <= static_cast<double>(model.strings.size()))
    return "string:" + model.strings[static_cast<size_t>(value) - 1].name;
  return "";
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

void read_elements(const TableReader& root, Reading& reading) {
  std::vector<SoilContact> contacts;
  for (const TableReader& table : tables_of(root, "element", all_keys())) {
    const std::string type = table.choice("type", k_types);
    check_keys(table, type);
    const int index = static_cast<int>(reading.model().elements.size());
    reading.elements.add(table.text("name"), index, table.position("name"));
    Element element;
    if (type == "subroutine") {
      element = read_plain_element(table, reading);
    } else if (type == "balls") {
      element = read_balls(table, reading);
    } else {
      SoilContact contact;
      contact.element = static_cast<size_t>(index);
      element = read_soil_contact(table, reading, contact);
      contacts.push_back(std::move(contact));
    }
    element.name = table.text("name");
    element.at = table.at();
    reading.model().elements.push_back(std::move(element));
  }
  check_not_mixed(reading.model(), contacts);
  number_soil_contacts(contacts, reading);
}

}  // namespace qvslv
