#pragma once

#include <array>
#include <string>
#include <vector>

#include "solver/recording.h"
#include "solver/report_page/terrain_lookup.h"

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

/// Force of an element on its body, in ground axes.
struct ElementLoad {
  Vec3 place = {0, 0, 0};
  Vec3 force = {0, 0, 0};
};

/// Reads the force of each force element out of the table of results.
class ElementLoads {
public:
  /// @param columns  headers of the table; elements whose force is not recorded are left out
  ElementLoads(const Model& model, const std::vector<std::string>& columns);

  /// Indices into Model::elements.
  const std::vector<int>& elements() const { return m_elements; }

  /// One per element, from the row with the frame's time; no force without such a row. Points that touch the ground
  /// draw the place to where they carry, weighed by normal force; else it is the element's marker.
  std::vector<ElementLoad> find_loads(const Frame& frame, const std::vector<std::vector<double>>& rows) const;

private:
  const Model& m_model;
  std::vector<int> m_elements;
  std::vector<std::array<size_t, 3>> m_columns;  ///< of the force, one per element
};

}  // namespace qvslv
