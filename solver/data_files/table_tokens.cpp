#include "solver/data_files/table_tokens.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <locale>

namespace qvslv {

namespace {

constexpr const char* k_blanks = " \t\n\v\f\r";

}  // namespace

TableTokens::TableTokens(const std::string& text) : m_text(text), m_stream(text) {
  m_stream.imbue(std::locale::classic());
}

std::size_t TableTokens::position() {
  return static_cast<std::size_t>(m_stream.rdbuf()->pubseekoff(0, std::ios::cur, std::ios::in));
}

int TableTokens::line_of(std::size_t position) const {
  const auto end = m_text.begin() + static_cast<std::ptrdiff_t>(std::min(position, m_text.size()));
  return 1 + static_cast<int>(std::count(m_text.begin(), end, '\n'));
}

int TableTokens::line() { return line_of(position()); }

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

bool TableTokens::integer(int& value) {
  if (m_stopped) return false;
  const std::size_t began = position();
  int read = 0;
  m_stream >> read;
  if (!settle(began)) return false;
  value = read;
  return true;
}

bool TableTokens::real(double& value) {
  if (m_stopped) return false;
  const std::size_t began = position();
  double read = 0;
  m_stream >> read;
  if (!settle(began)) return false;
  value = read;
  return true;
}

bool TableTokens::separator() {
  if (m_stopped) return false;
  const std::size_t began = position();
  char read = 0;
  m_stream >> read;
  if (!settle(began)) return false;
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
