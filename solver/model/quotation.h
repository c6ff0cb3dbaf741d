#pragma once

#include <cstddef>
#include <string>

namespace qvslv {

/// At most a line of a text (80 characters), with "..." where something is left out and control characters as escapes.
/// @param place  what must be seen lies here, counted in bytes of the text; the beginning when not given
std::string quotation(const std::string& text, std::size_t place = 0);

/// How messages about an expression begin: `in the expression "...": `. Of a long expression they quote what stands
/// around `place`.
std::string in_expression(const std::string& text, std::size_t place = 0);

}  // namespace qvslv
