#include "solver/checks/checks.h"

namespace qvslv {

void check_roads(const Scene& scene, Findings& findings) {
  for (const auto& [string, road] : scene.roads) findings.insert(findings.end(), road.found.begin(), road.found.end());
}

}  // namespace qvslv
