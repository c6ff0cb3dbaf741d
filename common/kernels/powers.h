#pragma once

/// Powers and exponentials of the laws, one by one and in rows.
namespace qv {

/// base^exponent, with the special cases of C's pow.
double power(double base, double exponent);

/// e^x, with the special cases of C's exp.
double exponential(double x);

/// values[i] = bases[i]^exponent for `count` values; `values` may be `bases`. Each has the bits that `power` gives.
void powers(const double* bases, double exponent, double* values, int count);

/// values[i] = e^x[i] for `count` values; `values` may be `x`. Each has the bits that `exponential` gives.
void exponentials(const double* x, double* values, int count);

}  // namespace qv
