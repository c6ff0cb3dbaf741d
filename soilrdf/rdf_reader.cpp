#include "soilrdf/rdf_reader.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <exception>

#include "common/call/messages.h"
#include "common/call/parameters.h"
#include "common/files/data_file.h"
#include "common/files/number_scanner.h"
#include "common/files/text.h"
#include "qvbrisk/constants.h"
#include "soilrdf/rdf_units.h"
#include "soilrdf/road_derivation.h"

namespace qvsoilrdf {
namespace {

constexpr std::size_t k_line_limit = 640;        // outside the node and element blocks a line must be shorter than this
constexpr double k_smallest_coordinate = 1e-08;  // in file units: a coordinate nearer to 0 becomes 0

class rdf_reader {
public:
  rdf_reader(CRoad& road, qv::data_file& file, const qv::fault_channel& channel)
      : m_road(road), m_lines(file), m_channel(channel) {}

  void read() {
    qv::text_line current;
    while (m_lines.next(current)) {
      const std::string text(current.begin, current.end);
      if (text.size() >= k_line_limit) {
        refuse("READ RDF ERROR : Line " + std::to_string(current.number) + " has " + std::to_string(text.size()) +
               " characters; outside the node and element blocks a line must be shorter than 640.");
      }
      const std::vector<std::string> pieces = splitStr(text, '=');
      if (pieces.size() < 2) continue;
      if (text.find('\'') != std::string::npos) {
        read_quoted(text, pieces[1]);
      } else {
        read_unquoted(text, pieces[1], current.number);
      }
    }
  }

private:
  [[noreturn]] void refuse(const std::string& message) { qv::first_fault(message, m_channel.ierr, m_channel.msg); }

  /// As std::toupper in the C locale, whichever locale the host has set.
  static char upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

  static bool holds(const std::string& text, const char* key) { return text.find(key) != std::string::npos; }

  // KEY = 'TEXT'. Kept: any other key is ignored, so a soil type or a law's name in quotes has no effect.
  void read_quoted(const std::string& text, const std::string& field) {
    const std::vector<std::string> pieces = splitStr(field, '\'');
    std::string value = pieces.size() > 1 ? pieces[1] : std::string();
    for (char& c : value) c = upper(c);
    if (holds(text, "FILE_TYPE")) {
      if (value != m_road.file_type) refuse(" READ RDF ERROR : " + value + " is an unsupported file type. \n");
    } else if (holds(text, "LENGTH")) {
      read_unit(unit_kind::length, value, " is an unsupported LENGTH UNIT. \n", m_road.length_factor);
    } else if (holds(text, "FORCE")) {
      read_unit(unit_kind::force, value, " is an unsupported FORCE UNIT. \n", m_road.force_factor);
    } else if (holds(text, "ANGLE")) {
      read_angle_unit(value);
    } else if (holds(text, "MASS")) {
      read_unit(unit_kind::mass, value, " is an unsupported MASS UNIT. \n", m_road.mass_factor);
    } else if (holds(text, "TIME")) {
      read_unit(unit_kind::time, value, nullptr, m_road.time_factor);
    } else if (holds(text, "METHOD")) {
      if (value != m_road.method) refuse(" READ RDF ERROR : " + value + " is an unsupported METHOD. \n");
    }
  }

  void read_unit(unit_kind kind, const std::string& value, const char* unsupported, double& factor) {
    if (const double* found = find_unit_factor(kind, value)) {
      factor = *found;
    } else if (unsupported != nullptr) {
      refuse(" READ RDF ERROR : " + value + unsupported);
    } else {
      // Kept: unlike the others this message has no leading blank and no closing line end; post-processors match it.
      refuse("READ RDF ERROR : " + value + " is an unsupported TIME UNIT.");
    }
  }

  void read_angle_unit(const std::string& value) {
    if (value == "DEGREE" || value == "DEG") {
      m_road.angle_factor = DTOR;
      m_road.angle_unit = "DEGREE";
    } else if (value == "RADIAN" || value == "RAD") {
      m_road.angle_factor = 1.0;  // kept: angle_unit is not set back
    } else {
      refuse(" READ RDF ERROR : " + value + " is an unsupported ANGLE UNIT. \n");
    }
  }

