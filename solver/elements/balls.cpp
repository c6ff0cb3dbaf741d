#include "qvbrisk/layouts.h"
#include "solver/elements/defaults.h"
#include "solver/elements/kinds.h"

/// type = "balls": one qvballplacing_report for a list of bodies.
namespace qvslv {

namespace {

Element read_balls(const TableReader& table, Reading& reading) {
  const std::vector<std::string> names = table.texts("bodies");
  std::vector<double> diameters;
  if (table.has("diameters")) diameters = table.numbers("diameters", names.size());
  Element element;
  element.subroutine = "qvballplacing_report";
  element.kind = ElementKind::report;
  element.par.assign(QV_BALLS_LENGTH, 0.0);
  element.par[QV_BALLS_BALL_COUNT] = static_cast<double>(names.size());
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
  set_defaults(element, model);
  return element;
}

}  // namespace

ReadableKind balls_kind() { return {"balls", {"bodies", "diameters"}, make_kind_reader<SingleReader<read_balls>>}; }

}  // namespace qvslv
