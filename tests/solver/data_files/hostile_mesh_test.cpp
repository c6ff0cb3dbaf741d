#include <gmock/gmock.h>
#include <sys/stat.h>

#include <cstring>
#include <filesystem>
#include <fstream>

#include "solver/data_files/mesh_formats.h"
#include "tests/solver/model_file/mistake.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

std::string complaint_about(const std::string& bytes, const std::string& ending) {
  try {
    qvslv::read_mesh_bytes(bytes, ending);
  } catch (const qvslv::MeshError& error) {
    return error.what();
  }
  return "none";
}

template <class Number>
std::string raw(Number number) {
  std::string bytes(sizeof number, '\0');
  std::memcpy(bytes.data(), &number, sizeof number);
  return bytes;
}

const std::string k_ply_points = "element vertex 3\nproperty float x\nproperty float y\nproperty float z\n";
const std::string k_ply_faces = "element face 1\nproperty list uchar int vertex_indices\nend_header\n";
const std::string k_ply_head = "ply\nformat ascii 1.0\n" + k_ply_points + k_ply_faces;
const std::string k_ply_binary_head = "ply\nformat binary_little_endian 1.0\n" + k_ply_points + k_ply_faces;
const std::string k_three_points = "0 0 0\n1 0 0\n0 1 0\n";
const std::string k_facet = "solid s\nfacet normal 0 0 1\nouter loop\n";

std::string nan_stl() {
  std::string bytes(80, ' ');
  bytes += raw(std::uint32_t{1});
  for (int k = 0; k < 12; ++k) bytes += raw(k == 5 ? std::nanf("") : 1.0F);
  return bytes + raw(std::uint16_t{0});
}

struct hostile_file {
  const char* why;
  const char* ending;
  std::string bytes;
  const char* message;
};

