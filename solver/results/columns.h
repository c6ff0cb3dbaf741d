#pragma once

#include <string>
#include <vector>

#include "solver/engine/engine.h"
#include "solver/results/contact_axes.h"
#include "solver/results/recording.h"

namespace qvslv {

/// Headers of results.csv, "name [unit]": time; per body its centre of mass (x, y, z), quaternion (qw, qx, qy, qz),
/// velocity of the centre of mass (vx, vy, vz) and angular velocity (wx, wy, wz), all in ground axes; per joint its
/// coordinates and their rates; per element its columns; variables, and equations (y, and y' as its rate); kinetic and
/// potential energy.
std::vector<std::string> result_columns(const Model& model);

/// The values under those headers for the engine's present state. Elements: results of their latest call.
std::vector<double> calc_result_row(const Engine& engine);

/// Whether the points of an element are a belt's: their forces come in the axes of its reference marker, not along
/// shear 1, shear 2 and the normal.
bool is_belt(const Element& element);

/// What a frame shows of the present state. With `axes` the forces on a belt's points are along shear 1, shear 2 and
/// the normal as those of other points are; without, they stay in ground axes.
Frame calc_frame(const Engine& engine, const ContactAxes* axes = nullptr);

}  // namespace qvslv
