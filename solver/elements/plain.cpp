#include "solver/elements/plain.h"

#include <cmath>
#include <stdexcept>

#include "solver/elements/defaults.h"
#include "solver/elements/kinds.h"
#include "solver/model/nearest_name.h"
#include "solver/model/printable.h"
#include "solver/model_file/par.h"

namespace qvslv {

namespace {

/// A text that becomes part of a column's head.
std::string head_text(const TableReader& column, const std::string& key, const std::string& text) {
  if (!is_printable_line(text))
    column.fail(key, "'" + shown_on_a_line(text) +
                         "' holds a control character; letters, digits, signs and blanks are expected");
  return text;
}

std::vector<ResultColumn> read_columns(const TableReader& table, int result_length) {
  std::vector<ResultColumn> columns;
  if (!table.has("columns")) return columns;
  for (const TableReader& column : table.tables("columns", {"index", "name", "unit"})) {
    const double index = column.number("index");
    if (!(index >= 0 && index < result_length) || index != std::floor(index))
      column.fail("index", "must be a whole number from 0 to " + std::to_string(result_length - 1));
    columns.push_back({static_cast<int>(index), head_text(column, "name", column.text("name")),
                       head_text(column, "unit", column.text("unit", ""))});
  }
  return columns;
}

std::vector<std::string> known_subroutines() {
  std::vector<std::string> names;
  for (const SubroutineLayout& layout : subroutine_layouts()) names.emplace_back(layout.name);
  return names;
}

/// Throws unless the file says all that is needed about a subroutine of the user's own library. An equation's call
/// needs no `kind`.
void check_foreign(const TableReader& table, const Element& element, Reading& reading) {
  const std::vector<std::string> known = known_subroutines();
  const bool in_equation = element.kind == ElementKind::evaluated && !table.has("kind");
  if (!table.has("result_length") || !(table.has("kind") || in_equation))
    table.fail("subroutine", "'" + element.subroutine + "' is not known; " + name_hint(element.subroutine, known) +
                                 " (one of your own library needs " +
                                 (in_equation ? "the key result_length)" : "the keys kind and result_length)"));
  const std::string nearest = nearest_name(element.subroutine, known);
  if (!nearest.empty())
    reading.file.findings.push_back({Level::warning, "subroutine-similar", table.position("subroutine"),
                                     table.what() + ": the subroutine '" + element.subroutine +
                                         "' is taken as your own; '" + nearest +
                                         "' is the known one of a similar name"});
}

ElementKind kind_named(const std::string& word) {
  if (word == "force") return ElementKind::force;
  return word == "evaluated" ? ElementKind::evaluated : ElementKind::report;
}

/// Number of results that a known subroutine writes for these parameters; 0 for an unknown subroutine.
int least_result_length(const Element& element, const TableReader& table) {
  const SubroutineLayout* layout = find_layout(element.subroutine);
  try {
    return layout != nullptr ? result_length(*layout, element.par) : 0;
  } catch (const std::runtime_error& error) {
    table.fail("par", error.what());
  }
}

/// Reads subroutine, parameters and results, which elements and equations have in common.
void read_call(const TableReader& table, Element& element, Reading& reading) {
  element.subroutine = table.text("subroutine");
  const SubroutineLayout* layout = find_layout(element.subroutine);
  if (layout == nullptr) check_foreign(table, element, reading);
  read_par(table, layout, element, reading);
  if (table.has("result_length")) element.result_length = table.count("result_length");
  const int least = least_result_length(element, table);
  if (element.result_length == 0) element.result_length = least;
  if (element.result_length < least || element.result_length == 0)
    table.fail(table.has("result_length") ? "result_length" : "par",
               "these parameters make " + element.subroutine + " write " + std::to_string(least) + " results");
}

}  // namespace

Element read_equation_call(const TableReader& table, Reading& reading) {
  Element element;
  element.kind = ElementKind::evaluated;
  read_call(table, element, reading);
  set_defaults(element, reading.model());
  return element;
}

namespace {

Element read_plain(const TableReader& table, Reading& reading) {
  Element element;
  const SubroutineLayout* layout = find_layout(table.text("subroutine"));
  element.kind = layout != nullptr ? layout->kind : ElementKind::report;
  if (table.has("kind")) element.kind = kind_named(table.choice("kind", {"force", "evaluated", "report"}));
  read_call(table, element, reading);
  element.marker = reading.marker_or(table, "marker", k_none);
  element.reaction = reading.marker_or(table, "reaction", k_none);
  element.axes = reading.marker_or(table, "axes", k_none);
  element.columns = read_columns(table, element.result_length);
  set_defaults(element, reading.model());
  if (element.kind == ElementKind::force && element.marker == k_none) table.fail("a force needs a 'marker' to act on");
  if (element.kind == ElementKind::force && element.result_length < 6)
    table.fail("a force needs six results (force and torque), there are " + std::to_string(element.result_length));
  return element;
}

}  // namespace

ReadableKind plain_kind() {
  return {"subroutine",
          {"subroutine", "par", "kind", "marker", "reaction", "axes", "result_length", "columns"},
          make_kind_reader<SingleReader<read_plain>>};
}

}  // namespace qvslv
