#include <fmt/format.h>

#include <cmath>
#include <string>
#include <vector>

#include "solver/checks/soil_contact.h"
#include "solver/checks/soil_track.h"
#include "solver/watch/watchers.h"

namespace qvslv {

namespace {

/// A point of an element that its road should carry.
struct CarriedPoint {
  std::string name;
  int marker = 0;  ///< index into Model::markers
};

struct CarriedElement {
  const Element& element;
  const RoadPlan& road;
  std::vector<CarriedPoint> points;
  bool done = false;  ///< told, or beside its road from the start, which is told before the run
};

class RoadWatcher : public Watcher {
public:
  RoadWatcher(const Engine& engine, const Recording& recording) {
    const Model& model = engine.multibody().model();
    for (const SoilContact& contact : soil_contacts_of(model))
      add(recording, contact.element, contact.road_marker,
          {{contact.wheel ? "the wheel's axle" : "the plate's middle", contact.marker}});
    for (const SoilTrack& track : soil_tracks_of(model)) {
      std::vector<CarriedPoint> points;
      for (const TrackNode& node : track.nodes)
        points.push_back({"wheel " + std::to_string(points.size() + 1), node.marker});
      add(recording, track.element, track.road_marker, std::move(points));
    }
    for (CarriedElement& carried : m_carried)
      for (const CarriedPoint& point : carried.points)
        carried.done = carried.done || !covers(carried.road, place(engine, carried.road, point));
  }

  bool empty() const { return m_carried.empty(); }

  void look(const Sight& sight, Findings& findings) override {
    for (CarriedElement& carried : m_carried)
      if (!carried.done) look(carried, sight.engine, findings);
  }

private:
  void add(const Recording& recording, const Element& element, int road_marker, std::vector<CarriedPoint> points) {
    for (const RoadPlan& road : recording.roads)
      if (road.string == element.road_string && road.marker == road_marker) {
        m_carried.push_back({element, road, std::move(points)});
        return;
      }
  }

  static SimTK::Vec3 place(const Engine& engine, const RoadPlan& road, const CarriedPoint& point) {
    const MarkerMotions& markers = engine.readings().markers();
    const MarkerMotion& base = markers.of(road.marker);
    return ~base.axes * (markers.of(point.marker).position - base.position);
  }

  static bool covers(const RoadPlan& road, const SimTK::Vec3& p) {
    return p[0] >= road.low[0] && p[0] <= road.high[0] && p[1] >= road.low[1] && p[1] <= road.high[1];
  }

  /// Without the noise of rounding around 0.
  static double plain(double value, const RoadPlan& road) {
    const double grain = 1e-9 * (road.high[0] - road.low[0] + road.high[1] - road.low[1]);
    return std::abs(value) < grain ? 0 : value;
  }

  static void look(CarriedElement& carried, const Engine& engine, Findings& findings) {
    for (const CarriedPoint& point : carried.points) {
      const RoadPlan& road = carried.road;
      const SimTK::Vec3 p = place(engine, road, point);
      if (covers(road, p)) continue;
      carried.done = true;
      note(findings, "contact-leaves-road", carried.element,
           fmt::format("at the time {:.4g} {} is at x = {:.6g}, y = {:.6g} of its road, which covers x = {:.4g} to "
                       "{:.4g} and y = {:.4g} to {:.4g}: no soil carries it there; make the road larger or end the "
                       "run before",
                       engine.time(), point.name, plain(p[0], road), plain(p[1], road), road.low[0], road.high[0],
                       road.low[1], road.high[1]));
      return;
    }
  }

  std::vector<CarriedElement> m_carried;
};

}  // namespace

std::unique_ptr<Watcher> watch_roads(const Engine& engine, const Recording& recording) {
  auto watcher = std::make_unique<RoadWatcher>(engine, recording);
  if (watcher->empty()) return nullptr;
  return watcher;
}

}  // namespace qvslv
