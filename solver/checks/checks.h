#pragma once

#include "solver/checks/scene.h"

/// What looks wrong in a model that can be run. A check is a function that looks at one subject and notes each thing
/// once per element, with the key, the value, the limit and what to do; the table in checks.cpp lists them.
namespace qvslv {

void check_described_files(const Scene& scene, Findings& findings);  ///< files that hide behind tables
void check_roads(const Scene& scene, Findings& findings);            ///< texts and values of road files
void check_contacts(const Scene& scene, Findings& findings);         ///< wheels and plates on soil
void check_tracks(const Scene& scene, Findings& findings);
void check_water(const Scene& scene, Findings& findings);  ///< WAVE and CURRENT files, and what leaves them
void check_hulls(const Scene& scene, Findings& findings);
void check_gravity(const Scene& scene, Findings& findings);  ///< against roads and waters
void check_joints(const Scene& scene, Findings& findings);
void check_sizes(const Scene& scene, Findings& findings);  ///< of the results

/// Adds the findings of all checks to those of the model. Reads the road, WAVE and CURRENT files that the model names.
void check_model(ModelFile& file);

}  // namespace qvslv
