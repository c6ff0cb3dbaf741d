#pragma once

#include <array>
#include <random>
#include <vector>

#include "tests/reference/linear_algebra.h"

/// Hulls of triangular patches whose normals point into the water.
namespace qvtest {

struct hull {
  std::vector<qvref::v3> nodes;
  std::vector<std::array<int, 3>> patches;  ///< node positions, from 0
};

using random_source = std::mt19937_64;
inline double uniform(random_source& random, double low, double high) {
  return std::uniform_real_distribution<double>(low, high)(random);
}
inline int whole(random_source& random, int low, int high) {
  return std::uniform_int_distribution<int>(low, high)(random);
}

/// A box about the origin, two patches a side.
hull box_hull(double length, double breadth, double height);
/// A sphere about the origin: an icosahedron whose patches were quartered `level` times.
hull sphere_hull(double radius, int level);
hull one_patch(const qvref::v3& a, const qvref::v3& b, const qvref::v3& c);
/// A rectangle in the plane z = 0 about the origin, two patches, facing up.
hull plate_hull(double length, double breadth);
/// A bent closed hull: a sphere with its nodes moved along their radius.
hull random_hull(random_source& random);

/// Volume and centre of a closed hull, by the divergence theorem.
struct body_of_water {
  double volume = 0.0;
  qvref::v3 moment{};
  qvref::v3 centre() const { return {moment[0] / volume, moment[1] / volume, moment[2] / volume}; }
};

/// The part of the closed hull below z = level, its nodes taken to R node + d: every patch cut at the level
/// (Sutherland-Hodgman), and the cut closed by pyramids from one point in it, which have no height over the level.
body_of_water clip_hull(const hull& h, const qvref::m33& R, const qvref::v3& d, double level);

/// The water between the part of one triangle below the level and the level, by exact integration over its plan.
body_of_water integrate_column(const std::array<qvref::v3, 3>& q, double level);

}  // namespace qvtest
