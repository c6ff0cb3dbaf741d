#include "solver/data_files/mesh_formats.h"
#include "solver/data_files/polygon_division.h"

namespace qvslv {

namespace {

/// Splitting a polygon takes time by the square of its corners. Throws when that would come to minutes.
void check_effort(const PolygonMesh& mesh) {
  constexpr double k_most = 1e9;
  double effort = 0;
  std::size_t begin = 0;
  for (const std::size_t end : mesh.ends) {
    const auto corners = static_cast<double>(end - begin);
    if (corners > 4) effort += corners * corners;
    begin = end;
  }
  if (effort > k_most)
    throw MeshError(
        "it holds too many polygons of many corners; split them into triangles in the program that made it");
}

}  // namespace

void PolygonMesh::close_polygon() {
  if (open_corners() < 3) {
    corners.resize(ends.empty() ? 0 : ends.back());
  } else {
    ends.push_back(corners.size());
  }
}

TriangleMesh triangulated(const PolygonMesh& polygons) {
  TriangleMesh mesh;
  mesh.points.reserve(polygons.points.size());
  for (const std::array<float, 3>& p : polygons.points) mesh.points.push_back({p[0], p[1], p[2]});
  if (polygons.corners.size() != 3 * polygons.ends.size()) {
    check_effort(polygons);
    std::string reason;
    polygon_division()(polygons, mesh, reason);
    if (!reason.empty()) throw MeshError("its polygons cannot be split into triangles: " + reason);
    return mesh;
  }
  mesh.triangles.reserve(polygons.ends.size());
  for (std::size_t k = 0; k < polygons.corners.size(); k += 3)
    mesh.triangles.push_back({static_cast<int>(polygons.corners[k]), static_cast<int>(polygons.corners[k + 1]),
                              static_cast<int>(polygons.corners[k + 2])});
  return mesh;
}

}  // namespace qvslv
