#include <filesystem>
#include <map>

#include "qvbrisk/layouts.h"
#include "solver/elements/defaults.h"
#include "solver/elements/kinds.h"

/// type = "soil_contact": one qvsoil_interaction, and one qvsoil_interaction_Sum for its road if a contact asks for it.
namespace qvslv {

namespace fs = std::filesystem;

namespace {

struct SoilContact {
  size_t element = 0;  ///< index into Model::elements
  std::string road;    ///< file of its road
  bool sum = false;    ///< whether it asks for the road's sum
};

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
  contact.road = road_file_of(table, "road", reading);
  contact.sum = table.flag("sum", false);

  const Model& model = reading.model();
  const int on_body = reading.marker(table, "marker"), on_road = reading.marker_or(table, "road_marker", 0);
  Element element;
  element.subroutine = "qvsoil_interaction";
  element.kind = ElementKind::force;
  element.par.assign(QV_SOIL_LENGTH, 0.0);
  element.par[QV_SOIL_BODY_MARKER] = marker_id(model, on_body);
  element.par[QV_SOIL_ROAD_STRING] = reading.string_id(contact.road, fs::path(contact.road).stem().string());
  element.par[QV_SOIL_ROAD_MARKER] = marker_id(model, on_road);
  element.par[QV_SOIL_SHAPE] = wheel ? 2 : 1;
  element.par[QV_SOIL_SIZE] = table.positive(size_key);
  element.par[QV_SOIL_WIDTH] = table.positive("width");
  element.par[QV_SOIL_POINTS_ALONG] = grid[0];
  element.par[QV_SOIL_POINTS_ACROSS] = grid[1];
  element.par[QV_SOIL_GROUND_MARKER] = model.ground_id;
  set_defaults(element, model);
  return element;
}

void add_sum(const std::string& road, int number, Reading& reading) {
  Element sum;
  sum.subroutine = "qvsoil_interaction_Sum";
  sum.kind = ElementKind::report;
  sum.par.assign(QV_SOIL_SUM_LENGTH, 0.0);
  sum.par[QV_SOIL_SUM_ROAD] = number;
  sum.name = free_name(reading.elements, fs::path(road).stem().string() + "_sum");
  reading.elements.add_internal(sum.name, static_cast<int>(reading.model().elements.size()));
  set_defaults(sum, reading.model());
  reading.model().elements.push_back(std::move(sum));
}

/// Roads are numbered in the order of their first contact, the contacts of a road in the order of the file.
void number_soil_contacts(const std::vector<SoilContact>& contacts, Reading& reading) {
  std::vector<std::string> roads;
  std::map<std::string, int> number, count;
  std::map<std::string, bool> sum;
  for (const SoilContact& contact : contacts) {
    if (number.emplace(contact.road, static_cast<int>(roads.size())).second) roads.push_back(contact.road);
    std::vector<double>& par = reading.model().elements[contact.element].par;
    par[QV_SOIL_ELEMENT] = count[contact.road]++;
    par[QV_SOIL_ROAD] = number[contact.road];
    sum[contact.road] = sum[contact.road] || contact.sum;
  }
  for (const SoilContact& contact : contacts) {
    std::vector<double>& par = reading.model().elements[contact.element].par;
    par[QV_SOIL_ELEMENTS_ON_ROAD] = count[contact.road];
    par[QV_SOIL_ROAD_COUNT] = static_cast<double>(roads.size());
  }
  for (const std::string& road : roads)
    if (sum[road]) add_sum(road, number[road], reading);
}

class SoilContactReader : public KindReader {
public:
  std::vector<Element> read(const TableReader& table, Reading& reading) override {
    m_contacts.emplace_back();
    m_contacts.back().element = reading.model().elements.size();
    return {read_soil_contact(table, reading, m_contacts.back())};
  }
  void finish(Reading& reading) override { number_soil_contacts(m_contacts, reading); }

private:
  std::vector<SoilContact> m_contacts;
};

}  // namespace

ReadableKind soil_contact_kind() {
  return {"soil_contact",
          {"shape", "marker", "road", "road_marker", "radius", "length", "width", "grid", "sum"},
          make_kind_reader<SoilContactReader>,
          {"qvsoil_interaction"},
          "road and element numbers are counted over all contacts"};
}

}  // namespace qvslv
