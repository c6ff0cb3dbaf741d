#pragma once

#include <string>
#include <vector>

#include "tests/cli/process.h"

/// Models of one body on level soil, and the soils that the tests use.
namespace qvtest {

/// Pressure-sinkage parameters [SI].
struct soil {
  const char* name;
  double n, kc, kphi;

  double stiffness(double b) const { return kc / b + kphi; }
};

/// Five soils, soft to firm: J. Y. Wong, Theory of Ground Vehicles, table of terrain values.
extern const soil k_soils[5];

/// Writes a level road of this soil into the folder.
/// @param damp_ratio, boundary_sinkage  of the road
void write_level_road(const std::filesystem::path& file, const soil& ground, double half_length, double damp_ratio,
                      double boundary_sinkage);

/// Runs a model text in a folder of its own that holds "level.rdf"; fails the test when the run does.
ResultTable run_on_level_road(const std::string& model, const soil& ground, double damp_ratio, double boundary_sinkage);

}  // namespace qvtest
