#pragma once

namespace qvslv {

/// As std::strtod reads in the C locale, whichever locale the process has set: with a decimal point.
double read_double(const char* text, char** end = nullptr);

}  // namespace qvslv
