#include "solver/engine/marker_motions.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace qvslv {

namespace {

constexpr long k_for_ever = std::numeric_limits<long>::max();

bool same_bits(const SimTK::Vector& values, const double* kept) {
  const auto count = static_cast<size_t>(values.size());
  return count == 0 || std::memcmp(&values[0], kept, count * sizeof(double)) == 0;
}

}  // namespace

MarkerMotions::MarkerMotions(const Multibody& multibody)
    : m_multibody(multibody), m_slots(std::make_unique<Slot[]>(multibody.model().markers.size() + 1)) {}

void MarkerMotions::take(const SimTK::State& state) {
  m_state = &state;
  const SimTK::Vector &q = state.getQ(), &u = state.getU();
  const auto nq = static_cast<size_t>(q.size()), nu = static_cast<size_t>(u.size());
  if (m_now > 0 && same_bits(q, m_coordinates.data()) && same_bits(u, m_coordinates.data() + nq)) return;
  m_coordinates.resize(nq + nu);
  if (nq > 0) std::copy_n(&q[0], nq, m_coordinates.data());
  if (nu > 0) std::copy_n(&u[0], nu, m_coordinates.data() + nq);
  ++m_now;
  SimTK::MobilizedBodyIndex body = SimTK::GroundIndex;  // none of the markers: what is fixed to it never moves
  BodyMotion motion;
  for (const int marker : m_asked) {
    const PlacedMarker& placed = m_multibody.marker(marker);
    if (placed.body != body) {
      body = placed.body;
      motion = m_multibody.find_body_motion(state, body);
    }
    Slot& slot = m_slots[place_of(marker)];
    slot.motion = find_motion_on_body(placed.in_body, motion);
    slot.found_at.store(m_now, std::memory_order_release);
  }
}

void MarkerMotions::find(int marker) const {
  const std::lock_guard<std::mutex> alone(m_finding);
  Slot& slot = m_slots[place_of(marker)];
  if (slot.found_at.load(std::memory_order_relaxed) >= m_now) return;  // found by another thread meanwhile
  slot.motion = m_multibody.find_motion(*m_state, marker);
  const bool fixed = marker == k_none || m_multibody.marker(marker).body == SimTK::GroundIndex;
  if (!fixed) {
    const auto by_body = [this](int a, int b) { return m_multibody.marker(a).body < m_multibody.marker(b).body; };
    m_asked.insert(std::upper_bound(m_asked.begin(), m_asked.end(), marker, by_body), marker);
  }
  slot.found_at.store(fixed ? k_for_ever : m_now, std::memory_order_release);
}

}  // namespace qvslv