  // KEY = number or KEY = TEXT, the text exactly as written (a blank after "=" belongs to it). The first key that is
  // found in the line decides, so FILE_VERSION is tried before VERSION.
  void read_unquoted(const std::string& text, const std::string& field, long line_number) {
    if (read_number(text, field, "FILE_VERSION", m_road.file_version)) return;
    if (read_number(text, field, "VERSION", m_road.version)) return;
    if (holds(text, "SOIL_TYPE")) {
      m_road.soil_type = field;
      return;
    }
    if (read_number(text, field, "COEFFICIENT_DS", m_road.dynamic_sinkage.coefficient_ds)) return;
    if (read_number(text, field, "CRITICAL_PRESSUR", m_road.dynamic_sinkage.critical_pressure)) return;
    if (read_number(text, field, "EXPONENT_PR", m_road.dynamic_sinkage.exponent_pr)) return;
    if (read_number(text, field, "EXPONENT_SD", m_road.dynamic_sinkage.exponent_sd)) return;
    if (holds(text, "NORMAL_PRESSURE")) {
      if (field != m_road.normal_pressure) {
        refuse(" READ RDF ERROR : " + field + " is an unsupported NORMAL PRESSURE. \n");
      }
      return;
    }
    if (read_number(text, field, "COHESIVE_COEFF", m_road.bekker.cohesive_coeff)) return;
    if (read_number(text, field, "FRICTIONAL_COEFF", m_road.bekker.frictional_coeff)) return;
    if (read_number(text, field, "SINKAGE_EXPONENT", m_road.bekker.sinkage_exponent)) return;
    if (read_number(text, field, "WIDTH", m_road.bekker.width)) return;
    if (read_number(text, field, "DAMP_RATIO", m_road.bekker.damp_ratio)) return;
    if (read_number(text, field, "BOUNDARY_SINKAGE", m_road.bekker.boundary_sinkage)) return;
    if (holds(text, "SHEAR_PRESSURE")) {
      if (field != m_road.shear_pressure) {
        refuse(" READ RDF ERROR : " + field + " is an unsupported SHEAR PRESSURE. \n");
      }
      return;
    }
    if (read_number(text, field, "COHESION", m_road.wong.cohesion)) return;
    if (read_number(text, field, "SENSITIVITY", m_road.wong.sensitivity)) return;
    if (read_number(text, field, "MAX_SHEAR_DISP", m_road.wong.max_shear_disp)) return;
    if (read_number(text, field, "FRICTION_ANGLE", m_road.wong.friction_angle)) {
      m_road.wong.friction_angle *= DTOR;  // degrees in the file, whatever its ANGLE line says
      return;
    }
    if (holds(text, "NUMBER_OF_NODES")) {
      read_nodes(read_count(field, "NUMBER_OF_NODES", line_number));
    } else if (holds(text, "NUMBER_OF_ELEMENTS")) {
      read_elements(read_count(field, "NUMBER_OF_ELEMENTS", line_number));
    }
  }

  static bool read_number(const std::string& text, const std::string& field, const char* key, double& number) {
    if (!holds(text, key)) return false;
    number = qv::read_number(field.c_str());
    return true;
  }

  std::int32_t read_count(const std::string& field, const char* key, long line_number) {
    const double value = qv::read_number(field.c_str());
    if (qv::fits_int(value) && value > -1.0) return static_cast<std::int32_t>(value);
    refuse("READ RDF ERROR : " + std::string(key) + " is " + qv::number_text(value) + " in line " +
           std::to_string(line_number) + "; it must lie between 0 and 2147483647.");
  }

  /// Calls record(numbers, line number) for each of `count` lines of a block, with the first four numbers of the line.
  /// Lines that begin with "{" are skipped.
  /// Kept: the first line after the last record is consumed unread; files have a spacer there.
  template <class Record>
  void read_block(std::int32_t count, const char* name, Record&& record) {
    double numbers[4];
    for (std::int32_t k = 0;;) {
      for (; k < count && m_lines.next_numbers(numbers); ++k) record(numbers, m_lines.number());
      qv::text_line current;  // anything but a line of numbers that is at hand
      if (!m_lines.next(current)) return;
      if (current.begin != current.end && *current.begin == '{') continue;
      if (k == count) return;
      read_numbers(current, name, numbers);
      record(numbers, current.number);
      ++k;
    }
  }

