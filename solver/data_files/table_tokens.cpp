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

TableTokens::TableTokens(const std::string& text) : text_(text), stream_(text) {
  stream_.imbue(std::locale::classic());
}

std::size_t TableTokens::position() {
  return static_cast<std::size_t>(stream_.rdbuf()->pubseekoff(0, std::ios::cur, std::ios::in));
}

int TableTokens::line_of(std::size_t position) const {
  const auto end = text_.begin() + static_cast<std::ptrdiff_t>(std::min(position, text_.size()));
  return 1 + static_cast<int>(std::count(text_.begin(), end, '\n'));
}

int TableTokens::line() { return line_of(position()); }

/// After an attempt to read: was it the one that failed? `began` is where it started.
bool TableTokens::settle(std::size_t began) {
  if (!stream_.fail()) return true;
  stopped_ = true;
  const std::size_t first = text_.find_first_not_of(k_blanks, began);
  stop_line_ = line_of(first);
  if (first == std::string::npos) return false;
  constexpr std::size_t k_longest_word = 20;
  const std::size_t end = std::min(text_.find_first_of(k_blanks, first), text_.size());
  stop_word_ = text_.substr(first, std::min(end - first, k_longest_word));
  return false;
}

bool TableTokens::integer(int& value) {
  if (stopped_) return false;
  const std::size_t began = position();
  int read = 0;
  stream_ >> read;
  if (!settle(began)) return false;
  value = read;
  return true;
}

bool TableTokens::real(double& value) {
  if (stopped_) return false;
  const std::size_t began = position();
  double read = 0;
  stream_ >> read;
  if (!settle(began)) return false;
  value = read;
  return true;
}

bool TableTokens::separator() {
  if (stopped_) return false;
  const std::size_t began = position();
  char read = 0;
  stream_ >> read;
  if (!settle(began)) return false;
  if (odd_line_ == 0 && (std::isalnum(static_cast<unsigned char>(read)) != 0 || std::strchr("+-.", read) != nullptr)) {
    odd_separator_ = read;
    odd_line_ = line();
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
