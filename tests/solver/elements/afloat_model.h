#pragma once

#include <stdexcept>
#include <string>

/// A boat with a thruster, with all that hulls, thrusters, variables, equations and splines can hold; the tests change
/// one thing in it.
inline const std::string k_afloat_model = R"toml(title = "afloat"
gravity = [0, 0, -9.81]

[simulation]
end_time = 2.0

[parameters]
rho = 1000

[[wave]]
name = "sea"
file = "sea.wave"
kind = "regular"
height = 0.2
period = 3
extent = 60

[[current]]
name = "stream"
file = "stream.current"
along_x = { profile = "uniform", speed = 0.5 }

[[body]]
name = "barge"
mass = 2000
shape = { box = [4, 2, 1] }
position = [30, 0, 0]

[[body]]
name = "buoy"
mass = 50
shape = { sphere = { radius = 0.5 } }
position = [20, 0, 0]

[[marker]]
name = "water"
body = "ground"

[[marker]]
name = "propeller"
body = "barge"
position = [-1.8, 0, -0.4]

[[marker]]
name = "rail"
body = "barge"
position = [0, 1, 0.5]

[[force]]
name = "wind"
marker = "barge"
force = ["10 - 2*vx(barge)", 0, 0]

[[string]]
name = "note"
text = "free text"

[[variable]]
name = "speed"
value = "step(t, 0, 0, 1, 2)"

[[variable]]
name = "double_speed"
value = "2*speed"

[[equation]]
name = "way"
value = "vx(barge)"

[[equation]]
name = "swing"
order = 2
initial = [1, 0]
value = "-4*swing - 0.1*dif1(swing)"

[[equation]]
name = "error"
initial = 0.25
subroutine = "qvsoil_error_velocity"
par = [0, "marker:propeller", "marker:ground", "variable:speed"]

[[spline]]
name = "limit"
x = [0, 1, 2]
y = [500, 1000, 1500]

[[element]]
name = "hull"
type = "hull"
body = "barge"
mesh = { shape = "box", size = [4, 2, 1], divisions = [2, 1, 1] }
water = "water"
wave = "sea"
current = "stream"
density = "rho"
tangential = { coefficient = 5, exponent = 2 }
report = { force = "wind", force_marker = "barge", points = ["rail", "propeller"] }

[[element]]
name = "screw"
type = "thruster"
marker = "propeller"
mode = "limited"
variable = "speed"
equation = "error"
gains = { p = 800, i = 100, d = 5 }
limit = "limit"
wave = "sea"
water = "water"
)toml";

/// The model with one passage replaced; the passage must be there.
inline std::string changed_afloat(const std::string& from, const std::string& to) {
  std::string text = k_afloat_model;
  const size_t at = text.find(from);
  if (at == std::string::npos) throw std::invalid_argument("the model does not hold: " + from);
  return text.replace(at, from.size(), to);
}
