#include "solver/model_file/par.h"

#include <cmath>
#include <stdexcept>

#include "solver/model/nearest_name.h"

namespace qvslv {

namespace {

const std::vector<std::string> k_prefixes = {"marker", "body", "string", "variable", "equation", "spline", "force"};

struct NamedEntry {
  std::string prefix, name;  ///< both empty if there is no colon
};

NamedEntry split(const Value& value) {
  if (value.kind != Value::Kind::text) return {};
  const size_t colon = value.text.find(':');
  const bool alternative = value.text.find('?') != std::string::npos;  // its colon belongs to a ? b : c
  if (colon == std::string::npos || alternative) return {};
  return {value.text.substr(0, colon), value.text.substr(colon + 1)};
}

std::string role_of(const TableReader& table, size_t position) {
  return table.what() + ", par[" + std::to_string(position) + "]";
}

template <class Entities>
double id_of(const Entities& entities, const NameTable& names, const std::string& name, const std::string& role,
             const FilePosition& at) {
  return entities[static_cast<size_t>(names.find(name, role, at))].id;
}

/// One entry: a number, an expression, or the id behind a name. The id of a force is filled in later.
double par_value(const Value& value, const TableReader& table, Reading& reading, size_t position) {
  const NamedEntry entry = split(value);
  if (entry.prefix.empty()) return table.number_of(value, "par");
  const Model& model = reading.model();
  const std::string role = role_of(table, position);
  if (entry.prefix == "marker") return id_of(model.markers, reading.markers, entry.name, role, value.at);
  if (entry.prefix == "body") return id_of(model.bodies, reading.bodies, entry.name, role, value.at);
  if (entry.prefix == "string") return id_of(model.strings, reading.strings, entry.name, role, value.at);
  if (entry.prefix == "variable") return id_of(model.variables, reading.variables, entry.name, role, value.at);
  if (entry.prefix == "equation") return id_of(model.equations, reading.equations, entry.name, role, value.at);
  if (entry.prefix == "spline") return id_of(model.splines, reading.splines, entry.name, role, value.at);
  if (entry.prefix == "force") {
    ask_for_force(reading, model.elements.size(), position, entry.name, role, value.at);
    return 0;
  }
  throw ModelError(value.at,
                   role + ": '" + entry.prefix + ":' is no kind of name; " + name_hint(entry.prefix, k_prefixes));
}

/// What may stand before the colon if a slot holds an id; empty if it holds none.
std::vector<std::string> prefixes_of(ParKind kind) {
  switch (kind) {
    case ParKind::marker:
    case ParKind::marker_or_none:
      return {"marker"};
    case ParKind::body:
      return {"body"};
    case ParKind::file:
      return {"string"};
    case ParKind::variable:
      return {"variable", "equation"};
    case ParKind::equation:
      return {"equation"};
    case ParKind::spline:
      return {"spline"};
    case ParKind::force:
      return {"force", "marker"};
    case ParKind::number:
    case ParKind::unused:
      break;
  }
  return {};
}

bool contains(const std::vector<std::string>& names, const std::string& name) {
  for (const std::string& candidate : names)
    if (candidate == name) return true;
  return false;
}

[[noreturn]] void refuse_id(const std::string& written, const std::vector<std::string>& prefixes,
                            const std::string& role, const FilePosition& at) {
  throw ModelError(at, role + ": " + written + " is no " + prefixes[0] + "; write \"" + prefixes[0] + ":name\"");
}

template <class Entities>
std::string name_at(const Entities& entities, const char* prefix, double id) {
  if (!(id >= 1 && id < static_cast<double>(entities.size()) + 1)) return "";
  return prefix + entities[static_cast<size_t>(id) - 1].name;
}

template <class Entities>
std::string name_with_id(const Entities& entities, const char* prefix, double id) {
  for (const auto& entity : entities)
    if (static_cast<double>(entity.id) == std::trunc(id)) return prefix + entity.name;
  return "";
}

/// Throws if an equation is named whose id a variable has too: asked for a value, the host answers with the variable's.
void check_reads_equation(const Value& value, double id, const std::string& role, const Model& model) {
  if (split(value).prefix != "equation") return;
  const std::string variable = name_with_id(model.variables, "", id);
  if (variable.empty()) return;
  throw ModelError(value.at, role + ": '" + value.text + "' has the id " + number_text(id) +
                                 ", and so has the variable '" + variable +
                                 "', whose value would be read; make a variable with the equation's name as its value "
                                 "and name that");
}

/// Throws if an id does not belong to something of the right kind, whether it was written as a name or as a number.
void check_slot(const ParSlot& slot, size_t position, const TableReader& table, Reading& reading, double number) {
  const std::vector<std::string> prefixes = prefixes_of(slot.kind);
  if (prefixes.empty() || (slot.kind == ParKind::marker_or_none && number == 0)) return;
  const Value& value = table.value("par").list[position];
  const Model& model = reading.model();
  const std::string role = role_of(table, position) + " (" + slot.meaning + ")";
  const std::string written = value.kind == Value::Kind::text ? "'" + value.text + "'" : number_text(number);
  const std::string prefix = split(value).prefix;
  if (!prefix.empty() && !contains(prefixes, prefix)) refuse_id(written, prefixes, role, value.at);
  if (slot.kind == ParKind::force) {
    if (prefix.empty())
      reading.force_references.push_back({model.elements.size(), position, "", number, role, value.at});
    return;
  }
  if (name_behind(model, slot, number).empty()) refuse_id(written, prefixes, role, value.at);
  if (slot.kind == ParKind::variable) check_reads_equation(value, number, role, model);
  if (slot.kind == ParKind::file)
    require_data_file(model.strings[static_cast<size_t>(number) - 1].text, reading, role, value.at,
                      table_for(slot.meaning));
}

void check_par(const Element& element, const SubroutineLayout& layout, const TableReader& table, Reading& reading) {
  std::vector<ParSlot> slots;
  try {
    slots = slots_of(layout, element.par);
  } catch (const std::runtime_error& error) {
    table.fail("par", error.what());
  }
  if (element.par.size() != slots.size()) {
    const bool fixed_part_only = element.par.size() < layout.fixed_par.size() && !layout.repeated_par.empty();
    table.fail("par", element.subroutine + " takes " + (fixed_part_only ? "at least " : "") +
                          std::to_string(slots.size()) + " numbers, not " + std::to_string(element.par.size()) + ":" +
                          layout_text(slots));
  }
  for (size_t i = 0; i < slots.size(); ++i) check_slot(slots[i], i, table, reading, element.par[i]);
}

/// Id of a force or element by name. Both may share a name as long as nothing refers to it.
double force_id(const Reading& reading, const ForceReference& reference) {
  const Model& model = reading.file.model;
  const bool element = reading.elements.has(reference.name), applied = reading.forces.has(reference.name);
  if (element && applied)
    throw ModelError(reference.at, reference.role + ": both a force and an element are called '" + reference.name +
                                       "'; rename one of them");
  if (!element && !applied) {
    std::vector<std::string> known = reading.forces.known();
    for (const std::string& name : reading.elements.known()) known.push_back(name);
    throw ModelError(reference.at, reference.role + ": there is no force or element '" + reference.name + "'; " +
                                       name_hint(reference.name, known));
  }
  const NameTable& names = applied ? reading.forces : reading.elements;
  const int index = names.find(reference.name, reference.role, reference.at);
  if (index == k_none)
    throw ModelError(reference.at, reference.role + ": '" + reference.name +
                                       "' has several parts; name one of them ('" + reference.name + "_1', ...)");
  if (applied) return model.forces[static_cast<size_t>(index)].id;
  return model.elements[static_cast<size_t>(index)].id;
}

}  // namespace

std::string table_for(const std::string& meaning) {
  if (meaning.find("WAVE") != std::string::npos) return "wave";
  return meaning.find("CURRENT") != std::string::npos ? "current" : "road";
}

void read_par(const TableReader& table, const SubroutineLayout* layout, Element& element, Reading& reading) {
  if (table.value("par").kind != Value::Kind::list)
    table.fail("par", "a list of numbers and names is expected, not " + described(table.value("par")));
  for (const Value& value : table.value("par").list) {
    element.par.push_back(par_value(value, table, reading, element.par.size()));
    element.par_names.push_back(split(value).prefix.empty() ? "" : value.text);
  }
  if (layout != nullptr) check_par(element, *layout, table, reading);
}

void ask_for_force(Reading& reading, size_t element, size_t position, const std::string& name, const std::string& role,
                   const FilePosition& at) {
  reading.force_references.push_back({element, position, name, 0, role, at});
}

void number_elements(Reading& reading) {
  Model& model = reading.model();
  int id = static_cast<int>(model.markers.size() + model.forces.size());
  for (Element& element : model.elements) element.id = ++id;
  for (const ForceReference& reference : reading.force_references) {
    double& entry = model.elements[reference.element].par[reference.position];
    if (!reference.name.empty()) {
      entry = force_id(reading, reference);
    } else if (name_behind(model, {ParKind::force, ""}, reference.id).empty()) {
      refuse_id(number_text(reference.id), prefixes_of(ParKind::force), reference.role, reference.at);
    }
  }
}

std::string name_behind(const Model& model, const ParSlot& slot, double value) {
  switch (slot.kind) {
    case ParKind::marker:
    case ParKind::marker_or_none:
      return name_at(model.markers, "marker:", value);
    case ParKind::body:
      return name_with_id(model.bodies, "body:", value);
    case ParKind::file:
      return name_at(model.strings, "string:", value);
    case ParKind::variable: {
      const std::string variable = name_with_id(model.variables, "variable:", value);
      return variable.empty() ? name_with_id(model.equations, "equation:", value) : variable;
    }
    case ParKind::equation:
      return name_with_id(model.equations, "equation:", value);
    case ParKind::spline:
      return name_at(model.splines, "spline:", value);
    case ParKind::force: {
      const std::string applied = name_with_id(model.forces, "force:", value);
      const std::string element = applied.empty() ? name_with_id(model.elements, "force:", value) : applied;
      return element.empty() ? name_at(model.markers, "marker:", value) : element;
    }
    case ParKind::number:
    case ParKind::unused:
      break;
  }
  return "";
}

}  // namespace qvslv
