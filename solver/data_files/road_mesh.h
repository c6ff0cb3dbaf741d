#pragma once

#include <map>
#include <optional>
#include <string>

#include "solver/model/triangle_mesh.h"

namespace qvslv {

/// The mesh of a road file, for pictures, in the road's own axes. Reads only the node and triangle blocks, and leaves
/// out lines and triangles that make no sense. Returns nothing if the file cannot be read or holds no triangle.
std::optional<TriangleMesh> read_road_mesh(const std::string& path);

/// Meshes of roads that are read before they are asked for, while there is nothing else to do.
class RoadMeshes {
public:
  void read_ahead(const std::string& path);
  /// As read_road_mesh. A mesh that was read ahead leaves this object.
  std::optional<TriangleMesh> take(const std::string& path);

private:
  std::map<std::string, std::optional<TriangleMesh>> m_meshes;
};

}  // namespace qvslv
