#include "solver/model/quotation.h"

#include <algorithm>

#include "solver/model/printable.h"

namespace qvslv {

namespace {

constexpr std::size_t k_line = 80;  // characters; those of several bytes count as several

/// The nearest place at or before `at` that does not tear a character of several bytes.
std::size_t between_characters(const std::string& text, std::size_t at) {
  while (at > 0 && at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80U) --at;
  return at;
}

}  // namespace

std::string quotation(const std::string& text, std::size_t place) {
  if (text.size() <= k_line) return shown_on_a_line(text);
  const std::size_t centred = std::min(place, text.size()) > k_line / 2 ? std::min(place, text.size()) - k_line / 2 : 0;
  const std::size_t first = between_characters(text, std::min(centred, text.size() - k_line));
  const std::size_t end = between_characters(text, first + k_line);
  return (first > 0 ? "..." : "") + shown_on_a_line(text.substr(first, end - first)) + (end < text.size() ? "..." : "");
}

std::string in_expression(const std::string& text, std::size_t place) {
  return "in the expression \"" + quotation(text, place) + "\": ";
}

}  // namespace qvslv
