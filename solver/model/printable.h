#pragma once

#include <string>
#include <string_view>

namespace qvslv {

/// A text as a terminal may get it: what the terminal would obey instead of show stands there as an escape ("\x1b",
/// "\r", "\u202e"). That is every control character but the line feed, the marks that turn the direction of writing,
/// and bytes that are no UTF-8. All else, line feeds included, stays as it is.
std::string printable(std::string_view text);

/// The same with line feeds as escapes too.
std::string shown_on_a_line(std::string_view text);

/// Is the text a single line that needs no escape?
bool is_printable_line(std::string_view text);

}  // namespace qvslv
