#include "solver/data_files/road_check.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "solver/model/nearest_name.h"
#include "solver/model/number_text.h"
#include "solver/model/units.h"

namespace qvslv {

namespace {

constexpr size_t k_line_limit = 640;  // lines outside the blocks must be shorter; longer ones are refused

// The keys in the order in which the reader looks for them; the first one found anywhere in a line decides.
const std::vector<std::string> k_quoted_keys = {"FILE_TYPE", "LENGTH", "FORCE", "ANGLE", "MASS", "TIME", "METHOD"};
const std::vector<std::string> k_plain_keys = {
    "FILE_VERSION",   "VERSION",          "SOIL_TYPE",         "COEFFICIENT_DS",   "CRITICAL_PRESSUR", "EXPONENT_PR",
    "EXPONENT_SD",    "NORMAL_PRESSURE",  "COHESIVE_COEFF",    "FRICTIONAL_COEFF", "SINKAGE_EXPONENT", "WIDTH",
    "DAMP_RATIO",     "BOUNDARY_SINKAGE", "SHEAR_PRESSURE",    "COHESION",         "SENSITIVITY",      "MAX_SHEAR_DISP",
    "FRICTION_ANGLE", "NUMBER_OF_NODES",  "NUMBER_OF_ELEMENTS"};

std::string key_in(const std::string& line, const std::vector<std::string>& keys) {
  for (const std::string& key : keys)
    if (line.find(key) != std::string::npos) return key;
  return "";
}

std::string trimmed(const std::string& text) {
  const size_t first = text.find_first_not_of(" \t\r");
  if (first == std::string::npos) return "";
  return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

/// The text between the first and the second equals sign, or the end of the line.
std::string value_field(const std::string& line) {
  const size_t first = line.find('=');
  const size_t second = line.find('=', first + 1);
  return line.substr(first + 1, second == std::string::npos ? std::string::npos : second - first - 1);
}

/// Goes through the lines of a road file as the library's reader does.
class RoadInspector {
public:
  RoadInspector(const std::string& text, const std::string& path, const Units* units) : m_units(units) {
    m_check.path = path;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) m_lines.push_back(std::move(line));
    if (!text.empty() && text.find("\r\n") != std::string::npos)
      note(Level::warning, "road-line-ends", 1,
           "the lines end with CR LF (Windows); the CR becomes part of every unquoted text, so that "
           "NORMAL_PRESSURE=BEKKER and SHEAR_PRESSURE=WONG are refused and SOIL_TYPE=CONCRETE is not known; "
           "convert the file (dos2unix)");
  }

  RoadCheck inspect() {
    while (m_next < m_lines.size() && !m_ended) main_line();
    check_whole();
    return std::move(m_check);
  }

private:
  void note(Level level, const char* id, size_t line_number, const std::string& text) {
    m_check.found.push_back(finding_in(m_check.path, static_cast<int>(line_number), level, id, text));
  }

  void main_line() {
    const std::string& line = m_lines[m_next++];
    if (line.size() >= k_line_limit) {
      note(Level::error, "road-long-line", m_next,
           "the line has " + std::to_string(line.size()) +
               " characters; lines outside the node and element blocks must be shorter than 640");
      m_ended = true;
      return;
    }
    const size_t equals = line.find('=');
    if (equals == std::string::npos || equals + 1 >= line.size()) return;
    if (line.find('\'') != std::string::npos) {
      quoted_line(line);
    } else {
      plain_line(line);
    }
  }

  void quoted_line(const std::string& line) {
    const std::string key = key_in(line, k_quoted_keys);
    const std::string field = value_field(line);
    const size_t first = field.find('\''), second = field.find('\'', first + 1);
    if (key.empty()) {
      const std::string plain = key_in(line, k_plain_keys);
      if (!plain.empty())
        note(Level::warning, "road-quoted-key", m_next,
             plain + " in quotes has no effect: write " + plain + "=value without quotes");
      return;
    }
    if (first == std::string::npos) {
      note(Level::error, "road-quote-missing", m_next, key + ": the value needs a quote on both sides");
      return;
    }
    if (second == std::string::npos)
      note(Level::warning, "road-quote-open", m_next, key + ": the closing quote is missing");
    quoted_value(key, upper_case(field.substr(first + 1, second == std::string::npos ? second : second - first - 1)));
  }

  void quoted_value(const std::string& key, const std::string& value) {
    if (key == "FILE_TYPE" || key == "METHOD") {
      const std::string only = key == "METHOD" ? "3D_SOIL" : "RDF";
      if (value != only)
        note(Level::error, "road-not-supported", m_next,
             key + " '" + value + "' is not supported: only '" + only + "' is");
      return;
    }
    const UnitQuantity quantity = key == "LENGTH"  ? UnitQuantity::length
                                  : key == "FORCE" ? UnitQuantity::force
                                  : key == "MASS"  ? UnitQuantity::mass
                                  : key == "TIME"  ? UnitQuantity::time
                                                   : UnitQuantity::angle;
    const UnitName* unit = find_unit(quantity, value);
    if (unit == nullptr) {
      note(Level::error, "road-unit", m_next,
           key + " '" + value + "' is no unit known here; " + name_hint(value, all_unit_names(quantity)));
    } else if (m_units != nullptr && quantity != UnitQuantity::angle && unit->factor != model_factor(quantity)) {
      note(Level::warning, "road-other-unit", m_next,
           key + " '" + value +
               "' is not the model's unit; road values are used as they stand, nothing "
               "is converted");
    }
  }

  double model_factor(UnitQuantity quantity) const {
    return quantity == UnitQuantity::length  ? m_units->length_factor
           : quantity == UnitQuantity::force ? m_units->force_factor
           : quantity == UnitQuantity::mass  ? m_units->mass_factor
                                             : m_units->time_factor;
  }

  void plain_line(const std::string& line) {
    const std::string key = key_in(line, k_plain_keys), value = value_field(line);
    if (key.empty()) {
      const std::string quoted = key_in(line, k_quoted_keys);
      if (!quoted.empty())
        note(Level::warning, "road-unquoted-key", m_next,
             quoted + " without quotes has no effect: write " + quoted + " = 'value'");
      return;
    }
    if (key == "SOIL_TYPE") {
      m_check.soil_type = value;
      if (value != "CONCRETE" && trimmed(value) == "CONCRETE")
        note(Level::warning, "road-soil-blanks", m_next,
             "the value is '" + trimmed(value) +
                 "' with blanks (or a CR) around it, which is not CONCRETE; "
                 "write SOIL_TYPE=CONCRETE");
    } else if (key == "NORMAL_PRESSURE" || key == "SHEAR_PRESSURE") {
      const std::string only = key == "NORMAL_PRESSURE" ? "BEKKER" : "WONG";
      if (value != only)
        note(Level::error, "road-law", m_next,
             key + ": the value is '" + value + "', only '" + only + "' is supported; write " + key + "=" + only +
                 " without blanks");
    } else if (key == "NUMBER_OF_NODES") {
      block(key, std::atof(value.c_str()), [this](const std::vector<double>& v) { node(v); });
    } else if (key == "NUMBER_OF_ELEMENTS") {
      block(key, std::atof(value.c_str()), [this](const std::vector<double>& v) { element(v); });
    } else {
      m_check.values.emplace_back(key, std::atof(value.c_str()));
    }
  }

  /// The leading numbers of a line: decimal ones only, not the words and hexadecimal forms that strtod knows besides.
  static std::vector<double> numbers_in(const std::string& line) {
    std::vector<double> numbers;
    const char* at = line.c_str();
    for (char* end = nullptr;; at = end) {
      at += std::strspn(at, " \t\v\f\r");
      const char* digit = at + (*at == '-' || *at == '+' ? 1 : 0);
      if ((std::isdigit(static_cast<unsigned char>(*digit)) == 0 && *digit != '.') ||
          (*digit == '0' && (digit[1] == 'x' || digit[1] == 'X')))
        return numbers;
      const double value = std::strtod(at, &end);
      if (end == at) return numbers;
      numbers.push_back(value);
    }
  }

  template <class Take>
  void block(const std::string& key, double declared, Take take) {
    const long count = static_cast<long>(std::fmin(std::fmax(declared, 0.0), 1e9));
    const size_t head = m_next;
    long taken = 0;
    for (; m_next < m_lines.size(); ++m_next) {
      const std::string& line = m_lines[m_next];
      if (!line.empty() && line[0] == '{') continue;
      if (taken == count) break;
      const std::vector<double> numbers = numbers_in(line);
      if (numbers.size() < 4) {
        note(Level::error, "road-block-short", m_next + 1,
             key + " says " + std::to_string(count) + ", but only " + std::to_string(taken) +
                 " lines of four numbers follow (the reader takes this line for the next one)");
        return;
      }
      take(numbers);
      ++taken;
    }
    if (taken < count) {
      note(Level::warning, "road-block-ends", head,
           key + " says " + std::to_string(count) + ", but the file ends after " + std::to_string(taken) +
               "; the road is made of what is there");
    } else if (m_next < m_lines.size()) {
      swallowed_line(key, count);
      ++m_next;
    }
  }

  /// Looks at the first line after a block, which the reader reads and throws away.
  void swallowed_line(const std::string& key, long count) {
    const std::string& line = m_lines[m_next];
    const bool keyword = line.find('=') != std::string::npos &&
                         (!key_in(line, k_plain_keys).empty() || !key_in(line, k_quoted_keys).empty());
    if (keyword) {
      note(Level::warning, "road-swallowed-line", m_next + 1,
           "the line directly after a block is thrown away, and this one holds a keyword: put an empty "
           "line before it");
    } else if (numbers_in(line).size() >= 4) {
      size_t more = m_next;
      while (more < m_lines.size() && numbers_in(m_lines[more]).size() >= 4) ++more;
      note(Level::warning, "road-more-lines", m_next + 1,
           key + " says " + std::to_string(count) + ", but " + std::to_string(more - m_next) +
               " more such lines follow; they are not read");
    }
  }

  void node(const std::vector<double>& v) {
    const bool first = m_check.nodes++ == 0;
    const auto widen = [&](double value, double& low, double& high) {
      low = first ? value : std::min(low, value);
      high = first ? value : std::max(high, value);
    };
    widen(v[1], m_check.x_min, m_check.x_max);
    widen(v[2], m_check.y_min, m_check.y_max);
    widen(v[3], m_check.z_min, m_check.z_max);
  }

  void element(const std::vector<double>& v) {
    ++m_check.elements;
    for (size_t i = 0; i < 3; ++i) {
      if (v[i] >= 1 && v[i] < static_cast<double>(m_check.nodes) + 1.0) continue;
      if (!m_told_node)
        note(Level::error, "road-node-number", m_next + 1,
             "the element names node " + number_text(v[i]) + ", nodes are numbered 1 to " +
                 std::to_string(m_check.nodes));
      m_told_node = true;
    }
  }

  double soil_value(const std::string& key) const {
    double found = 0;
    for (const auto& [name, value] : m_check.values)
      if (name == key) found = value;
    return found;
  }

  void check_whole() {
    if (m_check.nodes == 0)
      note(Level::error, "road-no-nodes", 0, "the file holds no nodes (no NUMBER_OF_NODES line was read)");
    if (m_check.nodes > 0 && m_check.elements == 0)
      note(Level::error, "road-no-elements", 0, "the file holds no elements (no NUMBER_OF_ELEMENTS line was read)");
    if (m_check.soil_type == "CONCRETE") return;
    for (const char* key : {"SENSITIVITY", "MAX_SHEAR_DISP"})
      if (soil_value(key) == 0)
        note(Level::warning, "road-no-shear", 0, std::string(key) + " is missing or 0: the soil carries no shear");
    if (soil_value("COHESIVE_COEFF") == 0 && soil_value("FRICTIONAL_COEFF") == 0)
      note(Level::warning, "road-no-load", 0,
           "COHESIVE_COEFF and FRICTIONAL_COEFF are missing or 0: the soil carries no load");
  }

  const Units* m_units;
  std::vector<std::string> m_lines;
  size_t m_next = 0;  ///< index of the next line, from 0, which is also the number of the last line read, from 1
  bool m_ended = false, m_told_node = false;
  RoadCheck m_check;
};

}  // namespace

RoadCheck check_road_text(const std::string& text, const std::string& path, const Units* units) {
  return RoadInspector(text, path, units).inspect();
}

RoadCheck check_road_file(const std::string& path, const Units* units) {
  std::ifstream stream(path, std::ios::binary);
  if (!stream) throw std::runtime_error(path + " cannot be read");
  std::ostringstream text;
  text << stream.rdbuf();
  return check_road_text(text.str(), path, units);
}

}  // namespace qvslv
