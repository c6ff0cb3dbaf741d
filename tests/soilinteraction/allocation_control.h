#pragma once

#include <cstddef>

/// The program's operator new, counted and made to fail on demand. Link allocation_control.cpp and
/// replaced_new.cpp into the program that uses it; the allocator of everything in it is replaced, the library's
/// included.
namespace qvtest {

/// Requests larger than this throw std::bad_alloc whatever else is asked for: the machine is not to be filled.
constexpr std::size_t k_largest_request = std::size_t{1} << 30;

/// Counts the allocations of its lifetime and lets some of them fail.
class allocation_watch {
public:
  static constexpr long k_never = -1;

  /// Only counts.
  allocation_watch() : allocation_watch(k_never, k_never) {}
  /// Lets allocation number `first` (from 0) to `last` fail, `last` of k_never meaning every one from `first` on.
  allocation_watch(long first, long last);
  ~allocation_watch();
  allocation_watch(const allocation_watch&) = delete;
  allocation_watch& operator=(const allocation_watch&) = delete;

  long count() const;   ///< asked for
  long failed() const;  ///< refused
};

}  // namespace qvtest
