#pragma once

#include <string>
#include <vector>

#include "solver/model/finding.h"
#include "solver/model/triangle_mesh.h"

namespace qvslv {

/// What looks wrong in the mesh of a road: triangles without an area, and a road that stands upright.
/// @param lines  of the triangles in the file, from 1
void check_road_mesh(const TriangleMesh& mesh, const std::vector<int>& lines, const std::string& path,
                     Findings& findings);

}  // namespace qvslv
