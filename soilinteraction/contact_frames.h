#pragma once

#include <cstdint>

#include "soilinteraction/contact_records.h"
#include "soilinteraction/kinematics.h"
#include "soilinteraction/vectors.h"

/// Contact frames over triangles. All points of an element that are over one triangle have the same frame, so it is
/// made once per call. The frames that a block of points still lacks are made together.
namespace qvsoilinteraction {

/// The contact frame over one triangle, all vectors of unit length.
struct contact_frame {
  std::int32_t number;     ///< number of the triangle, from 1; 0: this frame is empty
  bool flat;               ///< the triangle has a normal
  double facet_normal[3];  ///< road axes
  double normal[3];        ///< ground axes
  double tangent_1[3];     ///< body y axis x normal, ground axes: the rolling direction of a wheel
  double tangent_2[3];     ///< normal x tangent_1, ground axes
  double plate_ratio;      ///< cosine between the normal and the body's z axis, 0 or more
};

/// Makes the frames of one call and remembers them.

class frame_maker {
public:
  frame_maker(const qvsoilrdf::CRoad& road, const kinematics& k) : m_road(road), m_k(k) {
    for (entry& e : m_cache) e.frame.number = 0;
  }

  /// Gives each of `count` points (at most k_block) the frame over its triangle: facet normal, normal, tangents, and
  /// the plate's ratio as area ratio. `flat[i]` is false for a point over no triangle or over one without a normal.
  void set_frames(Croad_contact* const* points, int count, bool* flat);

private:
  static constexpr int k_bits = 6;
  static constexpr int k_made = -1;
  struct entry {
    contact_frame frame;
    int pending;  ///< the frame's index in m_made while it is being made, k_made afterwards
  };

  entry& entry_of(std::int32_t number) {
    return m_cache[(static_cast<std::uint32_t>(number) * 2654435769U) >>
                   (32 - k_bits)];  // multiplicative hash: 2^32 over the golden ratio
  }
  void make(int count);

  const qvsoilrdf::CRoad& m_road;
  const kinematics& m_k;
  entry m_cache[1 << k_bits];     ///< by hash of the number; a later frame overwrites an earlier one of the same hash
  contact_frame m_made[k_block];  ///< the frames that a block lacked
};

}  // namespace qvsoilinteraction
