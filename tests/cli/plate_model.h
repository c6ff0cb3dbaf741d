#pragma once

/// A plate that rests on soil: small, quick, and calls a subroutine.
constexpr const char* k_plate_model = R"toml(
gravity = [0, 0, -9.81]
[simulation]
end_time = 0.1
output_step = 0.02
[[road]]
file = "field.rdf"
kind = "flat"
size = [2, 2]
spacing = 0.5
soil = "dry_sand"
[[body]]
name = "plate"
mass = 100
shape = { box = [0.5, 0.5, 0.1] }
[[element]]
name = "soil"
type = "soil_contact"
shape = "plate"
marker = "plate"
road = "field.rdf"
length = 0.5
width = 0.5
grid = [5, 5]
)toml";
