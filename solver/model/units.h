#pragma once

#include <string>
#include <vector>

namespace qvslv {

/// The quantities whose units a model file and a road file declare, in the order of the five unit services.
enum class UnitQuantity { length, mass, time, force, angle };

/// A unit under the names that road files use for it (upper case, odd forms included).
struct UnitName {
  const char* name;    ///< "MILIMETER"
  const char* alias;   ///< "MM", or null
  const char* symbol;  ///< "mm", for column heads and messages
  double factor;       ///< what one of it is in SI
};

const std::vector<UnitName>& unit_names(UnitQuantity quantity);

/// The unit with this name in any letter case, or null.
const UnitName* find_unit(UnitQuantity quantity, const std::string& name);

/// All names and aliases of a quantity.
std::vector<std::string> all_unit_names(UnitQuantity quantity);

std::string upper_case(std::string text);

}  // namespace qvslv
