#include "solver/expand.h"

#include "solver/elements.h"

namespace qvslv {

namespace {

std::string quoted(const std::string& text) {
  std::string result = "\"";
  for (const char c : text) {
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
    const std::string entry = name.empty() ? number_text(value) : quoted(name);
    constexpr size_t k_entry_width = 24, k_position_width = 9, k_id_width = 8;
    text += "  " + padded(entry + ",", k_entry_width) + "# " +
            padded("par[" + std::to_string(i) + "]", k_position_width) +
            padded(name.empty() ? "" : "= " + number_text(value), k_id_width) + slot.meaning + "\n";
  }
  return text + "]\n";
}

std::string column_lines(const Element& element) {
  std::string text = "columns = [\n";
  for (const ResultColumn& column : element.columns)
    text += "  { index = " + std::to_string(column.index) + ", name = " + quoted(column.name) +
            ", unit = " + quoted(column.unit) + " },\n";
  return text + "]\n";
}

std::string marker_line(const char* key, int marker, const Model& model) {
  if (marker == k_none) return "";
  return std::string(key) + " = " + quoted(model.markers[static_cast<size_t>(marker)].name) + "\n";
}

std::string element_text(const Element& element, const Model& model) {
  std::string text = "[[element]]\nname = " + quoted(element.name) +
                     "\ntype = \"subroutine\"\nsubroutine = " + quoted(element.subroutine) + "\n";
  const bool force = element.kind == ElementKind::force;
  text += std::string("kind = ") + (force ? "\"force\"" : "\"report\"") + "\n";
  if (force)
    text += marker_line("marker", element.marker, model) + marker_line("reaction", element.reaction, model) +
            marker_line("axes", element.axes, model);
  text += "result_length = " + std::to_string(element.result_length) + "\n" + par_lines(element, model);
  return text + column_lines(element);
}

}  // namespace

std::string expanded(const Model& model) {
  std::string text =
      "# Plain layer of " + model.path + ": what the subroutines are called with.\n" +
      "# Names stand for ids; the id of this model is behind the equals sign in the remark. Another host\n"
      "# numbers its entities itself: put its ids there.\n#\n# Markers and bodies:\n";
  for (const Marker& marker : model.markers) text += "#   " + padded(std::to_string(marker.id), 5) + marker.name + "\n";
  for (const StringEntity& entity : model.strings)
    text += "\n[[string]]  # id " + std::to_string(entity.id) + "\nname = " + quoted(entity.name) +
            "\ntext = " + quoted(entity.text) + "\n";
  for (const Element& element : model.elements) text += "\n" + element_text(element, model);
  return text;
}

}  // namespace qvslv
