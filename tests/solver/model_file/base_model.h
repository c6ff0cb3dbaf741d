#pragma once

#include <stdexcept>
#include <string>

/// A small model that uses most of what a model file can hold; the tests of the reader change one thing in it.
inline const std::string k_base_model = R"toml(title = "base"
gravity = [0, 0, -9.81]

[simulation]
end_time = 2.0
output_step = 0.1

[units]
length = "m"
force = "N"

[parameters]
m0 = 12
rate = "2*pi*f"
f = 0.5

[[road]]
name = "field"
file = "field.rdf"
kind = "flat"
size = [4, 2]
spacing = 0.5
soil = "dry_sand"

[[body]]
name = "arm"
density = 7800
shape = { box = [1.0, 0.1, 0.1] }

[[body]]
name = "wheel"
mass = "2*m0"
inertia = [1.0, 2.0, 1.5]
shape = { cylinder = { radius = 0.5, length = 0.2 } }

[[body]]
name = "ball"
mass = 3
shape = { sphere = { radius = 0.1 } }
position = [1, 2, 3]
angles_deg = [0, 0, 90]

[[marker]]
name = "hub"
body = "wheel"
position = [0, 0.1, 0]

[[joint]]
name = "axle"
type = "revolute"
body = "wheel"
parent = "arm"
position = [0.5, 0, 0]
axis = "y"
motion = "rate*t"

[[joint]]
name = "pivot"
type = "revolute"
body = "arm"
axis = "y"
start = { angle_deg = 30 }

[[force]]
name = "push"
marker = "hub"
force = [0, "m0*sin(t)", 0]

[[string]]
name = "note"
text = "free text"

[[element]]
name = "tyre"
type = "soil_contact"
shape = "wheel"
marker = "wheel"
road = "field"
radius = 0.5
width = 0.2
grid = [12, 3]
sum = true

[[element]]
name = "energies"
type = "subroutine"
subroutine = "qvballplacing_report"
par = [0, 1, "body:ball", 0.2]
)toml";

/// The base model with one passage replaced; the passage must be there.
inline std::string changed(const std::string& from, const std::string& to) {
  std::string text = k_base_model;
  const size_t at = text.find(from);
  if (at == std::string::npos) throw std::invalid_argument("the base model does not hold: " + from);
  return text.replace(at, from.size(), to);
}
