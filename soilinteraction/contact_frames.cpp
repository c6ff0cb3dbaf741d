#include "soilinteraction/contact_frames.h"

#include <cmath>

#include "soilinteraction/vectors.h"

namespace qvsoilinteraction {
namespace {

void give(const contact_frame& frame, Croad_contact& rc) {
  qv::assgvec(frame.facet_normal, 3, rc.facet_normal);
  qv::assgvec(frame.normal, 3, rc.normal);
  qv::assgvec(frame.tangent_1, 3, rc.tangent_1);
  qv::assgvec(frame.tangent_2, 3, rc.tangent_2);
  rc.area_ratio = frame.plate_ratio;
}

}  // namespace

QV_WIDE_VECTORS void frame_maker::make(int count) {
  vectors facet, normal, tangent_1, tangent_2;
  for (int i = 0; i < count; ++i) {
    const double* n = m_road.facets[static_cast<std::size_t>(m_made[i].number - 1)].normal;
    m_made[i].flat = !(n[0] == 0.0 && n[1] == 0.0 && n[2] == 0.0);
    facet.x[i] = n[0];
    facet.y[i] = n[1];
    facet.z[i] = n[2];
  }
  normalise(facet, count);  // the facet normal as a single search stores it
  for (int i = 0; i < count; ++i) take(facet, i, m_made[i].facet_normal);
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
    contact_frame& frame = m_made[i];
    take(normal, i, frame.normal);
    take(tangent_1, i, frame.tangent_1);
    take(tangent_2, i, frame.tangent_2);
    frame.plate_ratio = std::fabs(normal.x[i] * z[0] + normal.y[i] * z[1] + normal.z[i] * z[2]);
  }
}

void frame_maker::set_frames(Croad_contact* const* points, int count, bool* flat) {
  int place[k_block];  // index of a point's frame in m_made; k_made: the cache had the frame
  int missing = 0;
  for (int i = 0; i < count; ++i) {
    const std::int32_t number = points[i]->facet_number;
    place[i] = k_made;
    flat[i] = false;
    if (number == 0) continue;
    entry& e = entry_of(number);
    if (e.frame.number != number) {
      e.frame.number = m_made[missing].number = number;
      e.pending = missing++;
    }
    place[i] = e.pending;
    if (place[i] != k_made) continue;
    flat[i] = e.frame.flat;
    give(e.frame, *points[i]);
  }
  make(missing);
  for (int i = 0; i < count; ++i) {
    if (place[i] == k_made) continue;
    flat[i] = m_made[place[i]].flat;
    give(m_made[place[i]], *points[i]);
  }
  for (int i = 0; i < missing; ++i) {
    entry& e = entry_of(m_made[i].number);
    if (e.frame.number != m_made[i].number) continue;  // another triangle has the entry by now
    e.frame = m_made[i];
    e.pending = k_made;
  }
}

}  // namespace qvsoilinteraction
