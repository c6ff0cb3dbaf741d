#pragma once

#include <string>
#include <vector>

#include "solver/model/model.h"

namespace qvslv {

/// The quantities whose units a model file and a road file declare, in the order in which the service GTUNTS gives
/// them.
enum class UnitQuantity { length, mass, time, force, angle };

/// A unit under the names that road files use for it (upper case, odd forms included).
struct UnitName {
  const char* name;    ///< "MILIMETER"
  const char* alias;   ///< "MM", or null
  const char* symbol;  ///< "mm", for column heads and messages
  double factor;       ///< one of this unit, in SI units
};

const std::vector<UnitName>& unit_names(UnitQuantity quantity);

/// The unit with this name in any letter case, or null.
const UnitName* find_unit(UnitQuantity quantity, const std::string& name);

/// All names and aliases of a quantity.
std::vector<std::string> all_unit_names(UnitQuantity quantity);

std::string upper_case(std::string text);

/// How the units of a model are written in column heads and messages: "N m", "t mm^2/s^2". Products have a blank,
/// powers a ^. Angles are radians in a model, whatever its file was written in.
struct UnitSymbols {
  explicit UnitSymbols(const Units& units);
  std::string length, mass, time, force;
  std::string area, volume, speed, spin, moment;
  std::string energy;  ///< "J" if the units are kg, m and s, otherwise built from mass, length and time: "t mm^2/s^2"
};

}  // namespace qvslv
