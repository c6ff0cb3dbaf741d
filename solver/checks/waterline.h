#pragma once

#include <optional>

#include "solver/model/triangle_mesh.h"

/// How a hull lies in still water. Meshes are given in the water's frame, z up; levels are heights there.
namespace qvslv {

/// The level below which a share of the mesh's volume lies: the water at which a hull floats that weighs this share of
/// what it displaces in all. By bisection, to a millionth of the hull's height.
/// @param share  0 to 1
double find_level(const TriangleMesh& mesh, double share);

/// The triangles along a waterline.
struct Waterline {
  double draught = 0;       ///< from the lowest point to the water [length]
  double panel_height = 0;  ///< of the upright triangles there: mean over the line's length [length]
};
/// None if the water meets no upright triangle.
std::optional<Waterline> waterline_at(const TriangleMesh& mesh, double level);

}  // namespace qvslv
