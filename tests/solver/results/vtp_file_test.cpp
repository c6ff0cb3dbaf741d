#include "solver/results/vtp_file.h"

#include <gtest/gtest.h>

#include "tests/support/vtp_arrays.h"

namespace {

using namespace qvslv;
using qvtest::vtp_array;

/// Numbers without a pattern that a compressor would find.
std::vector<std::int32_t> scattered(size_t count) {
  std::vector<std::int32_t> numbers(count);
  std::uint32_t state = 1;
  for (std::int32_t& number : numbers) number = static_cast<std::int32_t>((state = state * 1664525 + 1013904223) >> 1);
  return numbers;
}

/// The text of points alone that carry one array.
std::string points_with(const VtpArray& array, size_t count) {
  const std::vector<float> places(3 * count, 0.5F);
  return vtp_text(vertex_topology(count), {"Points", 3, places, Packing::fast}, {array});
}

TEST(VtpFile, ArraysOfAnySizeReadBackHoweverTheyArePacked) {
  // A stored block of a zlib stream has up to 65535 bytes: below, at and beyond one and two of them.
  for (const size_t count : {size_t{0}, size_t{1}, size_t{16383}, size_t{16384}, size_t{32767}, size_t{40000}}) {
    const std::vector<std::int32_t> numbers = scattered(count);
    for (const Packing packing : {Packing::fast, Packing::small}) {
      SCOPED_TRACE(count);
      const std::string text = points_with({"numbers", 1, numbers, packing}, count);
      EXPECT_EQ(vtp_array(text, "numbers"), std::vector<double>(numbers.begin(), numbers.end()));
    }
  }
  const std::vector<std::uint8_t> bytes(65535, 7);
  EXPECT_EQ(vtp_array(points_with({"bytes", 1, bytes, Packing::fast}, bytes.size()), "bytes"),
            std::vector<double>(bytes.size(), 7));
}

TEST(VtpFile, WhatIsPackedSmallIsSmallWhereItHasAPattern) {
  const std::vector<std::int32_t> same(10000, 3);
  EXPECT_LT((VtpArray{"same", 1, same, Packing::small}.bytes().size()), same.size() / 10);
}

TEST(VtpFile, TrianglesHaveTheirCornersAndEnds) {
  const std::vector<float> places = {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1};
  VtpTopology topology = triangle_topology(4, {0, 1, 2, 1, 3, 2}, Packing::small);
  topology.cell_data.emplace_back("fixed", 1, std::vector<std::int32_t>{4, 5}, Packing::small);
  const std::string text = vtp_text(topology, {"Points", 3, places, Packing::fast}, {},
                                    {{"changing", 1, std::vector<double>{0.25, 0.1}, Packing::fast}});
  EXPECT_EQ(vtp_array(text, "Points"), std::vector<double>(places.begin(), places.end()));
  EXPECT_EQ(vtp_array(text, "connectivity"), (std::vector<double>{0, 1, 2, 1, 3, 2}));
  EXPECT_EQ(vtp_array(text, "offsets"), (std::vector<double>{3, 6}));
  EXPECT_EQ(vtp_array(text, "fixed"), (std::vector<double>{4, 5}));
  EXPECT_EQ(vtp_array(text, "changing"), (std::vector<double>{0.25, 0.1}));
  EXPECT_NE(text.find("NumberOfPoints=\"4\" NumberOfVerts=\"0\" NumberOfLines=\"0\" NumberOfStrips=\"0\" "
                      "NumberOfPolys=\"2\""),
            std::string::npos);
}

TEST(VtpFile, PointsAloneAreCellsOfTheirOwn) {
  const std::string text = points_with({"x", 1, std::vector<float>{1, 2, 3}, Packing::fast}, 3);
  EXPECT_EQ(vtp_array(text, "connectivity"), (std::vector<double>{0, 1, 2}));
  EXPECT_EQ(vtp_array(text, "offsets"), (std::vector<double>{1, 2, 3}));
  EXPECT_NE(text.find("NumberOfVerts=\"3\""), std::string::npos);
}

}  // namespace
