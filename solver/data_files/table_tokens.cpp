#include "solver/data_files/table_tokens.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <locale>

namespace qvslv {

namespace {

constexpr const char* k_blanks = " \t\n\v\f\r";

bool is_blank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

bool is_of_number(char c) { return (c >= '0' && c <= '9') || c == '.' || c == '-' || c == '+' || c == 'e' || c == 'E'; }

}  // namespace

TableTokens::TableTokens(const std::string& text) : m_text(text), m_stream(text) {
  m_stream.imbue(std::locale::classic());
}

/// Where the next token that is no blank begins; the size of the text if there is none.
std::size_t TableTokens::next() const {
  std::size_t at = m_at;
  while (at < m_text.size() && is_blank(m_text[at])) ++at;
  return at;
}

int TableTokens::line_of(std::size_t position) const {
  const auto end = m_text.begin() + static_cast<std::ptrdiff_t>(std::min(position, m_text.size()));
  return 1 + static_cast<int>(std::count(m_text.begin(), end, '\n'));
}

int TableTokens::line() const { return line_of(m_at); }

/// Lets the stream read what has no short way.
template <class Token>
bool TableTokens::read_by_stream(Token& value) {
  Token read{};
  m_stream.seekg(static_cast<std::streamoff>(m_at));
  m_stream >> read;
  if (!settle(m_at)) return false;
  m_at = static_cast<std::size_t>(m_stream.rdbuf()->pubseekoff(0, std::ios::cur, std::ios::in));
  value = read;
  return true;
}

/// Reads a number that stands plainly between blanks or before a comma: there the stream, which takes twenty times as
/// long, comes to the same end and the same bits. False if it stands otherwise, or is too large or too small.
bool TableTokens::read_plain(double& value) {
  const std::size_t first = next();
  std::size_t end = first;
  while (end < m_text.size() && is_of_number(m_text[end])) ++end;
  if (end == m_text.size() || !(m_text[end] == ',' || is_blank(m_text[end]))) return false;
  double read = 0;
  const auto [stop, error] = std::from_chars(m_text.data() + first, m_text.data() + end, read);
  if (error != std::errc() || stop != m_text.data() + end) return false;
  value = read;
  m_at = end;
  return true;
}

/// Ends an attempt to read that began at the byte `began`: true if it went well, else notes where it failed.
bool TableTokens::settle(std::size_t began) {
  if (!m_stream.fail()) return true;
  m_stopped = true;
  const std::size_t first = m_text.find_first_not_of(k_blanks, began);
  m_stop_line = line_of(first);
  if (first == std::string::npos) return false;
  constexpr std::size_t k_longest_word = 20;
  const std::size_t end = std::min(m_text.find_first_of(k_blanks, first), m_text.size());
  m_stop_word = m_text.substr(first, std::min(end - first, k_longest_word));
  return false;
}

bool TableTokens::integer(int& value) { return !m_stopped && read_by_stream(value); }

bool TableTokens::real(double& value) { return !m_stopped && (read_plain(value) || read_by_stream(value)); }

bool TableTokens::separator() {
  if (m_stopped) return false;
  char read = 0;
  if (const std::size_t at = next(); at < m_text.size()) {
    read = m_text[at];
    m_at = at + 1;
  } else if (!read_by_stream(read)) {
    return false;
  }
  if (m_odd_line == 0 && (std::isalnum(static_cast<unsigned char>(read)) != 0 || std::strchr("+-.", read) != nullptr)) {
    m_odd_separator = read;
    m_odd_line = line();
  }
  return true;
}

bool read_whole_file(const std::string& path, std::string& text) {
  std::ifstream stream(path, std::ios::binary);
  if (!stream || std::filesystem::is_directory(path)) return false;
  std::ostringstream all;
  all << stream.rdbuf();
  text = all.str();
  return true;
}

}  // namespace qvslv
