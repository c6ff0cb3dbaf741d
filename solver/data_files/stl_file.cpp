#include <fmt/format.h>

#include <cmath>
#include <cstring>

#include "solver/data_files/mesh_formats.h"
#include "solver/data_files/mesh_words.h"

namespace qvslv {

namespace {

constexpr std::size_t k_header = 84, k_row = 50;  // bytes: title and count; normal, three corners, two bytes unused

std::uint32_t count_in_header(std::string_view bytes) {
  std::uint32_t count = 0;
  std::memcpy(&count, bytes.data() + k_header - sizeof count, sizeof count);
  return count;
}

bool has_binary_size(std::string_view bytes) {
  return bytes.size() >= k_header && bytes.size() == k_header + k_row * std::size_t{count_in_header(bytes)};
}

void check_triangle_count(std::size_t triangles) {
  if (3 * triangles > k_most_mesh_points)
    throw MeshError(fmt::format("it holds more than {} triangles; make the mesh coarser", k_most_mesh_points / 3));
}

PolygonMesh read_binary(std::string_view bytes) {
  const std::size_t count = count_in_header(bytes);
  check_triangle_count(count);
  PolygonMesh mesh;
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t row = k_header + k_row * i, corners = row + 3 * sizeof(float);  // behind the normal
    std::array<std::array<float, 3>, 3> points{};
    std::memcpy(points.data(), bytes.data() + corners, sizeof points);
    for (const std::array<float, 3>& point : points) {
      for (const float coordinate : point)
        if (!std::isfinite(coordinate))
          throw MeshError(fmt::format("byte {}: a coordinate of triangle {} is {}, a finite number is expected",
                                      corners, i + 1, coordinate));
      mesh.corners.push_back(static_cast<std::uint32_t>(mesh.points.size()));
      mesh.points.push_back(point);
    }
    mesh.close_polygon();
  }
  return mesh;
}

/// Reads the triangles of a file of words. What follows `solid` and `endsolid` on their lines is a free name.
class StlText {
public:
  explicit StlText(std::string_view text) : m_words(text) {}

  PolygonMesh read() {
    for (std::string_view word = m_words.next(); !word.empty(); word = m_words.next()) take(word);
    if (m_in_facet) m_words.fail("the file ends inside a facet; it seems to be cut off");
    return std::move(m_mesh);
  }

private:
  void take(std::string_view word) {
    if (word == "solid" || word == "endsolid") {
      if (m_in_facet) m_words.fail(fmt::format("'{}' inside a facet; 'endfacet' is missing", word));
      m_words.rest_of_line();
    } else if (word == "facet") {
      if (m_in_facet) m_words.fail("a facet begins inside another one; 'endfacet' is missing");
      m_in_facet = true;
      if (m_words.next() != "normal") m_words.fail("'facet normal' and three numbers are expected");
      for (int k = 0; k < 3; ++k) m_words.next();  // computed from the corners, whatever they are
    } else if (word == "vertex") {
      take_corner();
    } else if (word == "endfacet") {
      end_facet();
    } else if (word != "outer" && word != "loop" && word != "endloop") {
      m_words.fail(quoted_word(word) +
                   " is no word of an STL file; expected: solid, facet normal, outer loop, vertex, endloop, endfacet, "
                   "endsolid");
    }
  }

  void take_corner() {
    if (!m_in_facet) m_words.fail("a vertex outside of a facet");
    std::array<float, 3> point{};
    for (float& coordinate : point) coordinate = m_words.number<float>("the coordinate");
    m_mesh.corners.push_back(static_cast<std::uint32_t>(m_mesh.points.size()));
    m_mesh.points.push_back(point);
  }

  void end_facet() {
    if (!m_in_facet) m_words.fail("'endfacet' without a facet");
    if (m_mesh.open_corners() != 3)
      m_words.fail(fmt::format("the facet has {} corners; 3 are expected", m_mesh.open_corners()));
    m_mesh.close_polygon();
    check_triangle_count(m_mesh.ends.size());
    m_in_facet = false;
  }

  MeshWords m_words;
  PolygonMesh m_mesh;
  bool m_in_facet = false;
};

}  // namespace

PolygonMesh read_stl(std::string_view bytes) {
  if (has_binary_size(bytes)) return read_binary(bytes);
  MeshWords words(bytes);
  if (words.next() == "solid") return StlText(bytes).read();
  if (bytes.size() < k_header)
    throw MeshError(
        fmt::format("byte {}: the file ends in its header; an STL file is a text that starts with 'solid', "
                    "or has a header of {} bytes",
                    bytes.size(), k_header));
  const std::uint32_t count = count_in_header(bytes);
  throw MeshError(
      fmt::format("byte 80: the header announces {} triangles, which take {} bytes, and the file has {}; it "
                  "is cut off or no STL file",
                  count, k_header + k_row * std::size_t{count}, bytes.size()));
}

}  // namespace qvslv
