#include "solver/model/printable.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>

namespace qvslv {

namespace {

/// A character of a UTF-8 text.
struct Character {
  std::uint32_t code = 0;
  std::size_t size = 0;  ///< in bytes; 0: the byte starts no character
};

bool continues(char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; }

Character first_character(std::string_view text) {
  constexpr std::uint32_t k_least[] = {0, 0, 0x80, 0x800, 0x10000};  // a longer form of a smaller code is none
  const auto lead = static_cast<unsigned char>(text[0]);
  if (lead < 0x80) return {lead, 1};
  const std::size_t size = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || text.size() < size) return {};
  std::uint32_t code = lead & (0xFFU >> (size + 1));
  for (std::size_t k = 1; k < size; ++k) {
    if (!continues(text[k])) return {};
    code = (code << 6U) | (static_cast<unsigned char>(text[k]) & 0x3FU);
  }
  const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
  return code < k_least[size] || code > 0x10FFFF || surrogate ? Character{} : Character{code, size};
}

bool is_obeyed(std::uint32_t code) {
  const bool control = code < 0x20 || (code >= 0x7F && code <= 0x9F);
  const bool separates = code == 0x2028 || code == 0x2029;  // line and paragraph
  const bool turns = code == 0x061C || code == 0x200E || code == 0x200F || (code >= 0x202A && code <= 0x202E) ||
                     (code >= 0x2066 && code <= 0x2069);
  return control || separates || turns;
}

std::string escape(std::uint32_t code) {
  if (code == '\r') return "\\r";
  if (code == '\n') return "\\n";
  if (code == '\t') return "\\t";
  char text[12];
  std::snprintf(text, sizeof text, code < 0x100 ? "\\x%02x" : "\\u%04x", static_cast<unsigned>(code));
  return text;
}

}  // namespace

namespace {

std::string escaped(std::string_view text, bool keep_lines) {
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) {
    const Character character = first_character(text);
    if (character.size == 0) {
      result += escape(static_cast<unsigned char>(text[0]));
    } else if (is_obeyed(character.code) && !(keep_lines && character.code == '\n')) {
      result += escape(character.code);
    } else {
      result += text.substr(0, character.size);
    }
    text.remove_prefix(character.size == 0 ? 1 : character.size);
  }
  return result;
}

}  // namespace

std::string printable(std::string_view text) { return escaped(text, true); }

std::string shown_on_a_line(std::string_view text) { return escaped(text, false); }

bool is_printable_line(std::string_view text) { return shown_on_a_line(text) == text; }

}  // namespace qvslv
