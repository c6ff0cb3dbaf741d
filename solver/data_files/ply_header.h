#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace qvslv {

/// The header of a PLY file: what its rows hold, in their order.
struct PlyHeader {
  enum class Format { text, little_endian, big_endian };
  enum class Type { int8, uint8, int16, uint16, int32, uint32, float32, float64 };

  struct Property {
    std::string name;
    Type type = Type::float32;  ///< of the value, or of a list's items
    bool is_list = false;
    Type count_type = Type::uint8;  ///< of a list's length
  };

  struct Element {
    std::string name;
    std::size_t rows = 0;
    std::vector<Property> properties;
  };

  Format format = Format::text;
  std::vector<Element> elements;
  std::size_t size = 0;   ///< bytes up to the first row
  std::size_t lines = 0;  ///< likewise
};

std::size_t size_of(PlyHeader::Type type);
bool is_whole(PlyHeader::Type type);

/// Throws MeshError unless the header is complete and the bytes behind it can hold the rows that it announces.
PlyHeader read_ply_header(std::string_view bytes);

}  // namespace qvslv
