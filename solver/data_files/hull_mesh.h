#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "solver/model/triangle_mesh.h"

namespace qvslv {

/// Patch meshes of hulls: triangles whose corners, seen from the water, go round counter-clockwise.

/// A mesh that cannot be read, or that no hull can have. what() says where and what would be right.
class MeshError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

struct MeshMeasures {
  double volume = 0;                       ///< enclosed; negative when the triangles face inwards [length^3]
  double area = 0;                         ///< [length^2]
  Vec3 center = {0, 0, 0};                 ///< of the volume, in the mesh's frame
  Vec3 low = {0, 0, 0}, high = {0, 0, 0};  ///< corners of the box around it
};
MeshMeasures calc_measures(const TriangleMesh& mesh);

/// Throws MeshError unless the mesh bounds a volume and faces outwards: no triangle without area, each edge between
/// exactly two triangles that go along it in opposite directions, a positive volume.
void check_hull_mesh(const TriangleMesh& mesh);

/// Turns every triangle over.
void flip(TriangleMesh& mesh);

/// Makes one point of those that lie closer together than a millionth of the mesh's size, and drops triangles that
/// collapse by this and points that no triangle needs.
TriangleMesh welded(const TriangleMesh& mesh);

/// Splits a mesh into slices of about equally many triangles, along x or y, whichever is longer. Each slice has the
/// points that its triangles need.
std::vector<TriangleMesh> sliced(const TriangleMesh& mesh, int parts);

/// Area of all triangles.
double calc_area(const TriangleMesh& mesh);

/// Reads an STL, OBJ or PLY file, welded; polygons are split into triangles. Throws MeshError.
TriangleMesh read_mesh_file(const std::string& path);

/// A box of `size` around the origin whose ends, at the height of its bottom, are drawn in by `bow` (at +x) and
/// `stern` (at -x). `divisions` along x, y and z.
TriangleMesh barge_mesh(const Vec3& size, double bow, double stern, const std::array<int, 3>& divisions);

/// A prism of `around` sides inscribed in a cylinder, around the origin. axis: 0 x, 1 y, 2 z.
TriangleMesh round_mesh(double radius, double length, int axis, int around, int along);

/// A sphere around the origin: an icosahedron whose triangles are split into four `level` times, all points on the
/// sphere. 20 * 4^level triangles.
TriangleMesh icosphere_mesh(double radius, int level);

}  // namespace qvslv
