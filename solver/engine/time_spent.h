#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#if defined(__x86_64__)
#include <x86intrin.h>
#else
#include <chrono>
#endif

#include "solver/model/model.h"

namespace qvslv {

/// A cheap clock (some 8 ns), of a rate that is only known afterwards: what differences of it are in seconds follows
/// from the run's whole.
using Ticks = std::uint64_t;
inline Ticks ticks_now() {
#if defined(__x86_64__)
  return __rdtsc();
#else
  return static_cast<Ticks>(std::chrono::steady_clock::now().time_since_epoch().count());
#endif
}

/// What a run is busy with.
enum class Work {
  start_up,     ///< reading files, set-up calls, digests: all before the first step
  engine,       ///< bodies in motion and the integrator
  expressions,  ///< variables, applied forces and right-hand sides of equations
  subroutines,  ///< calls of the elements, with the services that they ask
  results,      ///< rows, the page, and what frames take of the run: they are written by a thread of their own
  watch,        ///< what looks for doubtful results
  count
};

/// A part of a run's wall time.
struct TimeShare {
  std::string part;     ///< "start-up", "engine", "expressions", "element", "services", "results", "watch"
  std::string element;  ///< name, if the part is that of an element's subroutine; its services count apart
  double seconds = 0;
  double share = 0;  ///< of the whole
};

/// Measures where the wall time of a run goes. At every moment it counts for one kind of work, so that the parts sum up
/// to the whole. How the time of subroutines divides into elements and services is sampled: measuring every request
/// would cost more than answering it.
class TimeSpent {
public:
  TimeSpent() : m_since(ticks_now()) {}

  /// The time counts for this work until it ends, and then for what it counted for before.
  class During {
  public:
    During(TimeSpent& time, Work work) : m_time(time), m_before(time.m_work) { time.begin(work); }
    ~During() { m_time.begin(m_before); }
    During(const During&) = delete;
    During& operator=(const During&) = delete;

  private:
    TimeSpent& m_time;
    Work m_before;
  };

  /// From now on the time counts for this work.
  void begin(Work work) {
    const Ticks now = ticks_now();
    m_ticks[static_cast<size_t>(m_work)] += now - m_since;
    m_since = now;
    m_work = work;
  }

  /// True for every pass over the elements whose calls are to be measured one by one: the first of its kind, and then
  /// one in 31, a number that no integrator's pattern of calls repeats with.
  enum class Pass { evaluation, after_step };
  bool samples_next(Pass pass) { return m_passes[static_cast<size_t>(pass)]++ % 31 == 0; }

  /// A measured call.
  /// @param whole     time of the call
  /// @param services  the part of it that services took
  void add_sample(size_t element, Ticks whole, Ticks services);

  /// The parts so far, in the order of what happens; elements in file order.
  /// @param wall_seconds  the whole
  std::vector<TimeShare> shares(const Model& model, double wall_seconds);

private:
  std::array<Ticks, static_cast<size_t>(Work::count)> m_ticks = {};
  Work m_work = Work::start_up;
  Ticks m_since;
  std::array<long, 2> m_passes = {};
  std::vector<Ticks> m_of_elements;  ///< sampled, without services
  Ticks m_of_services = 0;           ///< sampled
};

}  // namespace qvslv
