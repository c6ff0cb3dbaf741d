#pragma once

namespace qvtest {

/// While it lives, the n-th allocation by operator new (counted from 1, from its construction on) fails with
/// std::bad_alloc, and with it every later one or none. 0 lets all pass and only counts. Only in test programs that
/// link failing_new.cpp and replaced_new.cpp.
class failing_new {
public:
  enum later { fail_too, pass_again };

  explicit failing_new(long n, later allocations = fail_too);
  ~failing_new();
  failing_new(const failing_new&) = delete;
  failing_new& operator=(const failing_new&) = delete;

  static long allocations();  ///< since the construction
};

}  // namespace qvtest
