#pragma once

#include <atomic>
#include <memory>

#include "solver/engine/workers.h"

namespace qvslv {

/// Which calls of a pass over the elements are done. A call that asks for forces needs what the calls before it leave,
/// whichever threads they run on. Every thread makes its calls in the order of the pass; so the first call that is not
/// done waits for nothing, and all come to an end.
class CallOrder {
public:
  explicit CallOrder(size_t calls) : m_count(calls), m_done(std::make_unique<std::atomic<bool>[]>(calls)) {}

  /// Begins a pass. No call is under way.
  void begin() {
    for (size_t k = 0; k < m_count; ++k) m_done[k].store(false, std::memory_order_relaxed);
  }
  void set_done(size_t call) { m_done[call].store(true, std::memory_order_release); }
  /// Returns when all calls before this one are done. What they wrote is seen then.
  void await_all_before(size_t call) const {
    for (size_t k = 0; k < call; ++k)
      for (long turn = 0; !m_done[k].load(std::memory_order_acquire); ++turn) wait_a_turn(turn);
  }

private:
  size_t m_count;
  std::unique_ptr<std::atomic<bool>[]> m_done;
};

}  // namespace qvslv
