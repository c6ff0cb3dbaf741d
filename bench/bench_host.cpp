#include "bench/bench_host.h"

#include <algorithm>

namespace qvbench {

bool BenchHost::vector_quantity(const char* name, const int* ids, int, double* values, int& count) {
  static constexpr double k_identity[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
  static constexpr double k_zero[3] = {0, 0, 0};
  const bool body = ids[0] == 1;
  const double* answer = k_zero;
  switch (name[0] == 'T' ? name[1] : name[0]) {
    case 'A':
      answer = body ? axes : k_identity;
      break;
    case 'D':
      answer = body ? position : k_zero;
      break;
    case 'V':
      answer = body ? velocity : k_zero;
      break;
    case 'R':
      answer = body ? angular_velocity : k_zero;
      break;
    default:
      break;
  }
  std::copy(answer, answer + count, values);
  return true;
}

void BenchHost::throw_error(const char* title, int count, char** messages) {
  complaint = title;
  for (int i = 0; i < count; ++i) {
    complaint += std::string(" ") + messages[i];
    delete[] messages[i];
  }
}

}  // namespace qvbench
