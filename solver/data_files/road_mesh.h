#pragma once

#include <optional>
#include <string>

#include "solver/model/triangle_mesh.h"

namespace qvslv {

/// The mesh of a road file, for pictures, in the road's own axes. Reads only the node and triangle blocks, and leaves
/// out lines and triangles that make no sense. Returns nothing if the file cannot be read or holds no triangle.
std::optional<TriangleMesh> read_road_mesh(const std::string& path);

}  // namespace qvslv
