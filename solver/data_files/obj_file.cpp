#include <fmt/format.h>

#include <charconv>
#include <cmath>

#include "solver/data_files/mesh_formats.h"
#include "solver/data_files/mesh_words.h"

namespace qvslv {

namespace {

/// Reads the statements `v` and `f`. Names, materials, normals, texture coordinates, lines and points are passed by.
///
/// Every corner of a face becomes a point of its own, so that points come in the order in which faces use them.
class ObjText {
public:
  explicit ObjText(std::string_view text) : m_words(text) {}

  PolygonMesh read() {
    while (!m_words.at_end()) {
      if (m_words.more_on_line()) take(m_words.next());
      m_words.rest_of_line();
      m_words.next_line();
    }
    if (m_highest > m_places.size())
      throw MeshError(fmt::format("line {}: the face names point {}, but the file has only {}", m_line_of_highest,
                                  m_highest, m_places.size()));
    m_mesh.points.reserve(m_mesh.corners.size());
    for (std::uint32_t& corner : m_mesh.corners) {
      m_mesh.points.push_back(m_places[corner]);
      corner = static_cast<std::uint32_t>(m_mesh.points.size() - 1);
    }
    return std::move(m_mesh);
  }

private:
  void take(std::string_view word) {
    if (word == "v") take_point();
    if (word == "f") take_face();
  }

  void take_point() {
    std::array<float, 7> values{};
    std::size_t count = 0;
    for (; m_words.more_on_line(); ++count) {
      if (count == values.size()) m_words.fail("a point has more than 7 numbers");
      values[count] = m_words.number<float>("the coordinate");
    }
    if (count != 3 && count != 4 && count != 6)
      m_words.fail(fmt::format("a point of {} numbers; expected are x y z, x y z w, or x y z and a color", count));
    const float w = count == 4 ? values[3] : 1;
    if (m_places.size() >= k_most_mesh_points)
      m_words.fail(fmt::format("more than {} points; make the mesh coarser", k_most_mesh_points));
    m_places.push_back({values[0] / w, values[1] / w, values[2] / w});
    for (const float coordinate : m_places.back())
      if (!std::isfinite(coordinate))
        m_words.fail(fmt::format("the point's weight {} leaves no finite coordinates", w));
  }

  void take_face() {
    std::size_t corners = 0;
    for (; m_words.more_on_line(); ++corners) {
      if (corners >= k_most_polygon_corners)
        m_words.fail(fmt::format("a face of more than {} corners; split it", k_most_polygon_corners));
      m_mesh.corners.push_back(read_corner(m_words.next()));
    }
    if (m_mesh.corners.size() > k_most_mesh_points)
      m_words.fail(fmt::format("faces of more than {} corners in all; make the mesh coarser", k_most_mesh_points));
    m_mesh.close_polygon();
  }

  /// The index of a corner's point, counted from 0. In the file, points count from 1, or backwards from -1 for the last
  /// one so far; numbers of texture and normal may follow after a slash.
  std::uint32_t read_corner(std::string_view word) {
    const std::string_view digits = word.substr(0, word.find('/'));
    long number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error == std::errc::invalid_argument || end != digits.data() + digits.size())
      m_words.fail("the corner " + quoted_word(word) +
                   " is no whole number; expected are faces like f 1 2 3 or f 1/1/1 2/2/2");
    const auto so_far = static_cast<long>(m_places.size());
    if (number < 0) number += so_far + 1;
    if (error == std::errc::result_out_of_range || number < 1 || number > static_cast<long>(k_most_mesh_points))
      m_words.fail(
          fmt::format("the face names point {}; there are {} so far, and they count from 1, or backwards "
                      "from -1",
                      quoted_word(digits), so_far));
    if (static_cast<std::size_t>(number) > m_highest) {
      m_highest = static_cast<std::size_t>(number);
      m_line_of_highest = m_words.line();
    }
    return static_cast<std::uint32_t>(number - 1);
  }

  MeshWords m_words;
  PolygonMesh m_mesh;
  std::vector<std::array<float, 3>> m_places;
  std::size_t m_highest = 0, m_line_of_highest = 0;
};

}  // namespace

PolygonMesh read_obj(std::string_view text) { return ObjText(text).read(); }

}  // namespace qvslv
