#pragma once

#include <string>

#include "tests/solver/elements/afloat_model.h"
#include "tests/solver/elements/track_model.h"

/// Models in which nothing looks wrong; the tests change one thing in them.

/// A wheel and a foot that stand on a flat road; a motion slides the foot.
inline const std::string k_wheel_model = R"toml(title = "wheel and foot"
gravity = [0, 0, -9.81]

[simulation]
end_time = 2

[[road]]
name = "field"
file = "field.rdf"
kind = "flat"
size = [8, 4]
spacing = 0.5
soil = "dry_sand"

[[body]]
name = "wheel"
mass = 300
shape = { cylinder = { radius = 0.5, length = 0.2 } }
position = [0, 0, 0.48]

[[body]]
name = "foot"
mass = 50
shape = { box = [0.4, 0.3, 0.05] }

[[marker]]
name = "sole"
body = "foot"
position = [0, 0, -0.025]

[[joint]]
name = "press"
type = "slider"
body = "foot"
position = [2, 0, 0.025]
axis = "x"
motion = "0.5*t"

[[element]]
name = "tyre"
type = "soil_contact"
shape = "wheel"
marker = "wheel"
road = "field"
radius = 0.5
width = 0.2
grid = [72, 5]

[[element]]
name = "plate"
type = "soil_contact"
shape = "plate"
marker = "sole"
road = "field"
length = 0.4
width = 0.3
grid = [3, 2]
)toml";

/// The boat, lighter and with a mesh that is fine at its waterline.
inline std::string sound_afloat_model() {
  std::string text = changed_afloat("divisions = [2, 1, 1]", "divisions = [8, 4, 32]");
  const std::string mass = "mass = 2000";
  return text.replace(text.find(mass), mass.size(), "mass = 500");
}
