#pragma once

#include <cstdint>

#include "soilinteraction/kinematics.h"
#include "soilinteraction/vectors.h"
#include "soilrdf/road.h"

/// Contact frames over triangles. All points of an element that are over one triangle have the same frame, so it is
/// made once per call. The frames that a block of points still lacks are made together.
namespace qvsoilinteraction {

/// The contact frame over one triangle, all vectors of unit length.
struct contact_frame {
  double facet_normal[3];  ///< road axes
  double corner[3];        ///< the triangle's first corner, road axes [length]
  double normal[3];        ///< ground axes
  double tangent_1[3];     ///< body y axis x normal, ground axes: the rolling direction of a wheel
  double tangent_2[3];     ///< normal x tangent_1, ground axes
  double plate_ratio;      ///< cosine between the normal and the body's z axis, 0 or more
  std::int32_t number;     ///< number of the triangle, from 1
  bool flat;               ///< the triangle has a normal
};

/// Makes the frames of one call and keeps them.
class frame_maker {
public:
  frame_maker(const qvsoilrdf::CRoad& road, const kinematics& k) : m_road(road), m_k(k) { forget(); }

  /// Finds or makes the frames over `count` triangles (at most k_block). They stand until the next call.
  void find_frames(const std::int32_t* numbers, int count, const contact_frame** frames);

private:
  static constexpr int k_frames = 4 * k_block;
  static constexpr int k_bits = 9;  // so that at most half of the places below are taken

  /// The place of a triangle's frame in m_places, or the empty place where it belongs.
  std::uint32_t place_of(std::int32_t number) const {
    // multiplicative hash: 2^32 over the golden ratio
    std::uint32_t place = (static_cast<std::uint32_t>(number) * 2654435769U) >> (32 - k_bits);
    while (m_places[place] != 0 && m_frames[m_places[place] - 1].number != number) {
      place = (place + 1) % (1U << k_bits);
    }
    return place;
  }
  void forget();
  bool find_known(const std::int32_t* numbers, int count, const contact_frame** frames);
  void make(contact_frame* frames, int count) const;

  const qvsoilrdf::CRoad& m_road;
  const kinematics& m_k;
  int m_count = 0;                     ///< number of frames
  int m_made = 0;                      ///< so many of them are made; the others have their numbers only
  std::int16_t m_places[1 << k_bits];  ///< by hash of the number: the frame's index, from 1; 0: none
  contact_frame m_frames[k_frames];
};

}  // namespace qvsoilinteraction
