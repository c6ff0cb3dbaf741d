#pragma once

#include <string>
#include <vector>

#include "solver/model/model.h"

namespace qvslv {

/// The soil values of a road file, in the road's units.
struct RoadSoil {
  double sinkage_exponent = 1;       ///< n [-]
  double cohesive_coeff = 0;         ///< kc [force/length^(n+1)]
  double frictional_coeff = 0;       ///< kphi [force/length^(n+2)]
  double cohesion = 0;               ///< c [force/length^2]
  double friction_angle = 0;         ///< phi [degrees]
  double shear_displacement = 0.01;  ///< K [length]: shear displacement at full strength
  double sensitivity = 1;            ///< S [-]: full strength over the strength left after long slip
  double damp_ratio = 0.01;          ///< [time] damping per unit of stiffness
  double boundary_sinkage = 0.05;    ///< [length] depth from which the damping is full
};

/// A soil by name, in SI units.
struct SoilPreset {
  const char* name;
  const char* description;
  RoadSoil soil;
};

/// Every preset. n, kc, kphi, c and phi are measured values collected in J. Y. Wong, Theory of Ground Vehicles. K is
/// not among them; each preset has the typical value of its class of soil, see soil_presets.cpp.
const std::vector<SoilPreset>& soil_presets();
std::vector<std::string> soil_preset_names();
/// The preset of this name; null if there is none.
const SoilPreset* find_soil_preset(const std::string& name);

/// The preset's values converted to a model's units.
RoadSoil soil_in_units(const SoilPreset& preset, const Units& units);

/// A table of all presets with units and sources, for the terminal.
std::string soil_preset_table();

}  // namespace qvslv
