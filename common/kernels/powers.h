#pragma once

#include <cstddef>
#include <cstdint>

/// Powers and exponentials of the laws, one by one and in rows. They are computed by operations of our own in one
/// order (power_steps.h), and not by the C library: every processor, compiler, level of optimisation and C library
/// gives the same bits. They are less than 0.55 ulp from the exact value, up to 1 ulp where the result is subnormal;
/// results that are doubles come out exact (x^1, 3^4, 4^0.5). Rounding to nearest is taken for granted.
namespace qv {

/// base^exponent, with the special cases of C's pow. All that is not a number is the one positive quiet NaN.
double power(double base, double exponent);

/// e^x, with the special cases of C's exp; likewise.
double exponential(double x);

/// values[i] = bases[i]^exponent for `count` values; `values` may be `bases`. Each has the bits that `power` gives.
void powers(const double* bases, double exponent, double* values, int count);

/// values[i] = e^x[i] for `count` values; `values` may be `x`. Each has the bits that `exponential` gives.
void exponentials(const double* x, double* values, int count);

/// `powers` and `exponentials` as compiled for one width of vectors.
struct power_version {
  const char* name;
  bool runs_here;  ///< on this processor
  bool pays;       ///< not 512 bits: processors slow down for them, and whole calls take 2 to 12 % longer than with 256
  std::uint64_t (*power_loop)(const double* bases, double exponent, double* values, std::uint64_t* holds, int count);
  std::uint64_t (*exponential_loop)(const double* x, double* values, std::uint64_t* holds, int count);

  void powers(const double* bases, double exponent, double* values, int count) const;
  void exponentials(const double* x, double* values, int count) const;
};

/// All versions, `count` of them, from narrow to wide: the last that runs here and pays is the one in use.
struct power_versions {
  const power_version* first;
  std::size_t count;

  const power_version* begin() const { return first; }
  const power_version* end() const { return first + count; }
};
power_versions all_power_versions();

}  // namespace qv
