#include "solver/data_files/road_check.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cmath>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "solver/data_files/made_line.h"
#include "solver/data_files/road_mesh_check.h"
#include "solver/data_files/soil_check.h"
#include "solver/model/c_locale.h"
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

std::string key_in(std::string_view line, const std::vector<std::string>& keys) {
  for (const std::string& key : keys)
    if (line.find(key) != std::string::npos) return key;
  return "";
}

std::string trimmed(std::string_view text) {
  const size_t first = text.find_first_not_of(" \t\r");
  if (first == std::string::npos) return "";
  return std::string(text.substr(first, text.find_last_not_of(" \t\r") - first + 1));
}

/// The text between the first and the second equals sign, or the end of the line.
std::string value_field(std::string_view line) {
  const size_t first = line.find('=');
  const size_t second = line.find('=', first + 1);
  return std::string(line.substr(first + 1, second == std::string::npos ? std::string::npos : second - first - 1));
}

/// The lines of a text, which must outlive them; a line end at the end begins no further line.
std::vector<std::string_view> lines_of(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const size_t end = std::min(text.find('\n'), text.size());
    lines.push_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

/// The first numbers of a line, as many as are read of a node or an element.
struct LineNumbers {
  std::array<double, 4> value = {0, 0, 0, 0};
  size_t count = 0;
  bool all() const { return count == value.size(); }
};

/// Decimal numbers only, not the words and hexadecimal forms that strtod knows besides.
LineNumbers numbers_in(std::string_view line) {
  LineNumbers numbers;
  while (!numbers.all()) {
    line.remove_prefix(std::min(line.find_first_not_of(" \t\v\f\r"), line.size()));
    if (!line.empty() && line[0] == '+') line.remove_prefix(1);
    const std::string_view digits = line.substr(!line.empty() && line[0] == '-' ? 1 : 0);
    const bool decimal =
        !digits.empty() && (std::isdigit(static_cast<unsigned char>(digits[0])) != 0 || digits[0] == '.');
    if (!decimal || (digits.size() > 1 && digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X'))) return numbers;
    double& value = numbers.value[numbers.count];
    const auto end = std::from_chars(line.data(), line.data() + line.size(), value);
    if (end.ec == std::errc::invalid_argument) return numbers;
    if (end.ec == std::errc::result_out_of_range) value = read_double(std::string(line).c_str(), nullptr);
    line.remove_prefix(static_cast<size_t>(end.ptr - line.data()));
    ++numbers.count;
  }
  return numbers;
}

/// The word before the equals sign, if nothing but blanks stands around it; empty otherwise.
std::string word_before_equals(std::string_view line) {
  const std::string word = trimmed(line.substr(0, line.find('=')));
  const bool one_word =
      std::all_of(word.begin(), word.end(), [](unsigned char c) { return std::isalnum(c) != 0 || c == '_'; });
  return one_word ? word : "";
}

/// Goes through the lines of a road file as the library's reader does. The text must outlive it.
class RoadInspector {
public:
  RoadInspector(const std::string& text, const std::string& path, const Units* units)
      : m_units(units), m_declared(units == nullptr ? Units() : *units), m_lines(lines_of(text)) {
    m_check.path = path;
    if (text.find("\r\n") != std::string::npos)
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
    const std::string_view line = m_lines[m_next++];
    if (line.size() >= k_line_limit) {
      note(Level::error, "road-long-line", m_next,
           "the line has " + std::to_string(line.size()) +
               " characters; lines outside the node and element blocks must be shorter than 640");
      m_ended = true;
      return;
    }
    const size_t equals = line.find('=');
    if (equals == std::string::npos) return;
    if (equals + 1 >= line.size()) {
      empty_line(line);
      return;
    }
    if (line.find('\'') != std::string::npos) {
      quoted_line(line);
    } else {
      plain_line(line);
    }
  }

  /// A line with nothing behind its equals sign is a remark to the reader.
  void empty_line(std::string_view line) {
    std::string key = key_in(line, k_plain_keys);
    if (key.empty()) key = key_in(line, k_quoted_keys);
    if (!key.empty())
      note(Level::warning, "road-empty-value", m_next,
           key + " has no value, so the line is passed over; write one behind the equals sign");
  }

  /// Tells of a line that reads like `KEY=value` with a key nearly as in `keys`.
  void unknown_key(std::string_view line, const std::vector<std::string>& keys) {
    const std::string word = word_before_equals(line), meant = nearest_name(word, keys);
    if (meant.empty()) return;
    note(Level::warning, "road-unknown-key", m_next,
         "'" + word + "' is no key, so the line is passed over; " +
             (upper_case(word) == meant ? "keys are in capitals: " + meant : "did you mean '" + meant + "'?"));
  }

  void quoted_line(std::string_view line) {
    const std::string key = key_in(line, k_quoted_keys);
    const std::string field = value_field(line);
    const size_t first = field.find('\''), second = field.find('\'', first + 1);
    if (key.empty()) {
      const std::string plain = key_in(line, k_plain_keys);
      if (!plain.empty())
        note(Level::warning, "road-quoted-key", m_next,
             plain + " in quotes has no effect: write " + plain + "=value without quotes");
      else
        unknown_key(line, k_quoted_keys);
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
    if (unit != nullptr) declare(quantity, unit->factor);
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

  /// Angles need no factor: those of a road are in degrees.
  void declare(UnitQuantity quantity, double factor) {
    if (quantity == UnitQuantity::length) m_declared.length_factor = factor;
    if (quantity == UnitQuantity::force) m_declared.force_factor = factor;
    if (quantity == UnitQuantity::time) m_declared.time_factor = factor;
  }

  void plain_line(std::string_view line) {
    const std::string key = key_in(line, k_plain_keys), value = value_field(line);
    if (key.empty()) {
      const std::string quoted = key_in(line, k_quoted_keys);
      if (!quoted.empty())
        note(Level::warning, "road-unquoted-key", m_next,
             quoted + " without quotes has no effect: write " + quoted + " = 'value'");
      else
        unknown_key(line, k_plain_keys);
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
      m_check.mesh.points.clear();
      block(key, number_in(key, value), [this](const LineNumbers& numbers) { node(numbers.value); });
    } else if (key == "NUMBER_OF_ELEMENTS") {
      m_check.mesh.triangles.clear();
      m_triangle_lines.clear();
      block(key, number_in(key, value), [this](const LineNumbers& numbers) { element(numbers.value); });
    } else {
      const double number = number_in(key, value);
      m_check.values.emplace_back(key, number);
      m_soil.push_back({key, number, static_cast<int>(m_next)});
    }
  }

  /// The number that the reader takes from a value; what stands behind it is ignored.
  double number_in(const std::string& key, const std::string& value) {
    char* end = nullptr;
    const double number = read_double(value.c_str(), &end);
    if (end == value.c_str())
      note(Level::warning, "road-no-number", m_next, key + ": '" + trimmed(value) + "' is no number and counts as 0");
    else if (*end == ',' && std::isdigit(static_cast<unsigned char>(end[1])) != 0)
      note(Level::warning, "road-decimal-comma", m_next,
           key + ": '" + trimmed(value) + "' is read as " + number_text(number) + "; the decimal sign is a point");
    return number;
  }

  template <class Take>
  void block(const std::string& key, double declared, Take take) {
    const long count = static_cast<long>(std::fmin(std::fmax(declared, 0.0), 1e9));
    const size_t head = m_next;
    long taken = 0;
    for (; m_next < m_lines.size(); ++m_next) {
      const std::string_view line = m_lines[m_next];
      if (!line.empty() && line[0] == '{') continue;
      if (taken == count) break;
      const LineNumbers numbers = numbers_in(line);
      if (!numbers.all()) {
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
    const std::string_view line = m_lines[m_next];
    const bool keyword = line.find('=') != std::string::npos &&
                         (!key_in(line, k_plain_keys).empty() || !key_in(line, k_quoted_keys).empty());
    if (keyword) {
      note(Level::warning, "road-swallowed-line", m_next + 1,
           "the line directly after a block is thrown away, and this one holds a keyword: put an empty "
           "line before it");
    } else if (numbers_in(line).all()) {
      size_t more = m_next;
      while (more < m_lines.size() && numbers_in(m_lines[more]).all()) ++more;
      note(Level::warning, "road-more-lines", m_next + 1,
           key + " says " + std::to_string(count) + ", but " + std::to_string(more - m_next) +
               " more such lines follow; they are not read");
    }
  }

  void node(const std::array<double, 4>& v) {
    m_check.mesh.points.push_back({v[1], v[2], v[3]});
    const bool first = m_check.nodes++ == 0;
    const auto widen = [&](double value, double& low, double& high) {
      low = first ? value : std::min(low, value);
      high = first ? value : std::max(high, value);
    };
    widen(v[1], m_check.x_min, m_check.x_max);
    widen(v[2], m_check.y_min, m_check.y_max);
    widen(v[3], m_check.z_min, m_check.z_max);
  }

  void element(const std::array<double, 4>& v) {
    ++m_check.elements;
    std::array<int, 3> corners{};
    bool known = true;
    for (size_t i = 0; i < 3; ++i) {
      const bool one = v[i] >= 1 && v[i] < static_cast<double>(m_check.nodes) + 1.0;
      known = known && one && v[i] < static_cast<double>(m_check.mesh.points.size()) + 1.0;
      if (known) corners[i] = static_cast<int>(v[i]) - 1;
      if (one) continue;
      if (!m_told_node)
        note(Level::error, "road-node-number", m_next + 1,
             "the element names node " + number_text(v[i]) + ", nodes are numbered 1 to " +
                 std::to_string(m_check.nodes));
      m_told_node = true;
    }
    if (!known) return;
    m_check.mesh.triangles.push_back(corners);
    m_triangle_lines.push_back(static_cast<int>(m_next) + 1);
  }

  void check_whole() {
    if (m_check.nodes == 0)
      note(Level::error, "road-no-nodes", 0, "the file holds no nodes (no NUMBER_OF_NODES line was read)");
    if (m_check.nodes > 0 && m_check.elements == 0)
      note(Level::error, "road-no-elements", 0, "the file holds no elements (no NUMBER_OF_ELEMENTS line was read)");
    check_road_mesh(m_check.mesh, m_triangle_lines, m_check.path, m_check.found);
    if (m_check.soil_type != "CONCRETE") check_soil_values(m_soil, m_declared, m_check.path, m_check.found);
  }

  const Units* m_units;
  Units m_declared;  ///< the model's, but those that the file names
  std::vector<std::string_view> m_lines;
  std::vector<SoilValue> m_soil;
  std::vector<int> m_triangle_lines;
  size_t m_next = 0;  ///< index of the next line, from 0, which is also the number of the last line read, from 1
  bool m_ended = false, m_told_node = false;
  RoadCheck m_check;
};

}  // namespace

RoadCheck check_road_text(const std::string& text, const std::string& path, const Units* units) {
  RoadCheck check = RoadInspector(text, path, units).inspect();
  if (const std::optional<Tampering> tampering = find_tampering_in_road(text))
    check.found.push_back(
        finding_in(path, tampering->line, Level::warning, "made-file-changed", tampering_text(*tampering)));
  return check;
}

RoadCheck check_road_file(const std::string& path, const Units* units) {
  std::ifstream stream(path, std::ios::binary);
  if (!stream) throw std::runtime_error(path + " cannot be read");
  std::ostringstream text;
  text << stream.rdbuf();
  return check_road_text(text.str(), path, units);
}

}  // namespace qvslv
