#pragma once

#include <array>
#include <cmath>

/// Vectors and rotations as plain arrays, for everything outside the multibody engine.
namespace qvslv {

using Vec3 = std::array<double, 3>;
/// 3x3 rotation from an inner frame to an outer one, column by column: entries 0-2 are the inner frame's x axis seen in
/// the outer frame.
using Rotation = std::array<double, 9>;
constexpr Rotation k_identity = {1, 0, 0, 0, 1, 0, 0, 0, 1};

inline Vec3 minus(const Vec3& a, const Vec3& b) { return {a[0] - b[0], a[1] - b[1], a[2] - b[2]}; }
inline double dot(const Vec3& a, const Vec3& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }
inline Vec3 cross(const Vec3& a, const Vec3& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
inline double length(const Vec3& a) { return std::sqrt(dot(a, a)); }

/// `a` divided by its length; the zero vector if the length is 0 or no number.
inline Vec3 unit(const Vec3& a) {
  const double size = length(a);
  if (!(size > 0)) return {0, 0, 0};
  return {a[0] / size, a[1] / size, a[2] / size};
}

}  // namespace qvslv
