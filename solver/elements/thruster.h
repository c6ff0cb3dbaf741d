#pragma once

#include <vector>

#include "solver/model_file/reading.h"

namespace qvslv {

/// type = "thruster": one qvsoil_thrustforce, which pushes along its marker's x axis; with `speed_control` also the
/// equation whose right-hand side is qvsoil_error_velocity. Thrust element ids and their count are set by
/// `number_thrusters`.
Element read_thruster(const TableReader& table, Reading& reading);
void number_thrusters(const std::vector<size_t>& elements, Reading& reading);

}  // namespace qvslv