// clang-format off
const hostile_file k_hostile[] = {
    {"A PLY file that does not start like one", ".ply", "this is no mesh\n", "line 1: a PLY file starts with a line 'ply', not with 'this is no mesh'"},
    {"A PLY header without its end", ".ply", "ply\nformat ascii 1.0\n" + k_ply_points, "line 7: the file ends in its header; the line 'end_header' is missing"},
    {"A PLY file of 4 000 000 000 points", ".ply", "ply\nformat ascii 1.0\nelement vertex 4000000000\nproperty float x\nproperty float y\nproperty float z\n" + k_ply_faces + "0 0 0\n", "the header announces 4000000000 rows of the element 'vertex', and behind it (byte 163) come only 6 bytes; the file is cut off or the number is wrong"},
    {"Rows that hold nothing", ".ply", "ply\nformat ascii 1.0\nelement dust 4000000000\n" + k_ply_points + k_ply_faces + k_three_points + "3 0 1 2\n", "the header announces 4000000000 rows of the element 'dust', and behind it (byte 178) come only 26 bytes; the file is cut off or the number is wrong"},
    {"A number of rows that is none", ".ply", "ply\nformat ascii 1.0\nelement vertex -3\nend_header\n", "line 3: the number of rows '-3' is no whole number from 0 on"},
    {"An unknown type in a PLY header", ".ply", "ply\nformat ascii 1.0\nelement vertex 3\nproperty quad x\nend_header\n", "line 4: the type 'quad' is not known; known: char, uchar, short, ushort, int, uint, float, double"},
    {"A face of a PLY file that names no point", ".ply", k_ply_head + k_three_points + "3 0 1 7\n", "line 13: the face names point 7; there are 3, counted from 0"},
    {"A negative point in a PLY file", ".ply", k_ply_head + k_three_points + "3 0 1 -1\n", "line 13: the face names point -1; there are 3, counted from 0"},
    {"A PLY file that is cut off", ".ply", k_ply_head + k_three_points + "3 0 1\n", "line 14: the file ends where the number is expected"},
    {"A binary PLY file that is cut off", ".ply", k_ply_binary_head + std::string(36, '\0') + "\x03", "byte 206: the file ends here; it is cut off"},
    {"A PLY file without points", ".ply", "ply\nformat ascii 1.0\n" + k_ply_faces + "3 0 1 2\n", "the header has no element 'vertex'"},
    {"Points of two coordinates", ".ply", "ply\nformat ascii 1.0\nelement vertex 1\nproperty float x\nproperty float y\n" + k_ply_faces + "0 0\n3 0 0 0\n", "the element 'vertex' has no property 'z'"},
    {"A face of an OBJ file that names no point", ".obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 9\n", "line 4: the face names point 9, but the file has only 3"},
    {"Point 0 in an OBJ file", ".obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 0 1 2\n", "line 4: the face names point '0'; there are 3 so far, and they count from 1, or backwards from -1"},
    {"A point too far back in an OBJ file", ".obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf -1 -2 -4\n", "line 4: the face names point '-4'; there are 3 so far, and they count from 1, or backwards from -1"},
    {"A coordinate that is no number", ".obj", "v 0 0 nan\n", "line 1: the coordinate 'nan' is no finite number of single precision; write it like -1.5 or 2e-3"},
    {"A coordinate beyond single precision", ".obj", "v 0 0 1e39\n", "line 1: the coordinate '1e39' is no finite number of single precision; write it like -1.5 or 2e-3"},
    {"A coordinate with a decimal comma", ".obj", "v 0 0 1,5\n", "line 1: the coordinate '1,5' is no finite number of single precision; write it like -1.5 or 2e-3"},
    {"A point of weight 0", ".obj", "v 0 0 1 0\n", "line 1: the point's weight 0 leaves no finite coordinates"},
    {"A corner that is no number", ".obj", "v 0 0 0\nf a b c\n", "line 2: the corner 'a' is no whole number; expected are faces like f 1 2 3 or f 1/1/1 2/2/2"},
    {"A binary STL file that is cut off", ".stl", std::string(80, ' ') + raw(std::uint32_t{2}) + std::string(50, '\0'), "byte 80: the header announces 2 triangles, which take 184 bytes, and the file has 134; it is cut off or no STL file"},
    {"A binary STL file of 4 294 967 295 triangles", ".stl", std::string(80, ' ') + raw(std::uint32_t{0xffffffff}), "byte 80: the header announces 4294967295 triangles, which take 214748364834 bytes, and the file has 84; it is cut off or no STL file"},
    {"An STL header that is cut off", ".stl", std::string(30, ' '), "byte 30: the file ends in its header; an STL file is a text that starts with 'solid', or has a header of 84 bytes"},
    {"A corner of an STL file that is no number", ".stl", nan_stl(), "byte 96: a coordinate of triangle 1 is nan, a finite number is expected"},
    {"An STL text that is cut off", ".stl", k_facet + "vertex 0 0 0\nvertex 1 0 0\n", "line 6: the file ends inside a facet; it seems to be cut off"},
    {"A facet of two corners", ".stl", k_facet + "vertex 0 0 0\nvertex 1 0 0\nendloop\nendfacet\n", "line 7: the facet has 2 corners; 3 are expected"},
    {"A word that STL does not have", ".stl", k_facet + "\x1b]0;title\x07\n", "line 4: '?]0;title?' is no word of an STL file; expected: solid, facet normal, outer loop, vertex, endloop, endfacet, endsolid"},
};
// clang-format on

TEST(HostileMesh, EveryFileIsRefusedWithThePlaceAndThePageShowsIt) {
  const std::string page = bad_input_page();
  for (const hostile_file& row : k_hostile) {
    SCOPED_TRACE(row.why);
    EXPECT_EQ(complaint_about(row.bytes, row.ending), row.message);
    EXPECT_THAT(page, HasSubstr(std::string("| ") + row.why + " | `" + in_table(row.message) + "` |"));
  }
}

const std::string k_tetrahedron = "v 0 0 0\nv 1 0 0\nv 0 1 0\nv 0 0 1\nf 1 3 2\nf 1 2 4\nf 2 3 4\nf 1 4 3\n";

TEST(HostileMesh, EveryBeginningOfAFileIsReadOrRefusedButNeverMore) {
  const std::string ply = k_ply_binary_head + std::string(36, '\0') + "\x03" + std::string(12, '\0');
  for (const auto& [bytes, ending] : {std::pair{ply, ".ply"}, {k_tetrahedron, ".obj"}, {nan_stl(), ".stl"}})
    for (size_t size = 0; size < bytes.size(); ++size) {
      const std::string complaint = complaint_about(bytes.substr(0, size), ending);
      EXPECT_TRUE(complaint != "none" || ending == std::string(".obj")) << ending << " of " << size << " bytes";
    }
}

