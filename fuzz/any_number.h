#pragma once

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <cstring>
#include <limits>

/// A number from the input: a special value, a small multiple of a quarter, a number from low to high, or any bits.
inline double any_number(FuzzedDataProvider& in, double low, double high) {
  static const double k_special[] = {0.0,
                                     -0.0,
                                     1.0,
                                     1e-8,
                                     1e-200,
                                     5e-9,
                                     4.0,
                                     -1.0,
                                     2147483647.0,
                                     2147483648.0,
                                     -2147483649.0,
                                     1e300,
                                     -1e300,
                                     1e-320,
                                     std::numeric_limits<double>::infinity(),
                                     -std::numeric_limits<double>::infinity(),
                                     std::numeric_limits<double>::quiet_NaN()};
  switch (in.ConsumeIntegralInRange<int>(0, 3)) {
    case 0:
      return in.PickValueInArray(k_special);
    case 1:
      return in.ConsumeIntegralInRange<int>(-4, 20) / 4.0;
    case 2:
      return in.ConsumeFloatingPointInRange<double>(low, high);
    default: {
      const auto bits = in.ConsumeIntegral<std::uint64_t>();
      double value;
      std::memcpy(&value, &bits, sizeof value);
      return value;
    }
  }
}
