#include "solver/engine/service_index.h"

namespace qvslv {

namespace {

/// Number of bytes that follow the first byte of a UTF-8 sequence; -1 if this byte starts none.
int continuation_bytes(unsigned char first) {
  if (first < 0x80) return 0;
  if ((first & 0xE0) == 0xC0) return 1;
  if ((first & 0xF0) == 0xE0) return 2;
  if ((first & 0xF8) == 0xF0) return 3;
  return -1;
}

}  // namespace

std::wstring widen(const std::string& text) {
  std::wstring wide;
  for (size_t i = 0; i < text.size(); ++i) {
    const auto first = static_cast<unsigned char>(text[i]);
    const int following = continuation_bytes(first);
    wchar_t code = following <= 0 ? first : static_cast<wchar_t>(first & (0x3F >> following));
    bool whole = following >= 0 && i + static_cast<size_t>(following) < text.size();
    for (size_t k = 1; whole && k <= static_cast<size_t>(following); ++k) {
      const auto next = static_cast<unsigned char>(text[i + k]);
      whole = (next & 0xC0) == 0x80;
      code = static_cast<wchar_t>((static_cast<unsigned>(code) << 6) | (next & 0x3Fu));
    }
    if (!whole) {
      wide.push_back(static_cast<wchar_t>(first));
      continue;
    }
    wide.push_back(code);
    i += static_cast<size_t>(following);
  }
  return wide;
}

ServiceIndex::ServiceIndex(const Model& model)
    : markers(model.markers),
      bodies(model.bodies),
      variables(model.variables),
      equations(model.equations),
      splines(model.splines),
      strings(model.strings),
      model_path(widen(model.path)) {
  for (const StringEntity& entity : model.strings)
    texts.push_back(widen(entity.path.empty() ? entity.text : entity.path));
}

}  // namespace qvslv
