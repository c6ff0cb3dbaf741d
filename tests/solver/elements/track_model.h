#pragma once

#include <stdexcept>
#include <string>

/// A vehicle with two tracks, with all that tracks can hold; the tests change one thing in it.
inline const std::string k_track_model = R"toml(title = "tracks"
gravity = [0, 0, -9.81]

[simulation]
end_time = 1.0
output_step = 0.02
integrator = "semi-explicit"
step = 0.002

[[road]]
name = "field"
file = "field.rdf"
kind = "flat"
size = [12, 6]
spacing = 0.25
soil = "dry_sand"

[[body]]
name = "vehicle"
mass = 4000
shape = { box = [3, 1, 0.5] }
position = [-3, 0, 0.33]

[[marker]]
name = "lane"
body = "ground"

[[marker]]
name = "hull_left"
body = "vehicle"
position = [0, 1, -0.3]

[[marker]]
name = "hull_right"
body = "vehicle"
position = [0, -1, -0.3]

[[marker]]
name = "left_rear"
body = "vehicle"
position = [-1, 1, 0]

[[marker]]
name = "left_middle"
body = "vehicle"
position = [0, 1, 0]

[[marker]]
name = "left_front"
body = "vehicle"
position = [1, 1, 0]

[[marker]]
name = "right_rear"
body = "vehicle"
position = [-1, -1, 0]

[[marker]]
name = "right_front"
body = "vehicle"
position = [1, -1, 0]

[[variable]]
name = "throttle"
value = "step(t, 0, 0, 1, 1)"

[[variable]]
name = "crawl"
value = "0.1*t"

[[element]]
name = "left"
type = "track"
hull = "hull_left"
wheels = [
  { marker = "left_rear", radius = 0.3 },
  { marker = "left_middle", radius = 0.3 },
  { marker = "left_front", radius = 0.28 },
]
road = "field"
road_marker = "lane"
reference = "lane"
width = 0.5
thickness = 0.03
grid = [6, 3]
drive = { torque = "800*throttle", inertia = 40, ratio = 0.5, speed = 0.6, resistance = 0.01, forces = ["left_wheel_1", "left_wheel_3"] }

[[element]]
name = "right"
type = "track"
hull = "hull_right"
wheels = [{ marker = "right_rear", radius = 0.3 }, { marker = "right_front", radius = 0.3 }]
road = "field"
width = 0.5
grid = [5, 4]
belt_speed = "crawl"
)toml";

/// The model with one passage replaced; the passage must be there.
inline std::string changed_track(const std::string& from, const std::string& to) {
  std::string text = k_track_model;
  const size_t at = text.find(from);
  if (at == std::string::npos) throw std::invalid_argument("the model does not hold: " + from);
  return text.replace(at, from.size(), to);
}
