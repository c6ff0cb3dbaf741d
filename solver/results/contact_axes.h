#pragma once

#include <array>

#include "solver/model/model.h"
#include "solver/model/triangle_mesh.h"
#include "solver/results/recording.h"
#include "solver/results/terrain_lookup.h"

namespace qvslv {

/// Turns the forces of contact points, which are known along shear 1, shear 2 and the normal, into ground axes and
/// back. The normal is the terrain's, upwards. Shear 1 runs along (y axis of the element's marker) x normal, shear 2
/// along normal x shear 1.
class ContactAxes {
public:
  /// Model and terrain must outlive this object.
  ContactAxes(const Model& model, const TriangleMesh& terrain, const UpAxis& up);

  /// The force of a contact point in ground axes.
  Vec3 force_in_ground(const ContactPointSample& point, const Frame& frame) const;

  /// The reverse: components of a force in ground axes along shear 1, shear 2 and the normal of a point.
  Vec3 force_along(const ContactPointSample& point, const Vec3& in_ground, const Frame& frame) const;

private:
  /// Unit vectors along shear 1, shear 2 and the normal, in ground axes.
  std::array<Vec3, 3> directions(const ContactPointSample& point, const Frame& frame) const;

  const Model& m_model;
  TerrainLookup m_terrain;
};

}  // namespace qvslv
