#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "solver/data_files/mesh_formats.h"
#include "solver/data_files/mesh_words.h"
#include "solver/data_files/ply_header.h"

namespace qvslv {

namespace {

using Type = PlyHeader::Type;

/// The values of a file of words, one after the other. What stands on which line does not matter.
class TextValues {
public:
  TextValues(std::string_view text, const PlyHeader& header) : m_words(text.substr(header.size), header.lines + 1) {}

  /// Reads in the precision of the type: a value rounded twice could differ from one rounded once.
  double next(Type type) {
    return type == Type::float64 ? m_words.number<double>("the value")
                                 : static_cast<double>(m_words.number<float>("the value"));
  }
  double next_whole(Type) { return m_words.number<double>("the number"); }
  [[noreturn]] void fail(const std::string& text) const { m_words.fail(text); }

private:
  MeshWords m_words;
};

/// The values of a binary file.
class BinaryValues {
public:
  BinaryValues(std::string_view bytes, const PlyHeader& header)
      : m_bytes(bytes), m_at(header.size), m_swap(header.format == PlyHeader::Format::big_endian) {}

  double next(Type type) {
    switch (type) {
      case Type::int8:
        return take<std::int8_t>();
      case Type::uint8:
        return take<std::uint8_t>();
      case Type::int16:
        return take<std::int16_t>();
      case Type::uint16:
        return take<std::uint16_t>();
      case Type::int32:
        return take<std::int32_t>();
      case Type::uint32:
        return take<std::uint32_t>();
      case Type::float32:
        return static_cast<double>(take<float>());
      case Type::float64:
        break;
    }
    return take<double>();
  }
  double next_whole(Type type) { return next(type); }
  [[noreturn]] void fail(const std::string& text) const { throw MeshError(fmt::format("byte {}: {}", m_at, text)); }

private:
  template <class Number>
  Number take() {
    if (m_bytes.size() - m_at < sizeof(Number)) fail("the file ends here; it is cut off");
    char raw[sizeof(Number)];
    std::memcpy(raw, m_bytes.data() + m_at, sizeof raw);
    if (m_swap) std::reverse(raw, raw + sizeof raw);
    Number number;
    std::memcpy(&number, raw, sizeof number);
    m_at += sizeof number;
    return number;
  }

  std::string_view m_bytes;
  std::size_t m_at;
  bool m_swap;
};

const PlyHeader::Element* find_element(const PlyHeader& header, const char* name) {
  for (const PlyHeader::Element& element : header.elements)
    if (element.name == name) return &element;
  return nullptr;
}

/// Throws unless the header announces points and faces of them, in numbers that a hull may have.
void check_elements(const PlyHeader& header) {
  const PlyHeader::Element *points = find_element(header, "vertex"), *faces = find_element(header, "face");
  if (points == nullptr) throw MeshError("the header has no element 'vertex'");
  if (faces == nullptr) throw MeshError("the header has no element 'face'; triangle strips must be written as faces");
  for (const PlyHeader::Element* element : {points, faces})
    if (element->rows > k_most_mesh_points)
      throw MeshError(fmt::format("{} rows of the element '{}' are more than {}; make the mesh coarser", element->rows,
                                  element->name, k_most_mesh_points));
  for (const char* axis : {"x", "y", "z"})
    if (std::none_of(points->properties.begin(), points->properties.end(),
                     [&](const PlyHeader::Property& p) { return !p.is_list && p.name == axis; }))
      throw MeshError(fmt::format("the element 'vertex' has no property '{}'", axis));
  if (std::none_of(faces->properties.begin(), faces->properties.end(), [](const PlyHeader::Property& p) {
        return p.is_list && is_whole(p.type) && (p.name == "vertex_indices" || p.name == "vertex_index");
      }))
    throw MeshError("the element 'face' has no list 'vertex_indices' of whole numbers");
}

/// Walks through the rows of all elements and keeps points and faces.
template <class Values>
class Rows {
public:
  Rows(std::string_view bytes, const PlyHeader& header)
      : m_header(header), m_values(bytes, header), m_points(find_element(header, "vertex")->rows) {}

  PolygonMesh read() {
    for (const PlyHeader::Element& element : m_header.elements)
      for (std::size_t row = 0; row < element.rows; ++row) read_row(element);
    return std::move(m_mesh);
  }

private:
  void read_row(const PlyHeader::Element& element) {
    const bool is_point = &element == find_element(m_header, "vertex");
    const bool is_face = &element == find_element(m_header, "face");
    if (is_point) m_mesh.points.emplace_back();
    for (const PlyHeader::Property& property : element.properties) {
      const bool corners = property.name == "vertex_indices" || property.name == "vertex_index";
      if (property.is_list) {
        read_list(property, is_face && corners);
      } else if (is_point && property.name.size() == 1 && property.name[0] >= 'x' && property.name[0] <= 'z') {
        m_mesh.points.back()[static_cast<std::size_t>(property.name[0] - 'x')] = read_coordinate(property);
      } else {
        m_values.next(property.type);
      }
    }
  }

  float read_coordinate(const PlyHeader::Property& property) {
    const double value = m_values.next(property.type);
    const auto narrow = static_cast<float>(value);
    if (!std::isfinite(narrow))
      m_values.fail(fmt::format("the coordinate {} of point {} is {}, a finite number of single precision is expected",
                                property.name, m_mesh.points.size() - 1, value));
    return narrow;
  }

  void read_list(const PlyHeader::Property& property, bool corners) {
    const double length = m_values.next_whole(property.count_type);
    if (!(length >= 0) || length != std::floor(length))
      m_values.fail(fmt::format("a list of {} values; a whole number from 0 on is expected", length));
    if (corners && length > static_cast<double>(k_most_polygon_corners))
      m_values.fail(
          fmt::format("a face of {} corners; at most {} are expected, split it", length, k_most_polygon_corners));
    for (double k = 0; k < length; ++k) {
      if (corners) {
        add_corner(m_values.next_whole(property.type));
      } else {
        m_values.next(property.type);
      }
    }
    if (corners) m_mesh.close_polygon();
  }

  void add_corner(double index) {
    if (!(index >= 0 && index < static_cast<double>(m_points)) || index != std::floor(index))
      m_values.fail(fmt::format("the face names point {}; there are {}, counted from 0", index, m_points));
    m_mesh.corners.push_back(static_cast<std::uint32_t>(index));
    if (m_mesh.corners.size() > 4 * k_most_mesh_points)
      m_values.fail("the faces have too many corners; make the mesh coarser");
  }

  const PlyHeader& m_header;
  Values m_values;
  std::size_t m_points;
  PolygonMesh m_mesh;
};

}  // namespace

PolygonMesh read_ply(std::string_view bytes) {
  const PlyHeader header = read_ply_header(bytes);
  check_elements(header);
  if (header.format == PlyHeader::Format::text) return Rows<TextValues>(bytes, header).read();
  return Rows<BinaryValues>(bytes, header).read();
}

}  // namespace qvslv
