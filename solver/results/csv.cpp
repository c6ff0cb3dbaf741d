#include "solver/results/csv.h"

#include <fmt/format.h>

#include <cmath>
#include <iterator>

namespace qvslv {

std::string csv_field(const std::string& text) {
  const bool formula = !text.empty() && std::string("=+-@\t\r").find(text[0]) != std::string::npos;
  if (!formula && text.find_first_of(",\"\n\r") == std::string::npos) return text;
  std::string quoted = formula ? "\"'" : "\"";
  for (const char c : text) {
    if (c == '"') quoted += '"';
    quoted += c;
  }
  return quoted + '"';
}

std::string csv_line(const std::vector<std::string>& fields) {
  std::string line;
  for (const std::string& field : fields) {
    if (!line.empty()) line += ',';
    line += csv_field(field);
  }
  return line + '\n';
}

std::string csv_line(const std::vector<double>& values) {
  std::string line;
  const char* comma = "";
  for (const double value : values) {
    line += comma;
    if (!std::isnan(value)) fmt::format_to(std::back_inserter(line), "{}", value);
    comma = ",";
  }
  return line + '\n';
}

}  // namespace qvslv
