#include "solver/data_files/soil_check.h"

#include <fmt/format.h>

#include <algorithm>

#include "solver/data_files/soil_presets.h"

namespace qvslv {

namespace {

/// A value that soils differ in by powers of ten.
struct Modulus {
  const char* key;
  double RoadSoil::*value;
  const char* unit;
};
constexpr Modulus k_moduli[] = {{"COHESIVE_COEFF", &RoadSoil::cohesive_coeff, "force/length^(n+1)"},
                                {"FRICTIONAL_COEFF", &RoadSoil::frictional_coeff, "force/length^(n+2)"},
                                {"COHESION", &RoadSoil::cohesion, "force/length^2"},
                                {"MAX_SHEAR_DISP", &RoadSoil::shear_displacement, "length"}};

struct Range {
  double low = 0, high = 0;
};

Range range_of(const Modulus& modulus, const Units& units) {
  Range range;
  for (const SoilPreset& preset : soil_presets()) {
    const double value = soil_in_units(preset, units).*modulus.value;
    range.low = range.low == 0 ? value : std::min(range.low, value);
    range.high = std::max(range.high, value);
  }
  return range;
}

class SoilCheck {
public:
  SoilCheck(const std::vector<SoilValue>& values, const Units& units, const std::string& path, Findings& findings)
      : m_values(values), m_units(units), m_path(path), m_findings(findings) {}

  void check_present() {
    for (const char* key : {"SENSITIVITY", "MAX_SHEAR_DISP"})
      if (value(key) == 0) note("road-no-shear", 0, std::string(key) + " is missing or 0: the soil carries no shear");
    if (value("COHESIVE_COEFF") == 0 && value("FRICTIONAL_COEFF") == 0)
      note("road-no-load", 0, "COHESIVE_COEFF and FRICTIONAL_COEFF are missing or 0: the soil carries no load");
    if (value("SINKAGE_EXPONENT") == 0)
      note("road-exponent", 0,
           "SINKAGE_EXPONENT is missing or 0: the pressure is the same at every depth; soils have 0.1 to 1.6");
    if (find("DAMP_RATIO") == nullptr)
      note("road-no-damping", 0, "DAMP_RATIO is missing: 0.01 units of time are taken; write the value that is meant");
  }

  void check_signs() {
    for (const char* key : {"COHESIVE_COEFF", "FRICTIONAL_COEFF", "SINKAGE_EXPONENT", "COHESION", "MAX_SHEAR_DISP",
                            "SENSITIVITY", "DAMP_RATIO", "BOUNDARY_SINKAGE"})
      if (value(key) < 0)
        note("road-negative", line(key), fmt::format("{} is {:.6g}; it must not be negative", key, value(key)));
  }

  void check_ranges() {
    constexpr double k_wild = 100;  // times beyond every soil of the presets: no soil is, another unit often is
    for (const Modulus& modulus : k_moduli) {
      const double is = value(modulus.key);
      const Range known = range_of(modulus, m_units);
      if (is <= 0 || (is >= known.low / k_wild && is <= known.high * k_wild)) continue;
      note("road-wild-value", line(modulus.key),
           fmt::format("{} is {:.6g}, and known soils have {:.3g} to {:.3g} [{}] in the file's units; check the units",
                       modulus.key, is, known.low, known.high, modulus.unit));
    }
    constexpr double k_largest_exponent = 3;
    if (value("SINKAGE_EXPONENT") > k_largest_exponent)
      note("road-exponent", line("SINKAGE_EXPONENT"),
           fmt::format("SINKAGE_EXPONENT is {:.6g}; soils have 0.1 to 1.6", value("SINKAGE_EXPONENT")));
  }

  void check_angle() {
    constexpr double k_largest = 60, k_radians = 1;
    const double angle = value("FRICTION_ANGLE");
    if (angle < 0 || angle > k_largest)
      note("road-angle", line("FRICTION_ANGLE"),
           fmt::format("FRICTION_ANGLE is {:.6g} degrees; it must lie between 0 and 60", angle));
    if (angle > 0 && angle < k_radians)
      note("road-angle", line("FRICTION_ANGLE"),
           fmt::format(
               "FRICTION_ANGLE is {:.6g} degrees, less than any soil's; it is in degrees whatever ANGLE says, and "
               "this looks like radians ({:.3g} degrees)",
               angle, angle * 57.29577951308232));
  }

private:
  const SoilValue* find(const std::string& key) const {
    const SoilValue* found = nullptr;
    for (const SoilValue& value : m_values)
      if (value.key == key) found = &value;
    return found;
  }
  double value(const std::string& key) const { return find(key) == nullptr ? 0 : find(key)->value; }
  int line(const std::string& key) const { return find(key) == nullptr ? 0 : find(key)->line; }
  void note(const char* id, int line, const std::string& text) {
    m_findings.push_back(finding_in(m_path, line, Level::warning, id, text));
  }

  const std::vector<SoilValue>& m_values;
  const Units& m_units;
  const std::string& m_path;
  Findings& m_findings;
};

}  // namespace

void check_soil_values(const std::vector<SoilValue>& values, const Units& units, const std::string& path,
                       Findings& findings) {
  SoilCheck check(values, units, path, findings);
  check.check_present();
  check.check_signs();
  check.check_ranges();
  check.check_angle();
}

}  // namespace qvslv
