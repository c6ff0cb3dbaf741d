#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "solver/data_files/hull_mesh.h"

namespace qvslv {

// Readers of mesh files, for files that nobody vouches for: they read from memory, believe no count before the bytes
// for it are there, and hold no more than a few times the file. Each throws MeshError with the line or byte and with
// what would be right.

/// The polygons of a mesh file as they stand there.
struct PolygonMesh {
  std::vector<std::array<float, 3>> points;
  std::vector<std::uint32_t> corners;  ///< of all polygons, one polygon after the other: indices into points
  std::vector<std::size_t> ends;       ///< per polygon, where its corners end

  /// Ends the polygon of the corners that were added last. Fewer than three are no part of a surface and are dropped.
  void close_polygon();
  std::size_t open_corners() const { return corners.size() - (ends.empty() ? 0 : ends.back()); }
};

// Larger meshes than these are no hull, and would take gigabytes.
constexpr std::size_t k_most_mesh_bytes = std::size_t{512} << 20;
constexpr std::size_t k_most_mesh_points = 6'000'000;
constexpr std::size_t k_most_polygon_corners = 1000;

PolygonMesh read_stl(std::string_view bytes);  ///< as text or binary
PolygonMesh read_obj(std::string_view text);   ///< points and faces only; no material library is opened
PolygonMesh read_ply(std::string_view bytes);  ///< as text or binary of either byte order

/// Splits polygons into triangles, in their order.
TriangleMesh triangulated(const PolygonMesh& mesh);

/// Reads a mesh from the bytes of a file and welds it.
/// @param ending  of the file's name, in lower case: ".stl", ".obj" or ".ply"
TriangleMesh read_mesh_bytes(std::string_view bytes, const std::string& ending);

}  // namespace qvslv
