#include "common/files/text.h"

#include <cwchar>

namespace qv {
namespace {

using facet_type = std::codecvt<wchar_t, char, std::mbstate_t>;

}  // namespace

std::string wcs_to_mbs(const std::wstring& text, const std::locale& locale) {
  if (text.empty()) return {};
  const auto& facet = std::use_facet<facet_type>(locale);
  std::string narrow(text.size() * static_cast<size_t>(facet.max_length()), '\0');
  std::mbstate_t state{};
  const wchar_t* from_next = nullptr;
  char* to_next = nullptr;
  const auto outcome = facet.out(state, text.data(), text.data() + text.size(), from_next, narrow.data(),
                                 narrow.data() + narrow.size(), to_next);
  if (outcome != facet_type::ok) throw 1;
  narrow.resize(static_cast<size_t>(to_next - narrow.data()));
  return narrow;
}

std::wstring mbs_to_wcs(const std::string& text, const std::locale& locale) {
  if (text.empty()) return {};
  const auto& facet = std::use_facet<facet_type>(locale);
  std::wstring wide(text.size(), L'\0');
  std::mbstate_t state{};
  const char* from_next = nullptr;
  wchar_t* to_next = nullptr;
  const auto outcome = facet.in(state, text.data(), text.data() + text.size(), from_next, wide.data(),
                                wide.data() + wide.size(), to_next);
  const bool is_cut_short = std::mbsinit(&state) == 0;  // the last character is not complete
  if (outcome != facet_type::ok || is_cut_short) throw 1;
  wide.resize(static_cast<size_t>(to_next - wide.data()));
  return wide;
}

}  // namespace qv

std::vector<std::string>& splitStr(const std::string& text, char delimiter, std::vector<std::string>& pieces) {
  size_t begin = 0;
  while (begin < text.size()) {
    const size_t end = text.find(delimiter, begin);
    pieces.push_back(text.substr(begin, end - begin));
    if (end == std::string::npos) break;
    begin = end + 1;
  }
  return pieces;
}

std::vector<std::string> splitStr(const std::string& text, char delimiter) {
  std::vector<std::string> pieces;
  splitStr(text, delimiter, pieces);
  return pieces;
}
