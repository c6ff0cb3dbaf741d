#include <cmath>
#include <filesystem>

#include "qvbrisk/layouts.h"
#include "solver/elements/defaults.h"
#include "solver/elements/kinds.h"
#include "solver/elements/track_drive.h"

/// type = "track": a belt over wheels on soil. It makes, in this order,
///   - qvsoil_interaction_mtl, evaluated and not applied: it leaves its sums behind for the others,
///   - a qvsoil_normalforce_mtl on the marker of each wheel and a qvsoil_shearforce_mtl on the hull's,
///   - qvsoil_mtl_velocity if the belt is driven, and qvsoil_interaction_mtl_sum, which are reports,
/// and the variable that is the belt's speed. If it is driven also the variable of the torque and the equation of the
/// sprocket's angle, y'' from qvsoil_mtl_eom, which share one id.
namespace qvslv {

namespace {

struct TrackElement {
  size_t first_element = 0;  ///< index into Model::elements of the qvsoil_interaction_mtl
  FilePosition wheels_at;
};

/// Values of a track's keys.
struct TrackKeys {
  std::string name;
  int hull = 0, road_marker = 0, reference = 0;  ///< indices into Model::markers
  std::vector<int> wheels;                       ///< indices into Model::markers
  std::vector<double> radii;
  std::vector<double> grid;
  std::string road;
};

/// Checks two neighbouring wheels if both are fixed to the hull's body. The belt runs under wheels that follow each
/// other along the hull's x axis, and two circles have a common tangent only if neither lies in the other.
void check_neighbours(const TableReader& table, const TrackKeys& keys, size_t first, const Model& model) {
  const auto marker = [&](int index) -> const Marker& { return model.markers[static_cast<size_t>(index)]; };
  const Marker &hull = marker(keys.hull), &a = marker(keys.wheels[first]), &b = marker(keys.wheels[first + 1]);
  if (a.body != hull.body || b.body != hull.body) return;
  const std::string both = "wheels " + std::to_string(first + 1) + " and " + std::to_string(first + 2);
  const Vec3 way = minus(b.position, a.position);
  const Vec3 forward = {hull.orientation[0], hull.orientation[1], hull.orientation[2]};
  if (dot(way, forward) < 0)
    table.fail("wheels", both + " go backwards along the x axis of '" + hull.name +
                             "'; list them from the rear to the front, else the belt runs over them, not under");
  if (!(std::sqrt(dot(way, way)) > std::abs(keys.radii[first] - keys.radii[first + 1])))
    table.fail("wheels", both + " lie in one another: no belt is tangent to both");
}

void read_wheels(const TableReader& table, const Reading& reading, TrackKeys& keys) {
  for (const TableReader& wheel : table.tables("wheels", {"marker", "radius"})) {
    keys.wheels.push_back(reading.marker(wheel, "marker"));
    keys.radii.push_back(wheel.positive("radius"));
  }
  if (keys.wheels.size() < 2) table.fail("wheels", "a belt needs two wheels or more");
  for (size_t i = 0; i + 1 < keys.wheels.size(); ++i) check_neighbours(table, keys, i, reading.file.model);
}

std::vector<double> read_grid(const TableReader& table) {
  std::vector<double> grid = table.numbers("grid", 2);
  for (const double count : grid)
    if (!(count >= 2 && count <= 1e5) || count != std::floor(count))
      table.fail("grid", "two whole numbers, 2 or more, are expected: points along each span and across the belt");
  return grid;
}

/// Throws if the reference is not on the ground: differences of velocities seen from a marker that turns would not be
/// the slip.
int read_reference(const TableReader& table, const Reading& reading) {
  const int reference = reading.marker_or(table, "reference", 0);
  if (reading.file.model.markers[static_cast<size_t>(reference)].body != k_ground)
    table.fail("reference", "'" + table.text("reference") + "' moves; the reference is a marker on the ground");
  return reference;
}

TrackKeys read_keys(const TableReader& table, Reading& reading) {
  TrackKeys keys;
  keys.name = table.text("name");
  keys.hull = reading.marker(table, "hull");
  keys.road = road_file_of(table, "road", reading);
  keys.road_marker = reading.marker_or(table, "road_marker", 0);
  keys.reference = read_reference(table, reading);
  keys.grid = read_grid(table);
  read_wheels(table, reading, keys);
  return keys;
}

std::vector<double> interaction_par(const TableReader& table, const TrackKeys& keys, int slot, Reading& reading) {
  const Model& model = reading.model();
  std::vector<double> par(QV_TRACK_LENGTH, 0.0);
  par[QV_TRACK_ROAD] = slot;
  par[QV_TRACK_ROAD_STRING] = reading.string_id(keys.road, std::filesystem::path(keys.road).stem().string());
  par[QV_TRACK_MARKER_I] = marker_id(model, keys.hull);
  par[QV_TRACK_MARKER_J] = marker_id(model, keys.road_marker);
  par[QV_TRACK_MARKER_R] = marker_id(model, keys.reference);
  par[QV_TRACK_THICKNESS] = table.number("thickness", 0);
  if (par[QV_TRACK_THICKNESS] < 0)
    table.fail("thickness", "must not be negative, is " + number_text(par[QV_TRACK_THICKNESS]));
  par[QV_TRACK_WIDTH] = table.positive("width");
  par[QV_TRACK_POINTS_ALONG] = keys.grid[0];
  par[QV_TRACK_POINTS_ACROSS] = keys.grid[1];
  par[QV_TRACK_NODE_COUNT] = static_cast<double>(keys.wheels.size());
  par.resize(QV_TRACK_LENGTH + QV_TRACK_NODE_LENGTH * keys.wheels.size());
  for (size_t i = 0; i < keys.wheels.size(); ++i) {
    double* node = &par[QV_TRACK_LENGTH + QV_TRACK_NODE_LENGTH * i];
    node[QV_TRACK_NODE_MARKER] = marker_id(model, keys.wheels[i]);
    node[QV_TRACK_NODE_RADIUS] = keys.radii[i];
  }
  return par;
}

Element plain(const std::string& name, const char* subroutine, ElementKind kind, std::vector<double> par,
              const Model& model) {
  Element element;
  element.name = name;
  element.subroutine = subroutine;
  element.kind = kind;
  element.par = std::move(par);
  set_defaults(element, model);
  return element;
}

/// A share of the soil's force on one marker, in the axes of the reference. Its torque is always 0 and not shown.
Element force(const std::string& name, const char* subroutine, std::vector<double> par, int marker,
              const TrackKeys& keys, const Model& model) {
  Element element = plain(name, subroutine, ElementKind::force, std::move(par), model);
  element.marker = marker;
  element.axes = keys.reference;
  element.reaction = keys.road_marker;
  element.columns.resize(3);
  return element;
}

std::vector<double> normal_par(int slot, size_t wheel) {
  std::vector<double> par(QV_TRACK_NORMAL_LENGTH, 0.0);
  par[QV_TRACK_NORMAL_NODE] = static_cast<double>(wheel);
  par[QV_TRACK_NORMAL_ROAD] = slot;
  return par;
}

std::vector<double> shear_par(int slot) {
  std::vector<double> par(QV_TRACK_SHEAR_LENGTH, 0.0);
  par[QV_TRACK_SHEAR_ROAD] = slot;
  return par;
}

/// Makes qvsoil_mtl_velocity report the speed of the belt: the first derivative of the sprocket's angle times a radius.
std::vector<double> velocity_par(const BeltDrive& drive) {
  std::vector<double> par(QV_TRACK_VELOCITY_LENGTH, 0.0);
  par[QV_TRACK_VELOCITY_FACTOR] = drive.radius;
  par[QV_TRACK_VELOCITY_SOURCE] = drive.equation;
  return par;
}

std::vector<double> sum_par(int slot) {
  std::vector<double> par(QV_TRACK_SUM_LENGTH, 0.0);
  par[QV_TRACK_SUM_ROAD] = slot;
  return par;
}

/// The elements of a track, with their names. A road slot holds one track, so each track has its own `slot`, from 0.
std::vector<Element> read_track(const TableReader& table, int slot, Reading& reading, TrackElement& track) {
  const TrackKeys keys = read_keys(table, reading);
  track.wheels_at = table.position("wheels");
  std::vector<double> par = interaction_par(table, keys, slot, reading);
  const BeltDrive drive = read_belt_drive(table, keys.radii[0], slot, reading);
  par[QV_TRACK_BELT_SPEED] = drive.speed_variable;

  const Model& model = reading.model();
  std::vector<Element> elements;
  elements.push_back(plain(keys.name, "qvsoil_interaction_mtl", ElementKind::evaluated, std::move(par), model));
  if (elements[0].result_length == 0) table.fail("grid", "these are more points than a result array can hold");
  for (size_t i = 0; i < keys.wheels.size(); ++i)
    elements.push_back(force(keys.name + "_wheel_" + std::to_string(i + 1), "qvsoil_normalforce_mtl",
                             normal_par(slot, i), keys.wheels[i], keys, model));
  elements.push_back(force(keys.name + "_shear", "qvsoil_shearforce_mtl", shear_par(slot), keys.hull, keys, model));
  if (drive.equation != 0) {
    elements.push_back(
        plain(keys.name + "_belt", "qvsoil_mtl_velocity", ElementKind::report, velocity_par(drive), model));
    elements.back().columns = {{0, "speed", UnitSymbols(model.units).speed}};
  }
  elements.push_back(
      plain(keys.name + "_sum", "qvsoil_interaction_mtl_sum", ElementKind::report, sum_par(slot), model));
  return elements;
}

/// Fills in the number of road slots, which is known when all tracks of the model are read.
void number_tracks(const std::vector<TrackElement>& tracks, Reading& reading) {
  Model& model = reading.model();
  for (const TrackElement& track : tracks) {
    const Element& first = model.elements[tracks[0].first_element];
    Element& element = model.elements[track.first_element];
    if (element.par[QV_TRACK_NODE_COUNT] > first.par[QV_TRACK_NODE_COUNT])
      throw ModelError(track.wheels_at, "element '" + element.name + "', wheels: there are " +
                                            number_text(element.par[QV_TRACK_NODE_COUNT]) + ", and the first track, '" +
                                            first.name + "', has " + number_text(first.par[QV_TRACK_NODE_COUNT]) +
                                            "; the subroutine makes room for as many as the first has, so put the "
                                            "track with the most wheels first");
    element.par[QV_TRACK_ROAD_COUNT] = static_cast<double>(tracks.size());
  }
}

class TrackReader : public KindReader {
public:
  std::vector<Element> read(const TableReader& table, Reading& reading) override {
    const int slot = static_cast<int>(m_tracks.size());
    m_tracks.emplace_back();
    m_tracks.back().first_element = reading.model().elements.size();
    return read_track(table, slot, reading, m_tracks.back());
  }
  void finish(Reading& reading) override { number_tracks(m_tracks, reading); }

private:
  std::vector<TrackElement> m_tracks;
};

}  // namespace

ReadableKind track_kind() {
  return {"track",
          {"hull", "wheels", "road", "road_marker", "reference", "width", "thickness", "grid", "belt_speed", "drive"},
          make_kind_reader<TrackReader>,
          {"qvsoil_interaction_mtl", "qvsoil_normalforce_mtl", "qvsoil_shearforce_mtl", "qvsoil_interaction_mtl_sum"},
          "road numbers are counted over all tracks"};
}

}  // namespace qvslv
