#include "tests/soilinteraction/allocation_control.h"

#include <new>

#include "tests/support/replaced_new.h"

namespace {

bool watching = false;
long seen = 0, refused = 0, first_to_fail = -1, last_to_fail = -1;

}  // namespace

namespace qvtest {

void admit_allocation(std::size_t size) {
  if (watching) {
    const long number = seen++;
    if (first_to_fail >= 0 && number >= first_to_fail && (last_to_fail < 0 || number <= last_to_fail)) {
      ++refused;
      throw std::bad_alloc();
    }
  }
  if (size > k_largest_request) throw std::bad_alloc();
}

allocation_watch::allocation_watch(long first, long last) {
  seen = refused = 0;
  first_to_fail = first;
  last_to_fail = last;
  watching = true;
}
allocation_watch::~allocation_watch() { watching = false; }
long allocation_watch::count() const { return seen; }
long allocation_watch::failed() const { return refused; }

}  // namespace qvtest
