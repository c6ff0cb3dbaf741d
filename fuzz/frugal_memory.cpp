#include <new>

#include "tests/support/replaced_new.h"

// The allocator of the fuzz targets. A file of a few bytes can ask for a grid of gigabytes: such requests fail as they
// would on a machine that is out of memory, instead of ending the fuzzer. 64 MB keep an input short, too.
void qvtest::admit_allocation(std::size_t size) {
  constexpr std::size_t k_largest_request = std::size_t{64} << 20;
  if (size > k_largest_request) throw std::bad_alloc();
}
