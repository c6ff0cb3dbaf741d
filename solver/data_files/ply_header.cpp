#include "solver/data_files/ply_header.h"

#include <fmt/format.h>

#include <charconv>
#include <system_error>
#include <utility>

#include "solver/data_files/hull_mesh.h"
#include "solver/data_files/mesh_words.h"

namespace qvslv {

namespace {

using Type = PlyHeader::Type;

struct NamedType {
  const char* name;
  Type type;
};
constexpr NamedType k_types[] = {
    {"char", Type::int8},   {"uchar", Type::uint8},   {"short", Type::int16},     {"ushort", Type::uint16},
    {"int", Type::int32},   {"uint", Type::uint32},   {"float", Type::float32},   {"double", Type::float64},
    {"int8", Type::int8},   {"uint8", Type::uint8},   {"int16", Type::int16},     {"uint16", Type::uint16},
    {"int32", Type::int32}, {"uint32", Type::uint32}, {"float32", Type::float32}, {"float64", Type::float64}};

/// Reads a header line by line.
class HeaderReader {
public:
  explicit HeaderReader(std::string_view bytes) : m_bytes(bytes), m_words(bytes) {}

  PlyHeader read() {
    const std::string_view magic = m_words.rest_of_line();
    if (magic != "ply") m_words.fail("a PLY file starts with a line 'ply', not with " + quoted_word(magic));
    while (!m_ended) {
      m_words.rest_of_line();
      m_words.next_line();
      if (m_words.at_end()) m_words.fail("the file ends in its header; the line 'end_header' is missing");
      if (m_words.more_on_line()) take(m_words.next());
    }
    if (!m_has_format) m_words.fail("the header has no line 'format'");
    if (!m_words.rest_of_line().empty()) m_words.fail("'end_header' is expected alone on its line");
    m_words.next_line();
    m_header.size = m_words.position();
    m_header.lines = m_words.line() - 1;
    for (const PlyHeader::Element& element : m_header.elements) check_rows(element);
    return std::move(m_header);
  }

private:
  void take(std::string_view word) {
    if (word == "end_header") {
      m_ended = true;
    } else if (word == "format") {
      take_format();
    } else if (word == "element") {
      take_element();
    } else if (word == "property") {
      take_property();
    } else if (word != "comment" && word != "obj_info") {
      m_words.fail(quoted_word(word) +
                   " is no word of a PLY header; expected: format, element, property, comment, obj_info, end_header");
    }
  }

  std::string_view word_on_line(const char* what) {
    if (!m_words.more_on_line()) m_words.fail(fmt::format("{} is missing", what));
    return m_words.next();
  }

  void take_format() {
    const std::string_view name = word_on_line("the name of the format");
    if (name == "ascii") {
      m_header.format = PlyHeader::Format::text;
    } else if (name == "binary_little_endian") {
      m_header.format = PlyHeader::Format::little_endian;
    } else if (name == "binary_big_endian") {
      m_header.format = PlyHeader::Format::big_endian;
    } else {
      m_words.fail("the format " + quoted_word(name) +
                   " is not known; known: ascii, binary_little_endian, binary_big_endian");
    }
    m_has_format = true;
  }

  void take_element() {
    PlyHeader::Element element;
    element.name = std::string(word_on_line("the element's name"));
    const std::string_view rows = word_on_line("the element's number of rows");
    const auto [end, error] = std::from_chars(rows.data(), rows.data() + rows.size(), element.rows);
    if (error != std::errc() || end != rows.data() + rows.size())
      m_words.fail("the number of rows " + quoted_word(rows) + " is no whole number from 0 on");
    m_header.elements.push_back(std::move(element));
  }

  void take_property() {
    if (m_header.elements.empty()) m_words.fail("a property stands before the first element");
    PlyHeader::Property property;
    std::string_view word = word_on_line("the property's type");
    if (word == "list") {
      property.is_list = true;
      property.count_type = type_named(word_on_line("the type of the list's length"));
      if (!is_whole(property.count_type))
        m_words.fail("the length of a list must be of a whole-numbered type, like uchar");
      word = word_on_line("the type of the list's items");
    }
    property.type = type_named(word);
    property.name = std::string(word_on_line("the property's name"));
    m_header.elements.back().properties.push_back(std::move(property));
  }

  Type type_named(std::string_view word) const {
    for (const NamedType& known : k_types)
      if (word == known.name) return known.type;
    m_words.fail("the type " + quoted_word(word) +
                 " is not known; known: char, uchar, short, ushort, int, uint, float, double");
  }

  /// A count is believed only as far as the bytes reach. In a text every value takes two: itself and a blank.
  void check_rows(const PlyHeader::Element& element) const {
    std::size_t least = 0;
    for (const PlyHeader::Property& property : element.properties)
      least += m_header.format == PlyHeader::Format::text
                   ? 2
                   : size_of(property.is_list ? property.count_type : property.type);
    const std::size_t left = m_bytes.size() - m_header.size + 1;  // the last value may lack its blank
    if (element.rows > 0 && (least == 0 || element.rows > left / least))
      throw MeshError(
          fmt::format("the header announces {} rows of the element {}, and behind it (byte {}) come only {} "
                      "bytes; the file is cut off or the number is wrong",
                      element.rows, quoted_word(element.name), m_header.size, left - 1));
  }

  std::string_view m_bytes;
  MeshWords m_words;
  PlyHeader m_header;
  bool m_has_format = false, m_ended = false;
};

}  // namespace

std::size_t size_of(PlyHeader::Type type) {
  switch (type) {
    case Type::int8:
    case Type::uint8:
      return 1;
    case Type::int16:
    case Type::uint16:
      return 2;
    case Type::float64:
      return 8;
    default:
      return 4;
  }
}

bool is_whole(PlyHeader::Type type) { return type != Type::float32 && type != Type::float64; }

PlyHeader read_ply_header(std::string_view bytes) { return HeaderReader(bytes).read(); }

}  // namespace qvslv
