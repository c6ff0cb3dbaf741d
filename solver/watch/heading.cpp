#include <fmt/format.h>

#include <cmath>
#include <vector>

#include "solver/checks/soil_track.h"
#include "solver/watch/watchers.h"

namespace qvslv {

namespace {

class HeadingWatcher : public Watcher {
public:
  explicit HeadingWatcher(const Model& model) : m_model(model) {
    for (const SoilTrack& track : soil_tracks_of(model))
      if (is_driven(track, model)) m_tracks.push_back({track, false});
  }

  bool empty() const { return m_tracks.empty(); }

  void look(const Sight& sight, Findings& findings) override {
    for (Driven& driven : m_tracks) {
      if (driven.done) continue;
      const double yaw = find_yaw(driven.track, sight.engine);
      if (!(yaw > k_most_heading)) continue;
      driven.done = true;
      note(findings, "track-heading", driven.track.element,
           fmt::format("at the time {:.4g} the track heads {:.1f} degrees off the x axis of '{}' (more than {:.0f}), "
                       "and its drive feels only the shear along that axis; a vehicle that turns needs a belt_speed in "
                       "place of a drive",
                       sight.engine.time(), yaw, m_model.markers[static_cast<size_t>(driven.track.reference)].name,
                       k_most_heading));
    }
  }

private:
  struct Driven {
    SoilTrack track;
    bool done = false;
  };

  /// The angle in degrees between heading and reference, both seen from above the road: a slope is no turn.
  static double find_yaw(const SoilTrack& track, const Engine& engine) {
    constexpr double k_degrees = 57.29577951308232;
    const MarkerMotions& markers = engine.readings().markers();
    const SimTK::Rotation& road = markers.of(track.road_marker).axes;
    const auto direction = [&](int marker) {
      const SimTK::Vec3 x = ~road * SimTK::Vec3(markers.of(marker).axes.x());
      return std::atan2(x[1], x[0]);
    };
    const double turn = direction(track.hull) - direction(track.reference);
    return std::abs(std::atan2(std::sin(turn), std::cos(turn))) * k_degrees;
  }

  const Model& m_model;
  std::vector<Driven> m_tracks;
};

}  // namespace

std::unique_ptr<Watcher> watch_headings(const Engine& engine, const Recording&) {
  auto watcher = std::make_unique<HeadingWatcher>(engine.multibody().model());
  if (watcher->empty()) return nullptr;
  return watcher;
}

}  // namespace qvslv
