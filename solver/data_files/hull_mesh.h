#pragma once

#include <array>
#include <stdexcept>
#include <string>
#include <vector>

#include "solver/model/triangle_mesh.h"

namespace qvslv {

// Patch meshes of hulls: triangles whose corners, seen from the water, go round counter-clockwise.

/// A mesh that cannot be read, or that no hull can have. what() says where and what would be right.
class MeshError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

struct MeshMeasures {
  double volume = 0;                       ///< enclosed [length^3]; negative if the triangles face inwards
  double area = 0;                         ///< [length^2]
  Vec3 center = {0, 0, 0};                 ///< centre of the volume, in the mesh's frame [length]
  Vec3 low = {0, 0, 0}, high = {0, 0, 0};  ///< corners of the box around the mesh, likewise
};
MeshMeasures calc_measures(const TriangleMesh& mesh);

/// Throws MeshError unless the mesh bounds a volume and faces outwards: every triangle has an area, every edge lies
/// between exactly two triangles that go along it in opposite directions, and the volume is positive.
void check_hull_mesh(const TriangleMesh& mesh);

/// Turns every triangle over.
void flip(TriangleMesh& mesh);

/// Merges points that lie closer together than a millionth of the mesh's size. Drops triangles that collapse by this,
/// and points that no triangle needs.
TriangleMesh welded(const TriangleMesh& mesh);

/// Splits a mesh into slices of about equally many triangles, along x or y, whichever is longer. Each slice has only
/// the points that its triangles need.
std::vector<TriangleMesh> sliced(const TriangleMesh& mesh, int parts);

/// Area of all triangles.
double calc_area(const TriangleMesh& mesh);

/// Reads an STL, OBJ or PLY file, splits its polygons into triangles and welds the mesh. Throws MeshError.
TriangleMesh read_mesh_file(const std::string& path);

/// A box around the origin with raked ends: at its bottom, the ends are drawn in by `bow` (at +x) and `stern` (at -x).
/// @param divisions  number of cells along x, y and z
TriangleMesh barge_mesh(const Vec3& size, double bow, double stern, const std::array<int, 3>& divisions);

/// A prism around the origin, inscribed in a cylinder.
/// @param axis    of the cylinder: 0 x, 1 y, 2 z
/// @param around  number of its sides
/// @param along   number of cells along the axis
TriangleMesh round_mesh(double radius, double length, int axis, int around, int along);

/// A sphere around the origin: an icosahedron whose triangles are split into four `level` times, with all points on the
/// sphere. It has 20 * 4^level triangles.
TriangleMesh icosphere_mesh(double radius, int level);

}  // namespace qvslv
