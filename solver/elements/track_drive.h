#pragma once

#include "solver/model_file/reading.h"

namespace qvslv {

/// Where the speed of a track's belt comes from, as ids.
struct BeltDrive {
  double speed_variable = 0;
  double equation = 0;  ///< of the sprocket's angle, 0: the speed is given
  double radius = 0;    ///< from the sprocket's rate to the belt's speed
};

/// Reads the key `belt_speed` or the table `drive` of a track and makes the variables and the equation they need; the
/// made names begin with the track's.
/// @param sprocket_radius  unless the table gives one
/// @param slot             number of the track's road
BeltDrive read_belt_drive(const TableReader& track, double sprocket_radius, int slot, Reading& reading);

}  // namespace qvslv
