#include "solver/results/vtp_file.h"

#include <fmt/format.h>
#include <zlib.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <numeric>
#include <stdexcept>

namespace qvslv {

namespace {

/// The Adler-32 checksum at the end of a zlib stream, of any length.
std::uint32_t checksum(const unsigned char* bytes, size_t count) {
  return static_cast<std::uint32_t>(adler32_z(adler32_z(0, nullptr, 0), bytes, count));
}

/// A zlib stream of stored blocks (RFC 1950, RFC 1951 section 3.2.4): what the zlib library writes at level 0, without
/// the tables that it sets up for each stream.
void append_stored(std::string& out, const unsigned char* bytes, size_t count) {
  constexpr size_t k_most = 65535;  // bytes of a stored block
  out += "\x78\x01";
  out.reserve(out.size() + count + 5 * (count / k_most + 1) + 6);
  size_t at = 0;
  do {
    const size_t length = std::min(k_most, count - at);
    out += at + length == count ? '\1' : '\0';
    for (const size_t number : {length, ~length}) {  // both as two bytes, the low one first
      out += static_cast<char>(number & 0xff);
      out += static_cast<char>(number >> 8 & 0xff);
    }
    out.append(reinterpret_cast<const char*>(bytes) + at, length);
    at += length;
  } while (at < count);
  const std::uint32_t sum = checksum(bytes, count);
  for (const int shift : {24, 16, 8, 0}) out += static_cast<char>(sum >> shift & 0xff);
}

void append_shrunk(std::string& out, const unsigned char* bytes, size_t count) {
  const size_t before = out.size();
  uLongf length = compressBound(count);
  out.resize(before + length);
  if (compress2(reinterpret_cast<Bytef*>(&out[before]), &length, bytes, count, Z_BEST_SPEED) != Z_OK)
    throw std::runtime_error("cannot compress a picture's data");
  out.resize(before + length);
}

/// A group of arrays in the XML.
struct Section {
  const char* name;
  std::vector<const VtpArray*> arrays;
};

Section section_of(const char* name, const std::vector<VtpArray>& fixed, const std::vector<VtpArray>& changing) {
  Section section{name, {}};
  for (const VtpArray& array : fixed) section.arrays.push_back(&array);
  for (const VtpArray& array : changing) section.arrays.push_back(&array);
  return section;
}

}  // namespace

VtpArray::VtpArray(const char* name, int components, const std::vector<float>& values, Packing packing) {
  pack("Float32", name, components, values.data(), values.size() * sizeof(float), packing);
}

VtpArray::VtpArray(const char* name, int components, const std::vector<double>& values, Packing packing) {
  pack("Float64", name, components, values.data(), values.size() * sizeof(double), packing);
}

VtpArray::VtpArray(const char* name, int components, const std::vector<std::int32_t>& values, Packing packing) {
  pack("Int32", name, components, values.data(), values.size() * sizeof(std::int32_t), packing);
}

VtpArray::VtpArray(const char* name, int components, const std::vector<std::uint8_t>& values, Packing packing) {
  pack("UInt8", name, components, values.data(), values.size(), packing);
}

/// Before the stream stand four lengths: how many blocks, bytes of a block and of a last shorter one (0: there is
/// none), and of each block its bytes in the stream. Here every array is one block.
void VtpArray::pack(const char* type, const char* name, int components, const void* values, size_t count,
                    Packing packing) {
  m_attributes = fmt::format("type=\"{}\" Name=\"{}\" NumberOfComponents=\"{}\"", type, name, components);
  if (count == 0) {
    m_bytes.assign(sizeof(std::uint64_t), '\0');
    return;
  }
  const auto* bytes = static_cast<const unsigned char*>(values);
  constexpr size_t k_lengths = 4 * sizeof(std::uint64_t);
  m_bytes.resize(k_lengths);
  if (packing == Packing::fast) {
    append_stored(m_bytes, bytes, count);
  } else {
    append_shrunk(m_bytes, bytes, count);
  }
  const std::uint64_t lengths[] = {1, count, 0, m_bytes.size() - k_lengths};
  std::memcpy(&m_bytes[0], lengths, k_lengths);
}

VtpTopology triangle_topology(size_t points, const std::vector<std::int32_t>& corners, Packing packing) {
  VtpTopology topology{CellKind::triangles, points, corners.size() / 3, {}, {}, {}, {}};
  std::vector<std::int32_t> offsets(topology.cells);
  for (size_t k = 0; k < offsets.size(); ++k) offsets[k] = static_cast<std::int32_t>(3 * (k + 1));
  topology.connectivity = {"connectivity", 1, corners, packing};
  topology.offsets = {"offsets", 1, offsets, packing};
  return topology;
}

VtpTopology vertex_topology(size_t points) {
  VtpTopology topology{CellKind::vertices, points, points, {}, {}, {}, {}};
  std::vector<std::int32_t> numbers(points);
  std::iota(numbers.begin(), numbers.end(), 0);
  topology.connectivity = {"connectivity", 1, numbers, Packing::small};
  for (std::int32_t& number : numbers) ++number;
  topology.offsets = {"offsets", 1, numbers, Packing::small};
  return topology;
}

std::string vtp_text(const VtpTopology& topology, const VtpArray& place, const std::vector<VtpArray>& point_data,
                     const std::vector<VtpArray>& cell_data) {
  const bool vertices = topology.kind == CellKind::vertices;
  const Section sections[] = {section_of("PointData", topology.point_data, point_data),
                              section_of("CellData", topology.cell_data, cell_data),
                              {"Points", {&place}},
                              {vertices ? "Verts" : "Polys", {&topology.connectivity, &topology.offsets}}};
  std::string text = fmt::format(
      "<?xml version=\"1.0\"?>\n<VTKFile type=\"PolyData\" version=\"1.0\" byte_order=\"LittleEndian\" "
      "header_type=\"UInt64\" compressor=\"vtkZLibDataCompressor\">\n  <PolyData>\n    <Piece NumberOfPoints=\"{}\" "
      "NumberOfVerts=\"{}\" NumberOfLines=\"0\" NumberOfStrips=\"0\" NumberOfPolys=\"{}\">\n",
      topology.points, vertices ? topology.cells : 0, vertices ? 0 : topology.cells);
  size_t bytes = 0;
  for (const Section& section : sections) {
    text += fmt::format("      <{}>\n", section.name);
    for (const VtpArray* array : section.arrays) {
      fmt::format_to(std::back_inserter(text), "        <DataArray {} format=\"appended\" offset=\"{}\"/>\n",
                     array->attributes(), bytes);
      bytes += array->bytes().size();
    }
    text += fmt::format("      </{}>\n", section.name);
  }
  text += "    </Piece>\n  </PolyData>\n  <AppendedData encoding=\"raw\">\n_";
  constexpr const char* k_end = "\n  </AppendedData>\n</VTKFile>\n";
  text.reserve(text.size() + bytes + std::char_traits<char>::length(k_end));
  for (const Section& section : sections)
    for (const VtpArray* array : section.arrays) text += array->bytes();
  return text += k_end;
}

}  // namespace qvslv
