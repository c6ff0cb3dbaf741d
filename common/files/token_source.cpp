#include "common/files/token_source.h"

#include <algorithm>
#include <charconv>

#include "common/files/number_scanner.h"

namespace qv {
namespace {

bool may_be_in_number(char c) { return is_digit(c) || c == '.' || c == '+' || c == '-' || c == 'e' || c == 'E'; }

}  // namespace

bool token_source::fail() { return good_ = false; }

bool token_source::read_on() {
  more_ = more_ && refill();
  return more_;
}

/// Goes to the next token and brings all of it into the buffer; false at the end of the file.
bool token_source::find_token() {
  for (;;) {
    while (at_ != end_ && is_blank(*at_)) ++at_;
    if (at_ != end_) return true;
    if (!read_on()) return false;
  }
}

/// A token that reaches the end of the buffer may go on behind it; true when more of it is there now.
bool token_source::goes_on(const char* from) { return more_ && std::all_of(from, end_, may_be_in_number) && read_on(); }

bool token_source::integer(int& value) {
  if (!good_ || !find_token()) return fail();
  while (goes_on(at_)) {
  }
  const char* begin = at_;
  if (*begin == '+' && begin + 1 != end_ && is_digit(begin[1])) ++begin;  // from_chars knows no plus sign
  const auto [stop, error] = std::from_chars(begin, end_, value);
  if (error != std::errc()) return fail();
  at_ = stop;
  return true;
}

bool token_source::real(double& value) {
  if (!good_ || !find_token()) return fail();
  for (;;) {
    double number = 0.0;
    const char* at = at_;
    const bool is_number = scan_number(at, end_, number);
    const std::ptrdiff_t length = at - at_;
    if (goes_on(is_number ? at : at_)) continue;
    if (!is_number) return fail();
    at_ += length;  // not to `at`: looking for more has moved the text, even when there was none
    value = number;
    return true;
  }
}

bool token_source::separator() {
  if (!good_ || !find_token()) return fail();
  ++at_;
  return true;
}

}  // namespace qv
