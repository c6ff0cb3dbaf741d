#pragma once

#include <mpfr.h>

#include <algorithm>
#include <cmath>

/// Numbers of 200 binary digits, to measure doubles with.
namespace qvtest {

class exact_number {
public:
  exact_number() { mpfr_init2(m_value, 200); }
  explicit exact_number(double value) : exact_number() { mpfr_set_d(m_value, value, MPFR_RNDN); }
  exact_number(const exact_number&) = delete;
  exact_number& operator=(const exact_number&) = delete;
  ~exact_number() { mpfr_clear(m_value); }

  mpfr_ptr get() { return m_value; }
  double rounded() const { return mpfr_get_d(m_value, MPFR_RNDN); }

  /// How far `value` is from this number, in units of the last place that a double next to it has.
  double ulps_to(double value) {
    int exponent = 0;
    std::frexp(rounded(), &exponent);
    exact_number difference;
    mpfr_sub_d(difference.m_value, m_value, value, MPFR_RNDN);
    mpfr_mul_2si(difference.m_value, difference.m_value, -std::max(exponent - 53, -1074), MPFR_RNDN);
    return std::fabs(difference.rounded());
  }

private:
  mpfr_t m_value;
};

}  // namespace qvtest