  /// Reserves room for `count` records, but never for more than the rest of the file can hold.
  template <class Records>
  void reserve(Records& records, std::int32_t count) {
    constexpr std::size_t k_shortest_record = 8;  // four digits, each with a blank or a line end
    records.clear();
    records.reserve(std::min(static_cast<std::size_t>(count), m_lines.bytes_left() / k_shortest_record + 1));
  }

  void read_numbers(const qv::text_line& from, const char* record, double (&numbers)[4]) {
    const char* at = from.begin;
    for (int i = 0; i < 4; ++i) {
      if (qv::scan_number(at, from.end, numbers[i])) continue;
      refuse("READ RDF ERROR : Line " + std::to_string(from.number) + " holds " + std::to_string(i) + " numbers; " +
             record + " line must hold at least 4.");
    }
  }

  static double coordinate(double value) { return std::fabs(value) < k_smallest_coordinate ? 0.0 : value; }

  void read_nodes(std::int32_t count) {
    m_road.number_of_nodes = count;
    reserve(m_road.nodes, count);
    read_block(count, "a node", [this](const double* numbers, long) {  // the file's own node number, x, y, z
      CNode node;
      node.x = coordinate(numbers[1]);
      node.y = coordinate(numbers[2]);
      node.z = coordinate(numbers[3]);
      node.id = static_cast<std::int32_t>(m_road.nodes.size()) + 1;
      m_road.nodes.push_back(node);
      widen_bounds(node);
    });
  }

  void widen_bounds(const CNode& node) {
    if (node.id == 1) {
      m_road.x_min = m_road.x_max = node.x;
      m_road.y_min = m_road.y_max = node.y;
      return;
    }
    if (node.x < m_road.x_min) m_road.x_min = node.x;
    if (node.x > m_road.x_max) m_road.x_max = node.x;
    if (node.y < m_road.y_min) m_road.y_min = node.y;
    if (node.y > m_road.y_max) m_road.y_max = node.y;
  }

  void read_elements(std::int32_t count) {
    m_road.number_of_elements = count;
    reserve(m_road.elements, count);
    m_road.element_values.clear();
    read_block(count, "an element", [this](const double* numbers, long line_number) {
      corner_numbers element;
      for (int c = 0; c < 3; ++c) element.node[c] = node_number(numbers[c], line_number);
      m_road.elements.push_back(element);
      keep_value(numbers[3]);
    });
  }

  /// Stores the fourth number of the latest element's line. Most files have 0 in all of them, which takes no memory.
  void keep_value(double value) {
    if (m_road.element_values.empty()) {
      if (value == 0.0 && !std::signbit(value)) return;
      m_road.element_values.reserve(m_road.elements.capacity());
      m_road.element_values.assign(m_road.elements.size() - 1, 0.0);
    }
    m_road.element_values.push_back(value);
  }

  std::int32_t node_number(double value, long line_number) {
    if (qv::fits_int(value)) return static_cast<std::int32_t>(value);
    refuse("READ RDF ERROR : A node number in line " + std::to_string(line_number) + " is " + qv::number_text(value) +
           "; it must lie between 1 and the number of nodes.");
  }

  CRoad& m_road;
  qv::line_source m_lines;
  qv::fault_channel m_channel;
};

void read_file(void* handle, const std::wstring& path, CRoad& road, const qv::fault_channel& channel) {
  qv::data_file file;
  int path_length = 0;
  switch (qv::open_data_file(handle, path, file, path_length)) {
    case qv::file_outcome::opened:
      break;
    case qv::file_outcome::not_found:
      qv::first_fault("READ RDF ERROR : FAILED TO OPEN RDF FILE. ", channel.ierr, channel.msg);
    case qv::file_outcome::path_too_long:
      qv::first_fault("READ RDF ERROR : The length of the model file's path is " + std::to_string(path_length) +
                          "; it must lie between 0 and 1024.",
                      channel.ierr, channel.msg);
  }
  rdf_reader(road, file, channel).read();
}

}  // namespace

bool read_rdf(void* handle, const std::wstring& path, CRoad& road, int& ierr, char** msg) {
  const qv::fault_channel channel{"READ RDF ERROR : ", ierr, msg};
  try {
    read_file(handle, path, road, channel);
    derive_road(road, channel);
    return true;
  } catch (const std::exception&) {
    return false;  // no message here: the caller stops the analysis
  }
}

}  // namespace qvsoilrdf
