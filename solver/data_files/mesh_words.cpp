#include "solver/data_files/mesh_words.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <system_error>
#include <utility>

#include "solver/data_files/hull_mesh.h"

namespace qvslv {

namespace {

bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\f' || c == '\v'; }
bool is_space(char c) { return is_blank(c) || c == '\n'; }

bool is_digit(char c) { return c >= '0' && c <= '9'; }

/// Takes the digits at a word's begin away. Returns the number that the first `most` of them make, which is not theirs
/// if it has more than 64 bits, and their count.
std::pair<std::uint64_t, std::size_t> take_digits(std::string_view& word, std::size_t most) {
  std::uint64_t number = 0;
  std::size_t count = 0;
  bool lost = false;
  for (; !word.empty() && is_digit(word[0]); word.remove_prefix(1)) {
    if (count == most) continue;
    const std::uint64_t next = 10 * number + static_cast<std::uint64_t>(word[0] - '0');
    lost = lost || next < number;
    number = next;
    ++count;
  }
  return {lost ? 0 : number, count};
}

/// The value of a word that is a number in C notation. It is rounded at each step: the digits before the point, the
/// first fifteen after it, their sum, the power of ten and the product.
template <class Real>
Real stepwise_value(std::string_view word) {
  constexpr std::size_t k_any = std::numeric_limits<std::size_t>::max(), k_decimals = 15;
  constexpr double k_place[k_decimals + 1] = {1,    1e-1, 1e-2,  1e-3,  1e-4,  1e-5,  1e-6,  1e-7,
                                              1e-8, 1e-9, 1e-10, 1e-11, 1e-12, 1e-13, 1e-14, 1e-15};
  const bool negative = word[0] == '-';
  if (negative) word.remove_prefix(1);
  auto value = static_cast<Real>(take_digits(word, k_any).first);
  if (!word.empty() && word[0] == '.') {
    word.remove_prefix(1);
    const auto [decimals, count] = take_digits(word, k_decimals);
    value += static_cast<Real>(static_cast<double>(decimals) * k_place[count]);
  }
  if (!word.empty()) {  // e or E
    word.remove_prefix(1);
    const bool small = word[0] == '-';
    if (small || word[0] == '+') word.remove_prefix(1);
    const auto exponent = static_cast<Real>(take_digits(word, k_any).first);
    value *= std::pow(static_cast<Real>(10), small ? -exponent : exponent);
  }
  return negative ? -value : value;
}

/// The number of a word in C notation, if it is one as a whole and no wider than `Real`.
///
/// The value may differ from the nearest one in its last bits: it is that of the import library whose readers made the
/// meshes of all earlier results. A word with more digits than 64 bits hold is refused.
template <class Real>
bool read_number(std::string_view word, Real& value) {
  constexpr double k_agreement = 1e-5;
  if (!word.empty() && word[0] == '+') word.remove_prefix(1);
  double exact = 0;
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), exact);
  if (end != word.data() + word.size() || word.empty()) return false;
  if (error == std::errc::result_out_of_range) exact = 0;
  if (!std::isfinite(exact)) return false;
  value = stepwise_value<Real>(word);
  const double slack = k_agreement * std::abs(exact) + static_cast<double>(std::numeric_limits<float>::min());
  return std::isfinite(value) && std::abs(static_cast<double>(value) - exact) <= slack;
}

}  // namespace

std::string quoted_word(std::string_view word) {
  constexpr std::size_t k_longest = 40;
  std::string text = "'";
  for (const char c : word.substr(0, k_longest)) text += c >= ' ' && c <= '~' ? c : '?';
  return text + (word.size() > k_longest ? "...'" : "'");
}

std::string_view MeshWords::next() {
  for (; m_at < m_text.size() && is_space(m_text[m_at]); ++m_at)
    if (m_text[m_at] == '\n') ++m_line;
  const std::size_t begin = m_at;
  while (m_at < m_text.size() && !is_space(m_text[m_at])) ++m_at;
  return m_text.substr(begin, m_at - begin);
}

std::string_view MeshWords::rest_of_line() {
  while (m_at < m_text.size() && is_blank(m_text[m_at])) ++m_at;
  const std::size_t begin = m_at;
  while (m_at < m_text.size() && m_text[m_at] != '\n') ++m_at;
  std::size_t end = m_at;
  while (end > begin && is_blank(m_text[end - 1])) --end;
  return m_text.substr(begin, end - begin);
}

bool MeshWords::more_on_line() {
  while (m_at < m_text.size() && is_blank(m_text[m_at])) ++m_at;
  if (m_at + 1 < m_text.size() && m_text[m_at] == '\\' && is_space(m_text[m_at + 1])) {
    ++m_at;
    while (m_at < m_text.size() && is_blank(m_text[m_at])) ++m_at;
    if (m_at < m_text.size() && m_text[m_at] == '\n') {
      ++m_at;
      ++m_line;
    }
    return more_on_line();
  }
  return m_at < m_text.size() && m_text[m_at] != '\n' && m_text[m_at] != '#';
}

void MeshWords::next_line() {
  if (m_at >= m_text.size() || m_text[m_at] != '\n') return;
  ++m_at;
  ++m_line;
}

template <class Real>
Real MeshWords::number(const char* what) {
  const std::string_view word = next();
  Real value = 0;
  if (word.empty()) fail(std::string("the file ends where ") + what + " is expected");
  if (!read_number(word, value)) {
    fail(std::string(what) + " " + quoted_word(word) +
         " is no finite number of single precision; write it like -1.5 or 2e-3");
  }
  return value;
}

template float MeshWords::number<float>(const char* what);
template double MeshWords::number<double>(const char* what);

void MeshWords::fail(const std::string& text) const { throw MeshError("line " + std::to_string(m_line) + ": " + text); }

}  // namespace qvslv
