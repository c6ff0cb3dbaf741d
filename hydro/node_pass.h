#pragma once

#include "hydro/records.h"

namespace qvhydro {

/// Where the hull and the water are. Suffixes: 4 force marker, 5 water marker, 6 body marker.
struct motion {
  double p4[3] = {}, p5[3] = {}, p6[3] = {};  ///< global positions
  double A5[9] = {}, A6[9] = {};
  double R[9];                  ///< body marker frame -> water frame
  double d[3] = {}, v[3] = {};  ///< body marker's position and velocity in the water frame
  double spin[3];               ///< of the body marker, in its own axes
};

/// Works out every node of a mesh, once per call, whatever the number of its patches.
void evaluate_nodes(const Chydro_force& element, const time_blend& when, const motion& m, Chydro_force_sub& sub);

}  // namespace qvhydro
