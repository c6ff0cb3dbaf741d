#include "solver/elements/defaults.h"

#include <string>

#include "qvbrisk/layouts.h"

namespace qvslv {

namespace {

/// Adds the columns of a slot whose first value is result `first`; the "%" in its name becomes `owner`.
void add_columns(const ResultSlot& slot, int first, const std::string& owner, const UnitSymbols& units,
                 std::vector<ResultColumn>& columns) {
  if (slot.column.empty()) return;
  std::string name = slot.column;
  const size_t place = name.find('%');
  if (place != std::string::npos) name.replace(place, 1, owner);
  const std::string unit = unit_of(slot.quantity, units);
  if (slot.values == 1) {
    columns.push_back({first, name, unit});
    return;
  }
  const char* axes[] = {"_x", "_y", "_z"};
  for (int k = 0; k < slot.values; ++k) columns.push_back({first + k, name + axes[k], unit});
}

/// Name of the thing that the results of one round belong to: the ball's body, otherwise a check point by its number.
std::string owner_of(const Element& element, int round, const Model& model) {
  if (element.subroutine != "qvballplacing_report") return "point_" + std::to_string(round);
  const int body = find_body(model, static_cast<int>(element.par[QV_BALLS_LENGTH + static_cast<size_t>(round)]));
  return body == k_none ? "ball_" + std::to_string(round) : model.bodies[static_cast<size_t>(body)].name;
}

std::vector<ResultColumn> columns_of(const SubroutineLayout& layout, const Element& element, const Model& model) {
  const UnitSymbols units(model.units);
  std::vector<ResultColumn> columns;
  int at = 0;
  for (const ResultSlot& slot : layout.fixed_results) {
    add_columns(slot, at, "", units, columns);
    at += slot.values;
  }
  if (layout.contact_points || layout.repeated_results.slots.empty()) return columns;
  const int rounds = layout.repeated_results.count(element.par);
  for (int round = 0; round < rounds; ++round)
    for (const ResultSlot& slot : layout.repeated_results.slots) {
      add_columns(slot, at, owner_of(element, round, model), units, columns);
      at += slot.values;
    }
  return columns;
}

ContactPoints contact_points(const SubroutineLayout& layout, int result_length) {
  if (!layout.contact_points) return {};
  const int first = fixed_result_length(layout);
  return {first, (result_length - first) / repeated_result_length(layout)};
}

}  // namespace

double marker_id(const Model& model, int marker) { return model.markers[static_cast<size_t>(marker)].id; }

std::vector<ResultColumn> default_columns(const Element& element, const Model& model) {
  const SubroutineLayout* layout = find_layout(element.subroutine);
  if (layout != nullptr) return columns_of(*layout, element, model);
  std::vector<ResultColumn> columns;
  columns.reserve(static_cast<size_t>(element.result_length));
  for (int i = 0; i < element.result_length; ++i) columns.push_back({i, "result_" + std::to_string(i), ""});
  return columns;
}

void set_defaults(Element& element, const Model& model) {
  const SubroutineLayout* layout = find_layout(element.subroutine);
  if (layout != nullptr && element.result_length == 0) element.result_length = result_length(*layout, element.par);
  if (element.columns.empty()) element.columns = default_columns(element, model);
  if (layout == nullptr) return;
  const auto marker_in_par = [&](int position, int otherwise) {
    return position < 0 ? otherwise : find_marker(model, static_cast<int>(element.par[static_cast<size_t>(position)]));
  };
  element.points = contact_points(*layout, element.result_length);
  if (element.marker == k_none) element.marker = marker_in_par(layout->marker_par, k_none);
  if (element.axes == k_none) element.axes = marker_in_par(layout->axes_par, 0);
  if (element.reaction == k_none) element.reaction = marker_in_par(layout->reaction_par, k_none);
  if (layout->road_string_par < 0) return;
  element.road_string = static_cast<int>(element.par[static_cast<size_t>(layout->road_string_par)]);
  element.road_marker = marker_in_par(layout->road_marker_par, k_none);
}

}  // namespace qvslv
