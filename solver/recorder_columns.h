#pragma once

#include <string>
#include <vector>

#include "solver/engine.h"
#include "solver/recording.h"

namespace qvslv {

/// Headers of results.csv, "name [unit]": time; per body its centre of mass (x, y, z), quaternion (qw, qx, qy, qz),
/// velocity of the centre of mass (vx, vy, vz) and angular velocity (wx, wy, wz), all in ground axes; per joint its
/// coordinates and their rates; per element its columns; kinetic and potential energy.
std::vector<std::string> result_columns(const Model& model);

/// The values under those headers for the engine's present state. Elements: results of their latest call.
std::vector<double> calc_result_row(const Engine& engine);

/// What a frame shows of the present state.
Frame calc_frame(const Engine& engine);

}  // namespace qvslv
