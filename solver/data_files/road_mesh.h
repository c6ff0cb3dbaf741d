#pragma once

#include <optional>
#include <string>

#include "solver/model/triangle_mesh.h"

namespace qvslv {

/// The mesh of a road file, for pictures: only the node and triangle blocks are looked at, and lines or triangles that
/// make no sense are left out. In the road's own axes. Nothing when the file cannot be read or holds no triangle.
std::optional<TriangleMesh> read_road_mesh(const std::string& path);

}  // namespace qvslv
