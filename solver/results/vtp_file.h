#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace qvslv {

/// How the bytes of an array stand in a file. Both are zlib streams, so that every reader of VTK files takes them.
enum class Packing {
  fast,  ///< as they are: for what stands in one file. Coordinates hardly shrink, and shrinking costs 20 times the time
         ///< of writing
  small  ///< shrunk: for what is packed once and stands in many files
};

/// An array, packed for a VTK file.
class VtpArray {
public:
  VtpArray() = default;
  /// @param values  `components` of them per point or cell
  VtpArray(const char* name, int components, const std::vector<float>& values, Packing packing);
  VtpArray(const char* name, int components, const std::vector<double>& values, Packing packing);
  VtpArray(const char* name, int components, const std::vector<std::int32_t>& values, Packing packing);
  VtpArray(const char* name, int components, const std::vector<std::uint8_t>& values, Packing packing);

  /// The attributes that describe it.
  const std::string& attributes() const { return m_attributes; }
  /// Its bytes as they stand in the file: lengths, then a zlib stream.
  const std::string& bytes() const { return m_bytes; }

private:
  void pack(const char* type, const char* name, int components, const void* values, std::size_t count, Packing packing);

  std::string m_attributes, m_bytes;
};

enum class CellKind { vertices, triangles };

/// What the files of several frames have in common.
struct VtpTopology {
  CellKind kind = CellKind::triangles;
  std::size_t points = 0, cells = 0;
  VtpArray connectivity, offsets;
  std::vector<VtpArray> point_data, cell_data;  ///< arrays that do not change
};

/// The topology of triangles between `points` points.
/// @param corners  three indices per triangle
/// @param packing  small pays where the topology stands in many files
VtpTopology triangle_topology(std::size_t points, const std::vector<std::int32_t>& corners, Packing packing);
/// Points alone, each a cell of its own.
VtpTopology vertex_topology(std::size_t points);

/// The text of a file of VTK XML PolyData (.vtp), its arrays behind the XML as raw bytes, little-endian.
/// @param place       "Points", three numbers per point
/// @param point_data  arrays beside those of the topology
std::string vtp_text(const VtpTopology& topology, const VtpArray& place, const std::vector<VtpArray>& point_data,
                     const std::vector<VtpArray>& cell_data = {});

}  // namespace qvslv
