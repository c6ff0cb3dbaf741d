#include <cmath>
#include <filesystem>
#include <optional>

#include "qvbrisk/layouts.h"
#include "solver/data_files/hull_mesh.h"
#include "solver/elements/defaults.h"
#include "solver/elements/hull_mesh.h"
#include "solver/elements/kinds.h"
#include "solver/model_file/par.h"

/// type = "hull": a qvhydro_force for each slice of its mesh, and a qvhydro_report if one is asked for.
namespace qvslv {

namespace {

/// The report of a hull, made when all elements are there.
struct HullReport {
  std::string force;  ///< name of the force whose z component it reports; empty for the hull's first slice
  FilePosition force_at;
  int force_marker = 0;     ///< index into Model::markers, gives the force's axes
  std::vector<int> points;  ///< indices into Model::markers: points whose heights over the water it reports
};

struct HullElement {
  std::string name;
  size_t first_element = 0;  ///< index into Model::elements of the first slice; the others follow
  int parts = 1;
  int body = 0;          ///< index into Model::bodies
  int water_marker = 0;  ///< index into Model::markers
  std::optional<HullReport> report;
  FilePosition at;
};

/// A marker that must be fixed to the hull's body.
int marker_on_body(const TableReader& table, const char* key, int body, const Reading& reading) {
  const Model& model = reading.file.model;
  const int marker = reading.marker(table, key);
  if (model.markers[static_cast<size_t>(marker)].body != body)
    table.fail(key, "'" + table.text(key) + "' is not on the body '" + model.bodies[static_cast<size_t>(body)].name +
                        "', which the hull belongs to");
  return marker;
}

double gravity_of(const TableReader& table, const Model& model) {
  if (table.has("gravity")) return table.positive("gravity");
  const double g = length(model.gravity);
  if (!(g > 0)) table.fail("the model has no gravity to lift the hull; give it as 'gravity'");
  return g;
}

/// Skin drag is coefficient * area * speed^exponent.
struct Skin {
  double coefficient = 0, exponent = 1;
};
Skin skin_of(const TableReader& hull) {
  if (!hull.has("tangential")) return {};
  const TableReader table = hull.table("tangential", {"coefficient", "exponent"});
  const Skin skin{table.number("coefficient"), table.number("exponent")};
  if (skin.coefficient < 0) table.fail("coefficient", "must not be negative, is " + number_text(skin.coefficient));
  if (skin.exponent < 0) table.fail("exponent", "must not be negative, is " + number_text(skin.exponent));
  return skin;
}

/// The subroutine multiplies its loads by powers of the unit factors; in SI, and wherever the force unit is the newton,
/// they come to 1. Elsewhere this load scale makes buoyancy and normal drag come out in the model's units.
double scale_in_units(double scale, const Units& units) {
  return scale * units.length_factor * units.mass_factor * units.force_factor / (units.time_factor * units.time_factor);
}

/// The same for skin drag, in which the unit of speed has another power.
double coefficient_in_units(const Skin& skin, const Units& units) {
  return skin.coefficient * units.time_factor * std::pow(units.length_factor / units.time_factor, skin.exponent);
}

/// The fixed entries of `par` with the values that all slices share.
std::vector<double> common_par(const TableReader& table, const HullElement& hull, Reading& reading) {
  const Model& model = reading.model();
  const Body& body = model.bodies[static_cast<size_t>(hull.body)];
  const auto stem = [](const std::string& file) { return std::filesystem::path(file).stem().string(); };
  std::vector<double> par(QV_HULL_LENGTH, 0.0);
  par[QV_HULL_PART_COUNT] = hull.parts;
  par[QV_HULL_FORCE_MARKER] =
      table.has("marker") ? marker_id(model, marker_on_body(table, "marker", hull.body, reading)) : body.id;
  par[QV_HULL_WATER_MARKER] = marker_id(model, hull.water_marker);
  par[QV_HULL_BODY_MARKER] =
      table.has("mesh_marker") ? marker_id(model, marker_on_body(table, "mesh_marker", hull.body, reading)) : body.id;
  const std::string wave = wave_file_of(table, "wave", reading), current = current_file_of(table, "current", reading);
  par[QV_HULL_WAVE_STRING] = reading.string_id(wave, stem(wave));
  par[QV_HULL_CURRENT_STRING] = reading.string_id(current, stem(current));
  par[QV_HULL_LOAD_SCALE] = scale_in_units(table.number("scale", 1), model.units);
  if (table.has("active")) {
    const std::vector<double> active = table.numbers("active", 2);
    if (!(active[1] > active[0])) table.fail("active", "the end must be later than the start");
    par[QV_HULL_ACTIVE_FROM] = active[0];
    par[QV_HULL_ACTIVE_TO] = active[1];
  }
  par[QV_HULL_DENSITY] = table.positive("density");
  par[QV_HULL_GRAVITY] = gravity_of(table, model);
  const Skin skin = skin_of(table);
  par[QV_HULL_TANGENTIAL_COEFFICIENT] = coefficient_in_units(skin, model.units);
  par[QV_HULL_TANGENTIAL_EXPONENT] = skin.exponent;
  par[QV_HULL_DRAG_SCALE] = table.number("drag_scale", 1);
  return par;
}

/// Appends nodes and patches to the fixed entries. `shift` is the mesh's origin seen from the marker that carries it.
void append_nodes_and_patches(const TriangleMesh& mesh, const Vec3& shift, std::vector<double>& par) {
  par[QV_HULL_NODE_COUNT] = static_cast<double>(mesh.points.size());
  par.reserve(par.size() + 3 * mesh.points.size() + 1 + 3 * mesh.triangles.size());
  for (const Vec3& point : mesh.points)
    for (size_t k = 0; k < 3; ++k) par.push_back(point[k] + shift[k]);
  par.push_back(static_cast<double>(mesh.triangles.size()));
  for (const std::array<int, 3>& triangle : mesh.triangles)
    for (const int corner : triangle) par.push_back(corner);
}

HullReport read_report(const TableReader& hull_table, const HullElement& hull, const Reading& reading) {
  HullReport report;
  report.force_marker = hull.water_marker;
  report.force_at = hull_table.position("report");
  if (hull_table.value("report").kind != Value::Kind::table) return report;
  const TableReader table = hull_table.table("report", {"force", "force_marker", "points"});
  if (table.has("force")) {
    report.force = table.text("force");
    report.force_at = table.position("force");
  }
  report.force_marker = reading.marker_or(table, "force_marker", hull.water_marker);
  if (!table.has("points")) return report;
  for (const std::string& point : table.texts("points"))
    report.points.push_back(reading.markers.find(point, table.what() + ", points", table.position("points")));
  return report;
}

bool wants_report(const TableReader& table) {
  if (!table.has("report")) return false;
  return table.value("report").kind == Value::Kind::table || table.flag("report", false);
}

void tell(const TriangleMesh& mesh, const HullElement& hull, Reading& reading) {
  HullSummary summary;
  const MeshMeasures measures = calc_measures(mesh);
  summary.name = hull.name;
  summary.nodes = mesh.points.size();
  summary.patches = mesh.triangles.size();
  summary.volume = measures.volume;
  summary.area = measures.area;
  constexpr double k_rounding = 1e-12;
  for (size_t k = 0; k < 3; ++k)
    if (std::abs(measures.center[k]) > k_rounding * std::cbrt(measures.volume)) summary.center[k] = measures.center[k];
  reading.file.hulls.push_back(std::move(summary));
}

Element report_element(const HullElement& hull, int number, Reading& reading) {
  const Model& model = reading.model();
  const HullReport& report = *hull.report;
  Element element;
  element.name = free_name(reading.elements, hull.name + "_report");
  element.subroutine = "qvhydro_report";
  element.kind = ElementKind::report;
  element.at = hull.at;
  element.par.assign(QV_HULL_REPORT_LENGTH, 0.0);
  element.par[QV_HULL_REPORT_FORCE_ID] = number;
  element.par[QV_HULL_REPORT_BODY_MARKER] = model.bodies[static_cast<size_t>(hull.body)].id;
  element.par[QV_HULL_REPORT_WATER_MARKER] = marker_id(model, hull.water_marker);
  element.par[QV_HULL_REPORT_REPORTED_FORCE_MARKER] = marker_id(model, report.force_marker);
  element.par[QV_HULL_REPORT_POINT_COUNT] = static_cast<double>(report.points.size());
  for (const int point : report.points) element.par.push_back(marker_id(model, point));
  const std::string force = report.force.empty() ? model.elements[hull.first_element].name : report.force;
  ask_for_force(reading, model.elements.size(), QV_HULL_REPORT_REPORTED_FORCE, force,
                "element '" + hull.name + "', report, force", report.force_at);
  set_defaults(element, model);
  return element;
}

/// The slices of a hull, not yet numbered. `hull` gets what numbering and the report need.
std::vector<Element> read_hull(const TableReader& table, Reading& reading, HullElement& hull) {
  hull.name = table.text("name");
  hull.at = table.at();
  hull.body = reading.bodies.find(table.text("body"), table.what() + ", body", table.position("body"));
  hull.water_marker = reading.marker_or(table, "water", 0);
  const TriangleMesh mesh = read_hull_mesh(table, reading);
  if (table.has("parts")) hull.parts = table.count("parts");
  if (static_cast<size_t>(hull.parts) > mesh.triangles.size())
    table.fail("parts", "there are only " + std::to_string(mesh.triangles.size()) + " triangles to share");
  tell(mesh, hull, reading);
  if (wants_report(table)) hull.report = read_report(table, hull, reading);

  const Body& body = reading.model().bodies[static_cast<size_t>(hull.body)];
  const std::vector<double> common = common_par(table, hull, reading);
  const double mass = table.positive("mass", body.mass), area = calc_area(mesh);
  const Vec3 shift = table.has("mesh_marker") ? Vec3{0, 0, 0} : Vec3{-body.center[0], -body.center[1], -body.center[2]};
  std::vector<Element> elements;
  for (const TriangleMesh& slice : sliced(mesh, hull.parts)) {
    Element element;
    element.subroutine = "qvhydro_force";
    element.kind = ElementKind::force;
    element.par = common;
    element.par[QV_HULL_PART] = static_cast<double>(elements.size());
    element.par[QV_HULL_MASS] = hull.parts == 1 ? mass : mass * (calc_area(slice) / area);
    append_nodes_and_patches(slice, shift, element.par);
    set_defaults(element, reading.model());
    elements.push_back(std::move(element));
  }
  return elements;
}

/// Fills in the hydro force ids and their count, which need all hulls of the model, and adds the reports, which need
/// the ids.
void number_hulls(const std::vector<HullElement>& hulls, Reading& reading) {
  for (size_t i = 0; i < hulls.size(); ++i)
    for (int part = 0; part < hulls[i].parts; ++part) {
      std::vector<double>& par = reading.model().elements[hulls[i].first_element + static_cast<size_t>(part)].par;
      par[QV_HULL_FORCE_ID] = static_cast<double>(i + 1);
      par[QV_HULL_FORCE_COUNT] = static_cast<double>(hulls.size());
    }
  for (size_t i = 0; i < hulls.size(); ++i) {
    if (!hulls[i].report) continue;
    Element report = report_element(hulls[i], static_cast<int>(i + 1), reading);
    reading.elements.add_internal(report.name, static_cast<int>(reading.model().elements.size()));
    reading.model().elements.push_back(std::move(report));
  }
}

class HullReader : public KindReader {
public:
  std::vector<Element> read(const TableReader& table, Reading& reading) override {
    m_hulls.emplace_back();
    m_hulls.back().first_element = reading.model().elements.size();
    return read_hull(table, reading, m_hulls.back());
  }
  void finish(Reading& reading) override { number_hulls(m_hulls, reading); }

private:
  std::vector<HullElement> m_hulls;
};

}  // namespace

ReadableKind hull_kind() {
  return {"hull",
          {"body", "mesh", "mesh_scale", "flip", "mesh_marker", "marker", "water", "wave", "current", "density",
           "gravity", "scale", "active", "drag_scale", "mass", "parts", "tangential", "report"},
          make_kind_reader<HullReader>,
          {"qvhydro_force"},
          "hydro force ids are counted over all hulls"};
}

}  // namespace qvslv
