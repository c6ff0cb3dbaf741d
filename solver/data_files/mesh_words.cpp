#include "solver/data_files/mesh_words.h"

#include <assimp/fast_atof.h>

#include <charconv>
#include <cmath>
#include <limits>
#include <string>
#include <system_error>

#include "solver/data_files/hull_mesh.h"

namespace qvslv {

namespace {

bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\f' || c == '\v'; }
bool is_space(char c) { return is_blank(c) || c == '\n'; }

/// Thrown by the importer's number reader for a text that is no number; it is only given texts that are.
struct NoNumber : MeshError {
  template <class... Texts>
  explicit NoNumber(Texts&&...) : MeshError("no number") {}
};

/// The number of a word in C notation, if it is one as a whole and no wider than `Real`.
///
/// The value is the importer's, whose readers made the meshes of all earlier results: it may differ from the nearest
/// float in its last bits. It reads wrong what has more digits than 64 bits hold; such a word is refused.
template <class Real>
bool read_number(std::string_view word, Real& value) {
  constexpr double k_agreement = 1e-5;
  if (!word.empty() && word[0] == '+') word.remove_prefix(1);
  double exact = 0;
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), exact);
  if (end != word.data() + word.size() || word.empty()) return false;
  if (error == std::errc::result_out_of_range) exact = 0;
  if (!std::isfinite(exact)) return false;
  Assimp::fast_atoreal_move<Real, NoNumber>(std::string(word).c_str(), value, false);
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
