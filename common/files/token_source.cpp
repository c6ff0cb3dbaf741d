#include "common/files/token_source.h"

#include <algorithm>
#include <charconv>

#include "common/files/number_scanner.h"

namespace qv {
namespace {

bool may_be_in_number(char c) { return is_digit(c) || c == '.' || c == '+' || c == '-' || c == 'e' || c == 'E'; }

}  // namespace

bool token_source::fail() { return m_good = false; }

bool token_source::read_on() {
  m_more = m_more && refill();
  return m_more;
}

/// Goes to the beginning of the next token; false at the end of the file.
bool token_source::find_token() {
  for (;;) {
    while (m_at != m_end && is_blank(*m_at)) ++m_at;
    if (m_at != m_end) return true;
    if (!read_on()) return false;
  }
}

/// Reads on if a token may reach beyond the end of the buffer: it may if all characters from `from` on can be part of a
/// number. True if there are more characters now.
bool token_source::goes_on(const char* from) {
  return m_more && std::all_of(from, m_end, may_be_in_number) && read_on();
}

bool token_source::integer(int& value) {
  if (!m_good || !find_token()) return fail();
  while (goes_on(m_at)) {
  }
  const char* begin = m_at;
  if (*begin == '+' && begin + 1 != m_end && is_digit(begin[1])) ++begin;  // from_chars knows no plus sign
  const auto [stop, error] = std::from_chars(begin, m_end, value);
  if (error != std::errc()) return fail();
  m_at = stop;
  return true;
}

bool token_source::real(double& value) {
  if (!m_good || !find_token()) return fail();
  for (;;) {
    double number = 0.0;
    const char* at = m_at;
    const bool is_number = scan_number(at, m_end, number);
    const std::ptrdiff_t length = at - m_at;
    if (goes_on(is_number ? at : m_at)) continue;
    if (!is_number) return fail();
    m_at += length;  // not m_at = at: looking for more has moved the text, even if there was none
    value = number;
    return true;
  }
}

bool token_source::separator() {
  if (!m_good || !find_token()) return fail();
  ++m_at;
  return true;
}

}  // namespace qv
