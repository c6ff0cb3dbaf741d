#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <limits>
#include <vector>

#include "solver/results/water_surface.h"
#include "solver/watch/watchers.h"

namespace qvslv {

namespace {

struct Reach {
  double low = std::numeric_limits<double>::infinity(), high = -low;
};

/// The box around a mesh, by its corners: if it is over the water, the mesh is.
std::vector<Vec3> box_around(const std::vector<Vec3>& points) {
  Vec3 low = points.front(), high = low;
  for (const Vec3& point : points)
    for (size_t k = 0; k < 3; ++k) {
      low[k] = std::min(low[k], point[k]);
      high[k] = std::max(high[k], point[k]);
    }
  std::vector<Vec3> corners;
  for (const double x : {low[0], high[0]})
    for (const double y : {low[1], high[1]})
      for (const double z : {low[2], high[2]}) corners.push_back({x, y, z});
  return corners;
}

/// How far points of a marker reach along the x axis of another one.
Reach find_reach(const Engine& engine, const std::vector<Vec3>& points, int marker, int water_marker) {
  const Multibody& multibody = engine.multibody();
  const SimTK::Transform pose =
      ~multibody.find_pose(engine.state(), water_marker) * multibody.find_pose(engine.state(), marker);
  Reach reach;
  for (const Vec3& point : points) {
    const double x = (pose * to_vec3(point))[0];
    reach = {std::min(reach.low, x), std::max(reach.high, x)};
  }
  return reach;
}

class WaterWatcher : public Watcher {
public:
  WaterWatcher(const Engine& engine, const Recording& recording) : m_recording(recording) {
    for (const Hull& hull : recording.hulls) {
      if (hull.water == k_none || hull.mesh.points.empty()) continue;
      Afloat afloat{hull, box_around(hull.mesh.points), false};
      afloat.done = !is_over(afloat, find_reach(engine, hull.mesh.points, hull.marker, hull.water_marker));
      m_afloat.push_back(std::move(afloat));
    }
  }

  bool empty() const { return m_afloat.empty(); }

  void look(const Sight& sight, Findings& findings) override {
    for (Afloat& afloat : m_afloat)
      if (!afloat.done) look(afloat, sight.engine, findings);
  }

private:
  struct Afloat {
    const Hull& hull;
    std::vector<Vec3> box;
    bool done = false;  ///< told, or beside the water from the start, which is told before the run
  };

  const Water& water_of(const Afloat& afloat) const {
    return m_recording.waters[static_cast<size_t>(afloat.hull.water)];
  }

  bool is_over(const Afloat& afloat, const Reach& reach) const {
    return qvslv::is_over(water_of(afloat), reach.low) && qvslv::is_over(water_of(afloat), reach.high);
  }

  void look(Afloat& afloat, const Engine& engine, Findings& findings) const {
    const Hull& hull = afloat.hull;
    if (is_over(afloat, find_reach(engine, afloat.box, hull.marker, hull.water_marker))) return;
    const Reach reach = find_reach(engine, hull.mesh.points, hull.marker, hull.water_marker);
    if (is_over(afloat, reach)) return;
    afloat.done = true;
    const Model& model = engine.multibody().model();
    const std::vector<double>& x = water_of(afloat).wave.x;
    note(findings, "hull-leaves-table", model.elements[static_cast<size_t>(hull.element)],
         fmt::format("at the time {:.4g} the hull reaches from x = {:.4g} to {:.4g} in the axes of '{}', and its WAVE "
                     "file has water from {:.4g} to {:.4g}: corners beyond get no drag, triangles beyond no buoyancy; "
                     "make the table longer, or start further inside",
                     engine.time(), reach.low, reach.high, model.markers[static_cast<size_t>(hull.water_marker)].name,
                     std::max(0.0, x.front()), x.back()));
  }

  const Recording& m_recording;
  std::vector<Afloat> m_afloat;
};

}  // namespace

std::unique_ptr<Watcher> watch_waters(const Engine& engine, const Recording& recording) {
  auto watcher = std::make_unique<WaterWatcher>(engine, recording);
  if (watcher->empty()) return nullptr;
  return watcher;
}

}  // namespace qvslv
