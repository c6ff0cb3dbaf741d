#include "solver/checks/checks.h"

namespace qvslv {

namespace {

using Check = void (*)(const Scene&, Findings&);
constexpr Check k_checks[] = {check_described_files, check_roads,   check_contacts, check_tracks, check_water,
                              check_hulls,           check_gravity, check_joints,   check_sizes};

}  // namespace

void check_model(ModelFile& file) {
  Findings findings;
  const Scene scene(file);
  for (const Check check : k_checks) check(scene, findings);
  file.findings.insert(file.findings.end(), findings.begin(), findings.end());
}

}  // namespace qvslv
