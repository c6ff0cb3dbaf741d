#pragma once

#include <string>
#include <vector>

namespace qvslv {

/// A field of a CSV file, quoted where it must be.
std::string csv_field(const std::string& text);

/// A line of a CSV file, its end included.
std::string csv_line(const std::vector<std::string>& fields);

/// Numbers as the shortest texts that read back to the same bits; nan and inf where they are no numbers.
std::string csv_line(const std::vector<double>& values);

}  // namespace qvslv
