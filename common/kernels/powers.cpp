#include "common/kernels/powers.h"

#include <cmath>

namespace qv {

double power(double base, double exponent) { return std::pow(base, exponent); }

double exponential(double x) { return std::exp(x); }

void powers(const double* bases, double exponent, double* values, int count) {
  for (int i = 0; i < count; ++i) values[i] = power(bases[i], exponent);
}

void exponentials(const double* x, double* values, int count) {
  for (int i = 0; i < count; ++i) values[i] = exponential(x[i]);
}

}  // namespace qv
