#pragma once

#include <locale>
#include <string>
#include <vector>

/// Texts: wide and narrow, and cutting at a character.
namespace qv {

/// Wide to narrow text through the locale's conversion facet. Throws the integer 1 when a character has no narrow
/// form there.
std::string wcs_to_mbs(const std::wstring& text, const std::locale& locale = std::locale());

/// Narrow to wide text, as above.
std::wstring mbs_to_wcs(const std::string& text, const std::locale& locale = std::locale());

}  // namespace qv

/// The pieces that successive reads up to `delimiter` yield, in order and untrimmed: "A=B" gives A and B, "A=" only
/// A, "=B" an empty piece and B, "" nothing.
std::vector<std::string> splitStr(const std::string& text, char delimiter);

/// As above, appended to `pieces`.
std::vector<std::string>& splitStr(const std::string& text, char delimiter, std::vector<std::string>& pieces);
