#include "soilinteraction/contact_frames.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "common/kernels/kernels.h"

namespace qvsoilinteraction {

QV_WIDE_VECTORS void frame_maker::make(contact_frame* frames, int count) const {
  vectors facet, normal, tangent_1, tangent_2;
  for (int i = 0; i < count; ++i) {
    const qvsoilrdf::CFacet& triangle = m_road.facets[static_cast<std::size_t>(frames[i].number - 1)];
    const double* n = triangle.normal;
    frames[i].flat = !(n[0] == 0.0 && n[1] == 0.0 && n[2] == 0.0);
    qv::assgvec(triangle.corner, 3, frames[i].corner);
    facet.x[i] = n[0];
    facet.y[i] = n[1];
    facet.z[i] = n[2];
  }
  normalise(facet, count);  // the facet normal as a single search stores it
  for (int i = 0; i < count; ++i) take(facet, i, frames[i].facet_normal);
  normalise(facet, count);  // kept: the contact normalises it once more, which may change its last digit
  rotate(m_k.A5, facet, normal, count);
  normalise(normal, count);
  const double* y = m_k.A1 + 3;  // y axis of the body
  for (int i = 0; i < count; ++i) {
    tangent_1.x[i] = y[1] * normal.z[i] - y[2] * normal.y[i];
    tangent_1.y[i] = y[2] * normal.x[i] - y[0] * normal.z[i];
    tangent_1.z[i] = y[0] * normal.y[i] - y[1] * normal.x[i];
  }
  normalise(tangent_1, count);
  for (int i = 0; i < count; ++i) {
    tangent_2.x[i] = normal.y[i] * tangent_1.z[i] - normal.z[i] * tangent_1.y[i];
    tangent_2.y[i] = normal.z[i] * tangent_1.x[i] - normal.x[i] * tangent_1.z[i];
    tangent_2.z[i] = normal.x[i] * tangent_1.y[i] - normal.y[i] * tangent_1.x[i];
  }
  normalise(tangent_2, count);
  const double* z = m_k.A1 + 6;  // z axis of the body
  for (int i = 0; i < count; ++i) {
    take(normal, i, frames[i].normal);
    take(tangent_1, i, frames[i].tangent_1);
    take(tangent_2, i, frames[i].tangent_2);
    frames[i].plate_ratio = std::fabs(normal.x[i] * z[0] + normal.y[i] * z[1] + normal.z[i] * z[2]);
  }
}

void frame_maker::forget() {
  std::fill(std::begin(m_places), std::end(m_places), std::int16_t{0});
  m_count = m_made = 0;
}

/// Finds the frames and begins those that are missing; false if there is no room for them.
bool frame_maker::find_known(const std::int32_t* numbers, int count, const contact_frame** frames) {
  for (int i = 0; i < count; ++i) {
    if (i > 0 && numbers[i] == numbers[i - 1]) {  // neighbours mostly share a triangle
      frames[i] = frames[i - 1];
      continue;
    }
    const std::uint32_t place = place_of(numbers[i]);
    if (m_places[place] == 0) {
      if (m_count == k_frames) return false;
      m_frames[m_count].number = numbers[i];
      m_places[place] = static_cast<std::int16_t>(++m_count);
    }
    frames[i] = &m_frames[m_places[place] - 1];
  }
  return true;
}

void frame_maker::find_frames(const std::int32_t* numbers, int count, const contact_frame** frames) {
  if (!find_known(numbers, count, frames)) {
    forget();
    find_known(numbers, count, frames);
  }
  make(m_frames + m_made, m_count - m_made);
  m_made = m_count;
}

}  // namespace qvsoilinteraction
