#include "solver/results/shape_mesh.h"

#include <cmath>

namespace qvslv {

namespace {

constexpr double k_pi = 3.141592653589793;

TriangleMesh box_mesh(const Vec3& size) {
  TriangleMesh mesh;
  for (int corner = 0; corner < 8; ++corner) {  // bits 0, 1, 2 of the number say: on the +x, +y, +z side
    Vec3 p;
    for (size_t k = 0; k < 3; ++k) p[k] = (((corner >> k) & 1) != 0 ? 0.5 : -0.5) * size[k];
    mesh.points.push_back(p);
  }
  add_quad(mesh, 0, 4, 6, 2);  // -x
  add_quad(mesh, 1, 3, 7, 5);  // +x
  add_quad(mesh, 0, 1, 5, 4);  // -y
  add_quad(mesh, 2, 6, 7, 3);  // +y
  add_quad(mesh, 0, 2, 3, 1);  // -z
  add_quad(mesh, 4, 5, 7, 6);  // +z
  return mesh;
}

/// The point at the distance `radius` from an axis, at the angle `turn` around it and at `along` on it.
Vec3 around(size_t axis, double radius, double turn, double along) {
  Vec3 p{};
  p[axis] = along;
  p[(axis + 1) % 3] = radius * std::cos(turn);
  p[(axis + 2) % 3] = radius * std::sin(turn);
  return p;
}

TriangleMesh cylinder_mesh(double radius, double length, int axis_number) {
  const auto axis = static_cast<size_t>(axis_number);
  constexpr int n = k_round_sides;
  TriangleMesh mesh;
  for (const double along : {-0.5 * length, 0.5 * length}) {
    for (int k = 0; k < n; ++k) mesh.points.push_back(around(axis, radius, 2 * k_pi * k / n, along));
  }
  for (const double along : {-0.5 * length, 0.5 * length}) mesh.points.push_back(around(axis, 0, 0, along));
  for (int k = 0; k < n; ++k) {
    const int next = (k + 1) % n;
    add_quad(mesh, k, next, n + next, n + k);
    mesh.triangles.push_back({2 * n, next, k});              // cap at the near end
    mesh.triangles.push_back({2 * n + 1, n + k, n + next});  // cap at the far end
  }
  return mesh;
}

TriangleMesh sphere_mesh(double radius) {
  constexpr int n = k_round_sides;
  constexpr int rings = n / 2 - 1;  // circles of latitude between the poles
  constexpr size_t z = 2;
  TriangleMesh mesh;
  for (int ring = 1; ring <= rings; ++ring) {
    const double polar = k_pi * ring / (rings + 1);
    for (int k = 0; k < n; ++k) {
      mesh.points.push_back(around(z, radius * std::sin(polar), 2 * k_pi * k / n, radius * std::cos(polar)));
    }
  }
  const int north = static_cast<int>(mesh.points.size());
  mesh.points.push_back({0, 0, radius});
  mesh.points.push_back({0, 0, -radius});
  for (int k = 0; k < n; ++k) {
    const int next = (k + 1) % n;
    mesh.triangles.push_back({north, k, next});
    for (int ring = 0; ring + 1 < rings; ++ring) {
      add_quad(mesh, ring * n + k, (ring + 1) * n + k, (ring + 1) * n + next, ring * n + next);
    }
    mesh.triangles.push_back({north + 1, (rings - 1) * n + next, (rings - 1) * n + k});
  }
  return mesh;
}

}  // namespace

TriangleMesh shape_mesh(const Shape& shape) {
  switch (shape.kind) {
    case ShapeKind::none:
      break;
    case ShapeKind::box:
      return box_mesh(shape.size);
    case ShapeKind::cylinder:
      return cylinder_mesh(shape.radius, shape.length, shape.axis);
    case ShapeKind::sphere:
      return sphere_mesh(shape.radius);
  }
  return {};
}

}  // namespace qvslv