TEST(HostileMesh, MaterialLibraryOfAnObjFileIsNeverOpened) {
  const fs::path pipe = fs::path(testing::TempDir()) / "endless.mtl";
  fs::remove(pipe);
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);  // opening it would wait for a writer for ever
  const fs::path path = fs::path(testing::TempDir()) / "material.obj";
  std::ofstream(path) << "mtllib endless.mtl\nusemtl a\n" << k_tetrahedron;
  EXPECT_EQ(qvslv::read_mesh_file(path).triangles.size(), 4u);
  fs::remove(pipe);
}

TEST(HostileMesh, PipeIsRefusedInsteadOfWaitedFor) {
  const fs::path pipe = fs::path(testing::TempDir()) / "endless.stl";
  fs::remove(pipe);
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  try {
    qvslv::read_mesh_file(pipe);
    FAIL() << "read";
  } catch (const qvslv::MeshError& error) {
    EXPECT_EQ(error.what(), "'" + pipe.string() + "' cannot be read: it is no regular file");
  }
  fs::remove(pipe);
}

TEST(HostileMesh, FileLargerThanAnyHullIsRefusedUnread) {
  const fs::path path = fs::path(testing::TempDir()) / "large.stl";
  std::ofstream(path) << "solid";
  fs::resize_file(path, qvslv::k_most_mesh_bytes + (1 << 20));  // a hole: takes no room on the disk
  try {
    qvslv::read_mesh_file(path);
    FAIL() << "read";
  } catch (const qvslv::MeshError& error) {
    EXPECT_THAT(error.what(), HasSubstr("it has 513 MB; a hull's mesh of up to 512 MB is expected"));
  }
  fs::remove(path);
}

TEST(HostileMesh, PolygonsThatWouldTakeMinutesToDivideAreRefused) {
  std::string text;
  for (int i = 0; i < 1000; ++i) text += "v " + std::to_string(i) + " " + std::to_string(i * i) + " 0\n";
  std::string face = "f";
  for (int i = 1; i <= 1000; ++i) face += " " + std::to_string(i);
  for (int i = 0; i < 1001; ++i) text += face + "\n";
  EXPECT_EQ(complaint_about(text, ".obj"),
            "it holds too many polygons of many corners; split them into triangles in the program that made it");
  EXPECT_EQ(complaint_about(
                "v 0 0 0\n" + std::string("f") +
                    [] {
                      std::string ones;
                      for (int i = 0; i < 1001; ++i) ones += " 1";
                      return ones;
                    }(),
                ".obj"),
            "line 2: a face of more than 1000 corners; split it");
}

/// Soup without any order: points on points, polygons through one point, every corner the same.
TEST(HostileMesh, SoupOfPolygonsIsDividedOrRefused) {
  unsigned random = 1;
  const auto next = [&random](unsigned range) { return (random = random * 1664525U + 1013904223U) / 65536U % range; };
  for (int file = 0; file < 300; ++file) {
    std::string text;
    const unsigned points = 1 + next(9);
    for (unsigned i = 0; i < points; ++i)
      text += "v " + std::to_string(next(3)) + " " + std::to_string(next(3)) + (next(5) == 0 ? " 3e38\n" : " 0\n");
    for (unsigned i = 0; i < 3; ++i) {
      text += "f";
      for (unsigned k = 3 + next(9); k > 0; --k) text += " " + std::to_string(1 + next(points));
      text += "\n";
    }
    try {
      const qvslv::TriangleMesh mesh = qvslv::read_mesh_bytes(text, ".obj");
      for (const auto& triangle : mesh.triangles)
        for (const int corner : triangle) {
          EXPECT_GE(corner, 0);
          EXPECT_LT(corner, static_cast<int>(mesh.points.size()));
        }
      qvslv::check_hull_mesh(mesh);
    } catch (const qvslv::MeshError& error) {
      EXPECT_STRNE(error.what(), "");
    }
  }
}

TEST(HostileMesh, NumbersThatStartWithAPointCount) {
  const qvslv::TriangleMesh mesh = qvslv::read_mesh_bytes("v 0 0 0\nv +1. 0 0\nv 0 .5 0\nf 1 2 3\n", ".obj");
  EXPECT_EQ(mesh.points[1][0], 1);
  EXPECT_EQ(mesh.points[2][1], 0.5);
}

}  // namespace
