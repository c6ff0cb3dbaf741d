#pragma once

#include "solver/model_file/reading.h"

namespace qvslv {

/// Source of a belt's speed: ids of the variable and the equation that give it.
struct BeltDrive {
  double speed_variable = 0;
  double equation = 0;  ///< of the sprocket's angle; 0 if the speed is given
  double radius = 0;    ///< [length] the belt's speed is this radius times the sprocket's rate
};

/// Reads the key `belt_speed` or the table `drive` of a track and makes the variables and the equation they need; the
/// made names begin with the track's.
/// @param sprocket_radius  [length] taken if the table gives no radius
/// @param slot             number of the track's road slot, from 0
BeltDrive read_belt_drive(const TableReader& track, double sprocket_radius, int slot, Reading& reading);

}  // namespace qvslv
