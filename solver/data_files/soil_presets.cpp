#include "solver/data_files/soil_presets.h"

#include <fmt/format.h>

#include <cmath>

namespace qvslv {

namespace {

// Shear displacement K at full strength by class of soil [m]. J. Y. Wong, Theory of Ground Vehicles, gives about 0.01
// for firm sandy ground, 0.025 for loose sand, 0.006 for compact clay and 0.025 to 0.05 for fresh snow. Loams and soft
// clays lie between these and have the round value 0.01 here. A model file replaces it by shear_displacement, the
// command line by --shear-displacement.
constexpr double k_firm_sand = 0.01, k_loose_sand = 0.025, k_loam = 0.01, k_clay = 0.006, k_snow = 0.03;

// With a sensitivity S = 1 the shear curve ends at the full strength and exceeds it by at most 5 % on the way (near a
// displacement of 1.7 K). A greater S adds a hump and lowers the strength after long slip.
constexpr double k_no_hump = 1.0;

RoadSoil soil(double n, double kc, double kphi, double c, double phi, double shear_displacement) {
  RoadSoil values;
  values.sinkage_exponent = n;
  values.cohesive_coeff = kc;
  values.frictional_coeff = kphi;
  values.cohesion = c;
  values.friction_angle = phi;
  values.shear_displacement = shear_displacement;
  values.sensitivity = k_no_hump;
  return values;
}

}  // namespace

const std::vector<SoilPreset>& soil_presets() {
  static const std::vector<SoilPreset> presets = {
      {"dry_sand", "dry sand (LLL)", soil(1.10, 990, 1.52843e6, 1040, 28, k_loose_sand)},
      {"sandy_loam_15pct", "sandy loam, 15 % moisture (LLL)", soil(0.70, 5270, 1.51504e6, 1720, 29, k_loam)},
      {"sandy_loam_22pct", "sandy loam, 22 % moisture (LLL)", soil(0.20, 2560, 43120, 1380, 38, k_loam)},
      {"sandy_loam_11pct", "sandy loam, 11 % moisture (Michigan)", soil(0.90, 52530, 1.12797e6, 4830, 20, k_loam)},
      {"sandy_loam_23pct", "sandy loam, 23 % moisture (Michigan)", soil(0.40, 11420, 808960, 9650, 35, k_loam)},
      {"sandy_loam_26pct", "sandy loam, 26 % moisture (Hanamoto)", soil(0.30, 2790, 141110, 13790, 22, k_loam)},
      {"sandy_loam_32pct", "sandy loam, 32 % moisture (Hanamoto)", soil(0.50, 770, 51910, 5170, 11, k_loam)},
      {"clayey_soil_38pct", "clayey soil, 38 % moisture (Thailand)", soil(0.50, 13190, 692150, 4140, 13, k_loam)},
      {"clayey_soil_55pct", "clayey soil, 55 % moisture (Thailand)", soil(0.70, 16030, 1.26253e6, 2070, 10, k_loam)},
      {"heavy_clay_25pct", "heavy clay, 25 % moisture (WES)", soil(0.13, 12700, 1.55595e6, 68950, 34, k_clay)},
      {"heavy_clay_40pct", "heavy clay, 40 % moisture (WES)", soil(0.11, 1840, 103270, 20690, 6, k_clay)},
      {"lean_clay_22pct", "lean clay, 22 % moisture (WES)", soil(0.20, 16430, 1.72469e6, 68950, 20, k_clay)},
      {"lean_clay_32pct", "lean clay, 32 % moisture (WES)", soil(0.15, 1520, 119610, 13790, 11, k_clay)},
      {"LETE_sand", "LETE sand", soil(0.793, 102000, 5.301e6, 1300, 31.1, k_firm_sand)},
      {"upland_sandy_loam", "Upland sandy loam, 51 % moisture", soil(1.10, 74600, 2.08e6, 3300, 33.7, k_loam)},
      {"rubicon_sandy_loam", "Rubicon sandy loam, 43 % moisture", soil(0.66, 6900, 752000, 3700, 29.8, k_loam)},
      {"north_gower_clayey_loam", "North Gower clayey loam, 46 % moisture",
       soil(0.73, 41600, 2.471e6, 6100, 26.6, k_loam)},
      {"grenville_loam", "Grenville loam, 24 % moisture", soil(1.01, 60, 5.88e6, 3100, 29.8, k_loam)},
      {"snow_US", "snow (U.S.)", soil(1.60, 4370, 196720, 1030, 19.7, k_snow)},
      {"snow_harrison", "snow (U.S., Harrison)", soil(1.60, 2490, 245900, 620, 23.2, k_snow)},
      {"snow_sweden", "snow (Sweden)", soil(1.44, 10550, 66080, 6000, 20.7, k_snow)}};
  return presets;
}

std::vector<std::string> soil_preset_names() {
  std::vector<std::string> names;
  for (const SoilPreset& preset : soil_presets()) names.emplace_back(preset.name);
  return names;
}

const SoilPreset* find_soil_preset(const std::string& name) {
  for (const SoilPreset& preset : soil_presets())
    if (name == preset.name) return &preset;
  return nullptr;
}

RoadSoil soil_in_units(const SoilPreset& preset, const Units& units) {
  const double length = units.length_factor, force = units.force_factor;
  RoadSoil soil = preset.soil;
  soil.cohesive_coeff *= std::pow(length, soil.sinkage_exponent + 1.0) / force;
  soil.frictional_coeff *= std::pow(length, soil.sinkage_exponent + 2.0) / force;
  soil.cohesion *= length * length / force;
  soil.shear_displacement /= length;
  soil.boundary_sinkage /= length;
  soil.damp_ratio /= units.time_factor;
  return soil;
}

std::string soil_preset_table() {
  std::string text =
      "name                      n      kc            kphi          c       phi    K      description\n"
      "                          [-]    [N/m^(n+1)]   [N/m^(n+2)]   [Pa]    [deg]  [m]\n";
  for (const SoilPreset& preset : soil_presets()) {
    const RoadSoil& s = preset.soil;
    text += fmt::format("{:<25} {:<6.4g} {:<13.6g} {:<13.6g} {:<7.6g} {:<6.4g} {:<6.3g} {}\n", preset.name,
                        s.sinkage_exponent, s.cohesive_coeff, s.frictional_coeff, s.cohesion, s.friction_angle,
                        s.shear_displacement, preset.description);
  }
  const RoadSoil common;
  return text +
         fmt::format("All with sensitivity {:g}, damping ratio {:g} s, boundary sinkage {:g} m.\n", common.sensitivity,
                     common.damp_ratio, common.boundary_sinkage) +
         "n, kc, kphi, c, phi: measured values collected in J. Y. Wong, Theory of Ground Vehicles.\n"
         "K: shear displacement at full strength, typical of the soil's class (same work: firm sand 0.01,\n"
         "loose sand 0.025, compact clay 0.006, fresh snow 0.025 to 0.05 m); not measured with the other values,\n"
         "change it with --shear-displacement.\n";
}

}  // namespace qvslv
