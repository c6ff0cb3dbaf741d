#include "solver/data_files/current_file.h"

#include <algorithm>
#include <charconv>

namespace qvslv {

namespace {

std::string digits(double value) {
  constexpr int k_digits = 12;
  char buffer[40];
  const auto end = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, k_digits);
  return {buffer, end.ptr};
}

}  // namespace

double CurrentTable::speed_at(double x, double y) const {
  const double at = over_x() ? x : y;
  if (key.empty() || (over_x() && !(at >= key.front() && at < key.back()))) return 0;
  if (!(at >= key.front())) return value.front();
  if (at >= key.back()) return value.back();
  const size_t j = static_cast<size_t>(std::upper_bound(key.begin(), key.end(), at) - key.begin()) - 1;
  const double share = (key[j + 1] - at) / (key[j + 1] - key[j]);
  return value[j] * share + value[j + 1] * (1 - share);
}

CurrentTable read_current_table(TableTokens& tokens, int& declared) {
  CurrentTable table;
  declared = 0;
  tokens.integer(declared);
  tokens.separator();
  tokens.integer(table.mode);
  constexpr double k_limit = 1024.0 * 1024.0 * 1024.0, k_least_bytes = 4;  // the least that a pair takes in the file
  const double pairs = declared;
  const bool too_large = pairs * 2 * static_cast<double>(sizeof(double)) > k_limit &&
                         pairs * k_least_bytes > static_cast<double>(tokens.size());
  if (declared <= 0 || too_large) return table;
  table.key.assign(static_cast<size_t>(declared), 0.0);
  table.value = table.key;
  for (size_t i = 0; i < table.key.size() && !tokens.stopped(); ++i) {
    tokens.real(table.key[i]);
    tokens.separator();
    tokens.real(table.value[i]);
  }
  return table;
}

std::string current_text(const CurrentFile& current, const std::string& remark) {
  std::string text;
  for (const CurrentTable* table : {&current.along_x, &current.along_y}) {
    text += std::to_string(table->key.size()) + "," + std::to_string(table->mode) + "\n";
    for (size_t i = 0; i < table->key.size(); ++i) text += digits(table->key[i]) + "," + digits(table->value[i]) + "\n";
  }
  return text + remark + "\n";
}

}  // namespace qvslv
