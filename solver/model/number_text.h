#pragma once

#include <string>

namespace qvslv {

/// Shortest decimal text of a number that reads back as the same number, whatever the locale.
std::string number_text(double value);

}  // namespace qvslv
