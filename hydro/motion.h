#pragma once

#include "hydro/records.h"

namespace qvhydro {

/// Where hull and water are, and how the hull moves in the water. Lengths and times in the model's units. The suffixes
/// are those of the parameters: 4 force marker, 5 water marker, 6 body marker.
struct motion {
  double p4[3] = {}, p5[3] = {}, p6[3] = {};  ///< positions, global
  double A5[9] = {};                          ///< rotation water frame -> global axes, column by column
  double A6[9] = {};                          ///< rotation body marker frame -> global axes
  double R[9];                                ///< rotation body marker frame -> water frame, A5^T A6
  double d[3] = {}, v[3] = {};                ///< body marker's position and velocity, in the water frame
  double spin[3];                             ///< angular velocity of the body marker, in its own axes
};

/// Asks the host for the markers of a mesh. What the host does not answer stays 0.
motion fetch_motion(void* handle, const Chydro_force_sub& sub);

}  // namespace qvhydro
