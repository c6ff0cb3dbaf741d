#include "tests/support/failing_new.h"

#include <climits>
#include <new>

#include "tests/support/replaced_new.h"

namespace {

bool g_watching = false;
long g_allocations = 0;
long g_first_failure = 0;
long g_last_failure = 0;

}  // namespace

namespace qvtest {

void admit_allocation(std::size_t) {
  if (!g_watching) return;
  ++g_allocations;
  if (g_allocations >= g_first_failure && g_allocations <= g_last_failure) throw std::bad_alloc();
}

failing_new::failing_new(long n, later allocations) {
  g_allocations = 0;
  g_first_failure = n > 0 ? n : LONG_MAX;
  g_last_failure = allocations == pass_again ? n : LONG_MAX;
  g_watching = true;
}

failing_new::~failing_new() { g_watching = false; }

long failing_new::allocations() { return g_allocations; }

}  // namespace qvtest
