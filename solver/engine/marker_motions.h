#pragma once

#include <Simbody.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

#include "solver/engine/multibody.h"

namespace qvslv {

/// How the markers of a model stand and move at one state. Expressions, services and loads of an evaluation ask for the
/// same markers again and again, so each is found once per state and kept.
///
/// Only markers that somebody asked for before are found ahead, in `take`; what is asked for the first time is found
/// then. Between two `take` any number of threads may ask.
class MarkerMotions {
public:
  /// The multibody system must outlive this object.
  explicit MarkerMotions(const Multibody& multibody);
  MarkerMotions(const MarkerMotions&) = delete;
  MarkerMotions& operator=(const MarkerMotions&) = delete;

  /// Everything asked for from now on is that of this state. Nothing is found anew if coordinates and speeds are those
  /// of the state before: positions and velocities depend on nothing else.
  /// @param state  realized to Velocity or further; it must live until the next `take`
  void take(const SimTK::State& state);

  /// @param marker  index into Model::markers; k_none is the ground frame
  const MarkerMotion& of(int marker) const {
    const Slot& slot = m_slots[place_of(marker)];
    if (slot.found_at.load(std::memory_order_acquire) < m_now) find(marker);
    return slot.motion;
  }

  /// States that markers were found for: those taken whose coordinates or speeds differed from the one before.
  long states() const { return m_now; }

private:
  struct Slot {
    MarkerMotion motion;
    std::atomic<long> found_at = 0;  ///< m_now when it was found
  };

  static size_t place_of(int marker) { return static_cast<size_t>(marker) + 1; }  ///< of k_none, -1: 0
  void find(int marker) const;

  const Multibody& m_multibody;
  const SimTK::State* m_state = nullptr;
  std::vector<double> m_coordinates;  ///< q and u of the state
  long m_now = 0;
  std::unique_ptr<Slot[]> m_slots;   ///< the ground frame, then by index into Model::markers
  mutable std::vector<int> m_asked;  ///< moving markers that were asked for, those of one body together
  mutable std::mutex m_finding;      ///< held while a slot is filled and `m_asked` grows
};

}  // namespace qvslv
