#pragma once

#include <gtest/gtest.h>
#include <zlib.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace qvtest {

/// What stands between two texts; empty, with a failure, if they do not follow each other.
inline std::string between(const std::string& text, const std::string& open, const std::string& close) {
  const size_t begin = text.find(open);
  const size_t end = begin == std::string::npos ? begin : text.find(close, begin + open.size());
  if (end == std::string::npos) {
    ADD_FAILURE() << "no " << open << " .. " << close;
    return {};
  }
  return text.substr(begin + open.size(), end - begin - open.size());
}

/// The XML of a VTK file without the raw bytes behind it.
inline std::string vtp_xml(const std::string& file) {
  const std::string open = "<AppendedData encoding=\"raw\">";
  return file.substr(0, file.find(open) + open.size()) + "</AppendedData></VTKFile>";
}

/// The numbers of an array of a VTK file, from its zlib stream.
inline std::vector<double> vtp_array(const std::string& file, const std::string& name) {
  constexpr size_t k_number = sizeof(std::uint64_t);
  const std::string xml = vtp_xml(file), tag_name = "Name=\"" + name + "\"";
  const size_t named = xml.find(tag_name);
  if (named == std::string::npos) {
    ADD_FAILURE() << "no array " << name;
    return {};
  }
  const size_t open = xml.rfind('<', named);
  const std::string tag = xml.substr(open, xml.find('>', open) - open);
  const size_t data = file.find('_', file.find("<AppendedData")) + 1 + std::stoul(between(tag, "offset=\"", "\""));
  const auto number = [&](size_t k) {
    std::uint64_t value = 0;
    std::memcpy(&value, file.data() + data + k * k_number, k_number);
    return value;
  };
  if (number(0) == 0) return {};
  EXPECT_EQ(number(0), 1U) << "blocks of " << name;
  uLongf length = number(1);
  std::string bytes(length, '\0');
  EXPECT_EQ(uncompress(reinterpret_cast<Bytef*>(&bytes[0]), &length,
                       reinterpret_cast<const Bytef*>(file.data()) + data + 4 * k_number, number(3)),
            Z_OK)
      << name;
  EXPECT_EQ(length, bytes.size()) << name;
  std::vector<double> values;
  const auto read = [&](auto value) {
    for (size_t at = 0; at + sizeof value <= bytes.size(); at += sizeof value) {
      std::memcpy(&value, bytes.data() + at, sizeof value);
      values.push_back(static_cast<double>(value));
    }
  };
  const std::string type = between(tag, "type=\"", "\"");
  if (type == "Float32") read(float{});
  if (type == "Float64") read(double{});
  if (type == "Int32") read(std::int32_t{});
  if (type == "UInt8") read(std::uint8_t{});
  return values;
}

}  // namespace qvtest
