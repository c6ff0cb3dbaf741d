#include "solver/model_file/expand.h"

#include <cstdio>

#include "solver/model_file/par.h"

namespace qvslv {

namespace {

/// A text in TOML's notation, which takes control characters as escapes only.
std::string quoted_text(const std::string& text) {
  std::string result = "\"";
  for (const char c : text) {
    const auto code = static_cast<unsigned char>(c);
    if (code < 0x20 || code == 0x7F) {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\u%04x", code);
      result += escape;
      continue;
    }
    if (c == '"' || c == '\\') result += '\\';
    result += c;
  }
  return result + "\"";
}

std::string padded(std::string text, size_t width) {
  if (text.size() < width) text.append(width - text.size(), ' ');
  return text;
}

std::string par_lines(const Element& element, const Model& model) {
  const SubroutineLayout* layout = find_layout(element.subroutine);
  const std::vector<ParSlot> slots = layout == nullptr ? std::vector<ParSlot>() : slots_of(*layout, element.par);
  std::string text = "par = [\n";
  for (size_t i = 0; i < element.par.size(); ++i) {
    const double value = element.par[i];
    const ParSlot slot = i < slots.size() ? slots[i] : ParSlot{ParKind::number, ""};
    std::string name = name_behind(model, slot, value);
    if (name.empty() && i < element.par_names.size()) name = element.par_names[i];
    const std::string entry = name.empty() ? number_text(value) : quoted_text(name);
    constexpr size_t k_entry_width = 24, k_position_width = 9, k_id_width = 8;
    text += "  " + padded(entry + ", ", k_entry_width) + "# " +
            padded("par[" + std::to_string(i) + "]", k_position_width) +
            padded(name.empty() ? "" : "= " + number_text(value), k_id_width) + slot.meaning + "\n";
  }
  return text + "]\n";
}

std::string column_lines(const Element& element) {
  std::string text = "columns = [\n";
  for (const ResultColumn& column : element.columns)
    text += "  { index = " + std::to_string(column.index) + ", name = " + quoted_text(column.name) +
            ", unit = " + quoted_text(column.unit) + " },\n";
  return text + "]\n";
}

std::string marker_line(const char* key, int marker, const Model& model) {
  if (marker == k_none) return "";
  return std::string(key) + " = " + quoted_text(model.markers[static_cast<size_t>(marker)].name) + "\n";
}

const char* kind_word(ElementKind kind) {
  switch (kind) {
    case ElementKind::force:
      return "force";
    case ElementKind::evaluated:
      return "evaluated";
    case ElementKind::report:
      break;
  }
  return "report";
}

std::string element_text(const Element& element, const Model& model) {
  std::string text = "[[element]]  # id " + std::to_string(element.id) + "\nname = " + quoted_text(element.name) +
                     "\ntype = \"subroutine\"\nsubroutine = " + quoted_text(element.subroutine) + "\n";
  text += std::string("kind = \"") + kind_word(element.kind) + "\"\n";
  if (element.kind == ElementKind::force)
    text += marker_line("marker", element.marker, model) + marker_line("reaction", element.reaction, model) +
            marker_line("axes", element.axes, model);
  text += "result_length = " + std::to_string(element.result_length) + "\n" + par_lines(element, model);
  return text + column_lines(element);
}

std::string head(const char* table, int id, const std::string& name) {
  return std::string("\n[[") + table + "]]  # id " + std::to_string(id) + "\nname = " + quoted_text(name) + "\n";
}

/// The key `id`, if counting would not give the reader this id; otherwise nothing.
template <class Entities>
std::string id_line(const Entities& entities, size_t index) {
  const Entities before(entities.begin(), entities.begin() + static_cast<std::ptrdiff_t>(index));
  const int id = entities[index].id;
  return id == next_id_of(before) ? "" : "id = " + std::to_string(id) + "\n";
}

std::string number_list(const std::vector<double>& values) {
  std::string text = "[";
  for (size_t i = 0; i < values.size(); ++i) text += (i == 0 ? "" : ", ") + number_text(values[i]);
  return text + "]";
}

std::string equation_text(size_t index, const Model& model) {
  const Equation& equation = model.equations[index];
  const bool second = equation.order == 2;
  std::string text = head("equation", equation.id, equation.name) + id_line(model.equations, index) +
                     "order = " + std::to_string(equation.order) + "\ninitial = " +
                     (second ? number_list({equation.value, equation.rate}) : number_text(equation.value)) + "\n";
  if (equation.element == k_none) return text + "value = " + quoted_text(equation.right_side.text) + "\n";
  const Element& element = model.elements[static_cast<size_t>(equation.element)];
  return text + "subroutine = " + quoted_text(element.subroutine) + "  # id " + std::to_string(element.id) +
         "\nresult_length = " + std::to_string(element.result_length) + "\n" + par_lines(element, model);
}

bool is_of_equation(size_t element, const Model& model) {
  for (const Equation& equation : model.equations)
    if (equation.element == static_cast<int>(element)) return true;
  return false;
}

/// The tables of strings, variables, equations and splines, which subroutines and expressions name.
std::string quantities_text(const Model& model) {
  std::string text;
  for (const StringEntity& entity : model.strings)
    text += head("string", entity.id, entity.name) + "text = " + quoted_text(entity.text) + "\n";
  for (size_t i = 0; i < model.variables.size(); ++i) {
    const Variable& variable = model.variables[i];
    text += head("variable", variable.id, variable.name) + id_line(model.variables, i) +
            "value = " + quoted_text(variable.value.text) + "\n";
  }
  for (size_t i = 0; i < model.equations.size(); ++i) text += equation_text(i, model);
  for (const Spline& spline : model.splines)
    text += head("spline", spline.id, spline.name) + "x = " + number_list(spline.x) + "\ny = " + number_list(spline.y) +
            "\n";
  return text;
}

}  // namespace

std::string expanded(const Model& model) {
  std::string text =
      "# Plain layer of " + model.path + ": what the subroutines are called with.\n" +
      "# Names stand for ids; the id of this model is behind the equals sign in the remark. Another host\n"
      "# numbers its entities itself: put its ids there.\n#\n# Markers and bodies:\n";
  for (const Marker& marker : model.markers) text += "#   " + padded(std::to_string(marker.id), 5) + marker.name + "\n";
  if (!model.forces.empty()) text += "#\n# Forces:\n";
  for (const AppliedForce& force : model.forces)
    text += "#   " + padded(std::to_string(force.id), 5) + force.name + "\n";
  text += quantities_text(model);
  for (size_t i = 0; i < model.elements.size(); ++i)
    if (!is_of_equation(i, model)) text += "\n" + element_text(model.elements[i], model);
  return text;
}

}  // namespace qvslv
