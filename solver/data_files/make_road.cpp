#include "solver/data_files/make_road.h"

#include <charconv>
#include <stdexcept>

#include "solver/model/number_text.h"

namespace qvslv {

namespace {

/// Appends a number with ten digits: the error is far below any soil's roughness, and the file is half as long as with
/// full precision.
void append_number(std::string& text, double value) {
  char buffer[32];
  const auto end = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, 10);
  text.append(buffer, end.ptr);
}

void append_number(std::string& text, int value) {
  char buffer[16];
  const auto end = std::to_chars(buffer, buffer + sizeof buffer, value);
  text.append(buffer, end.ptr);
}

/// Units and soil. Unquoted lines have no blanks around the equals sign, because readers take the value as it stands.
void append_head(std::string& text, const RoadSettings& settings) {
  const auto quoted = [&](const char* key, const std::string& value) {
    text += std::string(key) + " = '" + value + "'\n";
  };
  const auto plain = [&](const char* key, const std::string& value) { text += std::string(key) + "=" + value + "\n"; };
  const auto number = [&](const char* key, double value) { plain(key, number_text(value)); };
  text += settings_line(settings) + "\n";
  quoted("FILE_TYPE", "RDF");
  plain("FILE_VERSION", "1");
  quoted("LENGTH", settings.units.length);
  quoted("FORCE", settings.units.force);
  quoted("ANGLE", "DEGREE");
  quoted("MASS", settings.units.mass);
  quoted("TIME", settings.units.time);
  quoted("METHOD", "3D_SOIL");
  plain("SOIL_TYPE", "DEFORMABLE");
  plain("NORMAL_PRESSURE", "BEKKER");
  const RoadSoil& soil = settings.soil;
  number("COHESIVE_COEFF", soil.cohesive_coeff);
  number("FRICTIONAL_COEFF", soil.frictional_coeff);
  number("SINKAGE_EXPONENT", soil.sinkage_exponent);
  number("DAMP_RATIO", soil.damp_ratio);
  number("BOUNDARY_SINKAGE", soil.boundary_sinkage);
  plain("SHEAR_PRESSURE", "WONG");
  number("COHESION", soil.cohesion);
  number("SENSITIVITY", soil.sensitivity);
  number("MAX_SHEAR_DISP", soil.shear_displacement);
  number("FRICTION_ANGLE", soil.friction_angle);
}

/// Nodes row by row along x, rows in the order of y, numbered from 1.
void append_nodes(std::string& text, const RoadSettings& s, int columns, int rows) {
  const RoadHeights height(s);
  text += "NUMBER_OF_NODES=" + std::to_string((columns + 1) * (rows + 1)) + "\n{ node x y z }\n";
  int number = 0;
  for (int j = 0; j <= rows; ++j) {
    const double y = s.corner_y + s.size_y * j / rows;
    for (int i = 0; i <= columns; ++i) {
      const double x = s.corner_x + s.size_x * i / columns;
      append_number(text, ++number);
      for (const double value : {x, y, height(x, y)}) append_number(text += ' ', value);
      text += '\n';
    }
  }
  text += '\n';  // readers skip the line after the last node
}

/// Two triangles per square, counter-clockwise seen from above. Their common edge runs from the corner with the least x
/// and y to the one with the greatest.
void append_triangles(std::string& text, int columns, int rows) {
  text += "NUMBER_OF_ELEMENTS=" + std::to_string(2 * columns * rows) + "\n{ node node node value }\n";
  const auto triangle = [&](int a, int b, int c) {
    for (const int node : {a, b, c}) {
      append_number(text, node);
      text += ' ';
    }
    text += "0\n";
  };
  for (int j = 0; j < rows; ++j) {
    for (int i = 0; i < columns; ++i) {
      const int a = j * (columns + 1) + i + 1, b = a + 1, c = b + columns + 1, d = a + columns + 1;
      triangle(a, b, c);
      triangle(a, c, d);
    }
  }
  text += '\n';
}

}  // namespace

std::string road_text(const RoadSettings& settings) {
  const std::string mistake = mistake_in(settings);
  if (!mistake.empty()) throw std::invalid_argument(mistake);
  const int columns = squares_along(settings.size_x, settings.spacing);
  const int rows = squares_along(settings.size_y, settings.spacing);
  std::string text;
  constexpr size_t k_bytes_per_square = 90;
  text.reserve(2000 + k_bytes_per_square * static_cast<size_t>(columns) * static_cast<size_t>(rows));
  append_head(text, settings);
  append_nodes(text, settings, columns, rows);
  append_triangles(text, columns, rows);
  return text;
}

void write_road_file(const RoadSettings& settings, const std::string& path) {
  write_file_whole(road_text(settings), path);
}

}  // namespace qvslv
