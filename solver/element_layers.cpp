#include <cmath>
#include <stdexcept>

#include "solver/elements.h"
#include "solver/nearest_name.h"

namespace qvslv {

namespace {

/// One entry of `par`: a number, an expression, or "marker:", "body:", "string:" and a name.
double par_value(const Value& value, const TableReader& table, const Reading& reading, const std::string& role) {
  if (value.kind != Value::Kind::text) return table.number_of(value, "par");
  const size_t colon = value.text.find(':');
  const std::string prefix = colon == std::string::npos ? "" : value.text.substr(0, colon);
  const std::string name = colon == std::string::npos ? "" : value.text.substr(colon + 1);
  const Model& model = reading.file.model;
  if (prefix == "marker") return model.markers[static_cast<size_t>(reading.markers.find(name, role, value.at))].id;
  if (prefix == "body") return model.bodies[static_cast<size_t>(reading.bodies.find(name, role, value.at))].id;
  if (prefix == "string") return model.strings[static_cast<size_t>(reading.strings.find(name, role, value.at))].id;
  if (!prefix.empty() && value.text.find('?') == std::string::npos)
    throw ModelError(
        value.at, role + ": '" + prefix + ":' is no kind of name; " + name_hint(prefix, {"marker", "body", "string"}));
  return table.number_of(value, "par");
}

std::string role_of(const TableReader& table, size_t position) {
  return table.what() + ", par[" + std::to_string(position) + "]";
}

/// An id must be that of something of the right kind, however it was written.
void check_slot(const ParSlot& slot, size_t position, const TableReader& table, const Reading& reading, double number) {
  const Value& value = table.value("par").list[position];
  const Model& model = reading.file.model;
  const std::string role = role_of(table, position) + " (" + slot.meaning + ")";
  const char* kind = slot.kind == ParKind::marker ? "marker" : slot.kind == ParKind::body ? "body" : "string";
  const bool is_id = slot.kind == ParKind::marker || slot.kind == ParKind::body || slot.kind == ParKind::file;
  if (!is_id) return;
  const std::string expected = std::string(kind) + ":";
  const bool another = value.kind == Value::Kind::text && value.text.find(':') != std::string::npos &&
                       value.text.rfind(expected, 0) != 0;
  if (another || name_behind(model, slot, number).empty())
    throw ModelError(value.at, role + ": " +
                                   (value.kind == Value::Kind::text ? "'" + value.text + "'" : number_text(number)) +
                                   " is no " + kind + "; write \"" + expected + "name\"");
  if (slot.kind == ParKind::file)
    require_data_file(model.strings[static_cast<size_t>(number) - 1].text, reading, role, value.at);
}

void check_par(const Element& element, const SubroutineLayout& layout, const TableReader& table,
               const Reading& reading) {
  std::vector<ParSlot> slots;
  try {
    slots = slots_of(layout, element.par);
  } catch (const std::runtime_error& error) {
    table.fail("par", error.what());
  }
  if (element.par.size() != slots.size()) {
    const bool fixed_part_only = element.par.size() < layout.fixed_slots.size() && layout.add_counted_slots != nullptr;
    table.fail("par", element.subroutine + " takes " + (fixed_part_only ? "at least " : "") +
                          std::to_string(slots.size()) + " numbers, not " + std::to_string(element.par.size()) + ":" +
                          layout_text(slots));
  }
  for (size_t i = 0; i < slots.size(); ++i) check_slot(slots[i], i, table, reading, element.par[i]);
}

std::vector<ResultColumn> read_columns(const TableReader& table, int result_length) {
  std::vector<ResultColumn> columns;
  if (!table.has("columns")) return columns;
  for (const TableReader& column : table.tables("columns", {"index", "name", "unit"})) {
    const double index = column.number("index");
    if (!(index >= 0 && index < result_length) || index != std::floor(index))
      column.fail("index", "must be a whole number from 0 to " + std::to_string(result_length - 1));
    columns.push_back({static_cast<int>(index), column.text("name"), column.text("unit", "")});
  }
  return columns;
}

std::vector<std::string> known_subroutines() {
  std::vector<std::string> names;
  for (const SubroutineLayout& layout : subroutine_layouts()) names.emplace_back(layout.name);
  return names;
}

/// A subroutine of the user's own library: everything about it must be in the file.
void check_foreign(const TableReader& table, const std::string& subroutine, Reading& reading) {
  const std::vector<std::string> known = known_subroutines();
  if (!table.has("result_length") || !table.has("kind"))
    table.fail("subroutine", "'" + subroutine + "' is not known; " + name_hint(subroutine, known) +
                                 " (one of your own library needs the keys kind and result_length)");
  const std::string nearest = nearest_name(subroutine, known);
  if (!nearest.empty())
    reading.file.warnings.push_back(table.what() + ": the subroutine '" + subroutine + "' is taken as your own; '" +
                                    nearest + "' is the known one of a similar name");
}

}  // namespace

Element read_plain_element(const TableReader& table, Reading& reading) {
  Element element;
  element.subroutine = table.text("subroutine");
  const SubroutineLayout* layout = find_layout(element.subroutine);
  if (layout == nullptr) check_foreign(table, element.subroutine, reading);
  element.kind = layout != nullptr ? layout->kind : ElementKind::report;
  if (table.has("kind"))
    element.kind = table.choice("kind", {"force", "report"}) == "force" ? ElementKind::force : ElementKind::report;
  if (table.value("par").kind != Value::Kind::list)
    table.fail("par", "a list of numbers and names is expected, not " + described(table.value("par")));
  for (const Value& value : table.value("par").list) {
    element.par.push_back(par_value(value, table, reading, role_of(table, element.par.size())));
    element.par_names.push_back(
        value.kind == Value::Kind::text && value.text.find(':') != std::string::npos ? value.text : "");
  }
  if (layout != nullptr) check_par(element, *layout, table, reading);
  element.marker = reading.marker_or(table, "marker", k_none);
  element.reaction = reading.marker_or(table, "reaction", k_none);
  element.axes = reading.marker_or(table, "axes", k_none);
  if (table.has("result_length")) element.result_length = table.count("result_length");
  const int least = layout != nullptr ? layout->result_length(element.par) : 0;
  if (element.result_length == 0) element.result_length = least;
  if (element.result_length < least || element.result_length == 0)
    table.fail(table.has("result_length") ? "result_length" : "par",
               "these parameters make " + element.subroutine + " write " + std::to_string(least) + " results");
  element.columns = read_columns(table, element.result_length);
  if (layout != nullptr) {
    set_defaults(element, *layout, reading.model());
  } else if (element.columns.empty()) {
    element.columns = default_columns(element, reading.model());
  }
  if (element.kind == ElementKind::force && element.marker == k_none) table.fail("a force needs a 'marker' to act on");
  if (element.kind == ElementKind::force && element.result_length < 6)
    table.fail("a force needs six results (force and torque), there are " + std::to_string(element.result_length));
  return element;
}

Element read_balls(const TableReader& table, Reading& reading) {
  const std::vector<std::string> names = table.texts("bodies");
  std::vector<double> diameters;
  if (table.has("diameters")) diameters = table.numbers("diameters", names.size());
  Element element;
  element.subroutine = "qvballplacing_report";
  element.kind = ElementKind::report;
  element.par = {0, static_cast<double>(names.size())};
  const Model& model = reading.model();
  std::vector<double> shape_diameters;
  for (const std::string& name : names) {
    const Body& body = model.bodies[static_cast<size_t>(
        reading.bodies.find(name, table.what() + ", bodies", table.position("bodies")))];
    if (diameters.empty() && body.shape.kind != ShapeKind::sphere)
      table.fail("bodies", "'" + name + "' has no sphere as its shape; give its diameter in 'diameters'");
    element.par.push_back(body.id);
    shape_diameters.push_back(2.0 * body.shape.radius);
  }
  for (const double diameter : diameters.empty() ? shape_diameters : diameters) element.par.push_back(diameter);
  if (names.empty()) table.fail("bodies", "name at least one ball");
  set_defaults(element, *find_layout(element.subroutine), model);
  return element;
}

}  // namespace qvslv
