#include <filesystem>
#include <map>

#include "solver/elements/kinds.h"

namespace qvslv {

namespace fs = std::filesystem;

namespace {

/// Positions in the parameter list of qvsoil_interaction.
enum SoilPar : size_t {
  element_number,
  body_marker,
  road_number = 3,
  road_string,
  road_marker,
  elements_on_road = 7,
  road_count,
  shape,
  size,
  width,
  points_along,
  points_across,
  ground_marker,
  par_count
};

double marker_id(const Model& model, int marker) { return model.markers[static_cast<size_t>(marker)].id; }

void add_sum(const std::string& road, int number, Reading& reading) {
  Element sum;
  sum.subroutine = "qvsoil_interaction_Sum";
  sum.kind = ElementKind::report;
  sum.par = {static_cast<double>(number)};
  sum.name = free_name(reading.elements, fs::path(road).stem().string() + "_sum");
  reading.elements.add_internal(sum.name, static_cast<int>(reading.model().elements.size()));
  set_defaults(sum, *find_layout(sum.subroutine), reading.model());
  reading.model().elements.push_back(std::move(sum));
}

}  // namespace

std::string road_file_of(const TableReader& table, const Reading& reading) {
  const std::string road = table.text("road");
  if (reading.roads.has(road)) {
    const int index = reading.roads.find(road, table.what(), table.position("road"));
    return fs::path(reading.file.roads[static_cast<size_t>(index)].file).lexically_normal().string();
  }
  require_data_file(road, reading, table.what() + ", road", table.position("road"));
  return fs::path(road).lexically_normal().string();
}

Element read_soil_contact(const TableReader& table, Reading& reading, SoilContact& contact) {
  const bool wheel = table.choice("shape", {"plate", "wheel"}) == "wheel";
  const char* size_key = wheel ? "radius" : "length";
  const char* other_key = wheel ? "length" : "radius";
  if (table.has(other_key))
    table.fail(other_key, std::string("a ") + (wheel ? "wheel has a radius" : "plate has a length") + " instead");
  const std::vector<double> grid = table.numbers("grid", 2);
  for (const double count : grid)
    if (!(count >= 1 && count <= 1e5) || count != static_cast<double>(static_cast<int>(count)))
      table.fail("grid", "two whole numbers, 1 or more, are expected: points along (or around) and across");
  contact.road = road_file_of(table, reading);
  contact.sum = table.flag("sum", false);

  const Model& model = reading.model();
  const int on_body = reading.marker(table, "marker"), on_road = reading.marker_or(table, "road_marker", 0);
  Element element;
  element.subroutine = "qvsoil_interaction";
  element.kind = ElementKind::force;
  element.par.assign(par_count, 0.0);
  element.par[body_marker] = marker_id(model, on_body);
  element.par[road_string] = reading.string_id(contact.road, fs::path(contact.road).stem().string());
  element.par[road_marker] = marker_id(model, on_road);
  element.par[shape] = wheel ? 2 : 1;
  element.par[size] = table.positive(size_key);
  element.par[width] = table.positive("width");
  element.par[points_along] = grid[0];
  element.par[points_across] = grid[1];
  element.par[ground_marker] = model.ground_id;
  set_defaults(element, *find_layout(element.subroutine), model);
  return element;
}

void number_soil_contacts(const std::vector<SoilContact>& contacts, Reading& reading) {
  std::vector<std::string> roads;
  std::map<std::string, int> number, count;
  std::map<std::string, bool> sum;
  for (const SoilContact& contact : contacts) {
    if (number.emplace(contact.road, static_cast<int>(roads.size())).second) roads.push_back(contact.road);
    std::vector<double>& par = reading.model().elements[contact.element].par;
    par[element_number] = count[contact.road]++;
    par[road_number] = number[contact.road];
    sum[contact.road] = sum[contact.road] || contact.sum;
  }
  for (const SoilContact& contact : contacts) {
    std::vector<double>& par = reading.model().elements[contact.element].par;
    par[elements_on_road] = count[contact.road];
    par[road_count] = static_cast<double>(roads.size());
  }
  for (const std::string& road : roads)
    if (sum[road]) add_sum(road, number[road], reading);
}

}  // namespace qvslv
