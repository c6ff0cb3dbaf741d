#pragma once

#include <array>

#include "solver/results/recording.h"
#include "solver/results/terrain_lookup.h"

namespace qvslv {

/// Turns the forces of contact points, known along shear 1, shear 2 and the normal, into ground axes and back. The
/// normal is that of the terrain, shear 1 runs along (y axis of the element's marker) x normal, shear 2 along normal x
/// shear 1.
class ContactAxes {
public:
  /// Model and terrain outlive this.
  ContactAxes(const Model& model, const TriangleMesh& terrain, const UpAxis& up);

  Vec3 force_in_ground(const ContactPointSample& point, const Frame& frame) const;

  /// The reverse: along shear 1, shear 2 and the normal of a point, of a force in ground axes.
  Vec3 force_along(const ContactPointSample& point, const Vec3& in_ground, const Frame& frame) const;

private:
  /// Shear 1, shear 2 and the normal, in ground axes.
  std::array<Vec3, 3> directions(const ContactPointSample& point, const Frame& frame) const;

  const Model& m_model;
  TerrainLookup m_terrain;
};

}  // namespace qvslv
