#include "solver/data_files/hull_mesh.h"

#include <gmock/gmock.h>

#include <cmath>
#include <cstring>
#include <fstream>

namespace {

using qvslv::MeshMeasures;
using qvslv::TriangleMesh;
using qvslv::Vec3;
using testing::HasSubstr;

constexpr double k_pi = 3.141592653589793;
constexpr double k_rounding = 1e-12;       // sums of some hundred roundings of numbers of order 10
constexpr double k_float_rounding = 1e-6;  // mesh files are read in single precision

TriangleMesh box() { return qvslv::barge_mesh({4, 2, 1}, 0, 0, {3, 2, 1}); }

std::string complaint_about(const TriangleMesh& mesh) {
  try {
    qvslv::check_hull_mesh(mesh);
  } catch (const qvslv::MeshError& error) {
    return error.what();
  }
  return "none";
}

/// Six times the volume over the origin, after the divergence theorem; of an open mesh too.
double six_volumes(const TriangleMesh& mesh) {
  double sum = 0;
  for (const auto& t : mesh.triangles) {
    const Vec3 &a = mesh.points[static_cast<size_t>(t[0])], &b = mesh.points[static_cast<size_t>(t[1])],
               &c = mesh.points[static_cast<size_t>(t[2])];
    sum += a[0] * (b[1] * c[2] - b[2] * c[1]) - a[1] * (b[0] * c[2] - b[2] * c[0]) + a[2] * (b[0] * c[1] - b[1] * c[0]);
  }
  return sum;
}

/// Every corner a point of its own, as in an STL file.
TriangleMesh soup_of(const TriangleMesh& mesh) {
  TriangleMesh soup;
  for (const auto& triangle : mesh.triangles) {
    const int first = static_cast<int>(soup.points.size());
    for (const int corner : triangle) soup.points.push_back(mesh.points[static_cast<size_t>(corner)]);
    soup.triangles.push_back({first, first + 1, first + 2});
  }
  return soup;
}

/// A closed surface without a hole through it has V - E + F = 2, and 2 E = 3 F.
void expect_closed_like_a_sphere(const TriangleMesh& mesh) {
  EXPECT_EQ(complaint_about(mesh), "none");
  EXPECT_EQ(mesh.points.size(), mesh.triangles.size() / 2 + 2);
}

TEST(HullMesh, BoxHasItsVolumeSurfaceAndCentre) {
  const MeshMeasures measures = qvslv::calc_measures(box());
  EXPECT_NEAR(measures.volume, 8, k_rounding);
  EXPECT_NEAR(measures.area, 2 * (4 * 2 + 4 * 1 + 2 * 1), k_rounding);
  for (const double coordinate : measures.center) EXPECT_NEAR(coordinate, 0, k_rounding);
  EXPECT_EQ(box().triangles.size(), 2u * 2 * (3 * 2 + 2 * 1 + 3 * 1));
  expect_closed_like_a_sphere(box());
}

TEST(HullMesh, RakedEndsTakeAwayTheirWedges) {
  const double length = 6, width = 2, height = 1.5, bow = 1.2, stern = 0.7;
  const TriangleMesh mesh = qvslv::barge_mesh({length, width, height}, bow, stern, {5, 3, 2});
  expect_closed_like_a_sphere(mesh);
  const MeshMeasures measures = qvslv::calc_measures(mesh);
  EXPECT_NEAR(measures.volume, width * height * (length - (bow + stern) / 2), k_rounding);
  const double bow_face = width * std::hypot(bow, height), stern_face = width * std::hypot(stern, height);
  const double sides = 2 * height * (length - (bow + stern) / 2), plates = width * (2 * length - bow - stern);
  EXPECT_NEAR(measures.area, bow_face + stern_face + sides + plates, 10 * k_rounding);
  // A wedge of volume w is taken away at each end; its centre is a third of the rake from the end, low down.
  const double w_bow = width * height * bow / 2, w_stern = width * height * stern / 2;
  const double moment_x = -w_bow * (length / 2 - bow / 3) + w_stern * (length / 2 - stern / 3);
  EXPECT_NEAR(measures.center[0], moment_x / measures.volume, k_rounding);
  EXPECT_NEAR(measures.center[2], (w_bow + w_stern) * height / 6 / measures.volume, k_rounding);
}

TEST(HullMesh, CylinderIsAnInscribedPrismAroundAnyAxis) {
  const double radius = 0.7, length = 3;
  for (int axis = 0; axis < 3; ++axis)
    for (const int around : {3, 4, 17}) {
      const TriangleMesh mesh = qvslv::round_mesh(radius, length, axis, around, 4);
      expect_closed_like_a_sphere(mesh);
      const MeshMeasures measures = qvslv::calc_measures(mesh);
      EXPECT_NEAR(measures.volume, 0.5 * around * radius * radius * std::sin(2 * k_pi / around) * length, k_rounding);
      EXPECT_NEAR(measures.high[static_cast<size_t>(axis)], length / 2, k_rounding);
    }
}

TEST(HullMesh, IcosphereLiesOnTheSphereAndItsVolumeConvergesWithTheSquareOfTheEdge) {
  const double radius = 2, volume = 4.0 / 3.0 * k_pi * radius * radius * radius;
  double missing = 0;
  for (int level = 0; level <= 4; ++level) {
    const TriangleMesh mesh = qvslv::icosphere_mesh(radius, level);
    expect_closed_like_a_sphere(mesh);
    EXPECT_EQ(mesh.triangles.size(), 20u << (2 * level));
    for (const Vec3& p : mesh.points) EXPECT_NEAR(std::hypot(p[0], p[1], p[2]), radius, k_rounding);
    const double now_missing = volume - qvslv::calc_measures(mesh).volume;
    EXPECT_GT(now_missing, 0);
    if (level > 2) {
      EXPECT_NEAR(missing / now_missing, 4, 0.1);  // half the edge, a quarter of the gap
    }
    missing = now_missing;
  }
}

TEST(HullMesh, MeasuresOfAMeshFarAwayKeepTheirDigits) {
  TriangleMesh mesh = box();
  for (Vec3& point : mesh.points) point[1] += 1e6;
  const MeshMeasures measures = qvslv::calc_measures(mesh);
  EXPECT_NEAR(measures.volume, 8, 1e-8);  // eps * 1e6 a coordinate
  EXPECT_NEAR(measures.center[1], 1e6, 1e-8);
}

TEST(HullMesh, MeshThatFacesInwardsIsRefusedAndTurnedOverAccepted) {
  TriangleMesh mesh = box();
  qvslv::flip(mesh);
  EXPECT_NEAR(qvslv::calc_measures(mesh).volume, -8, k_rounding);
  EXPECT_EQ(complaint_about(mesh), "the triangles face inwards (the volume comes out as -8); flip = true mends it");
  qvslv::flip(mesh);
  EXPECT_EQ(complaint_about(mesh), "none");
}

TEST(HullMesh, HoleIsToldWithItsPlace) {
  TriangleMesh mesh = qvslv::barge_mesh({4, 2, 1}, 0, 0, {1, 1, 1});
  mesh.triangles.pop_back();
  EXPECT_THAT(complaint_about(mesh),
              HasSubstr("the mesh is not closed: 3 edges belong to one triangle only, such as the edge from ("));
  EXPECT_THAT(complaint_about(mesh), HasSubstr("close the hole in the program that made the mesh"));
}

TEST(HullMesh, OneTriangleTurnedOverIsTold) {
  TriangleMesh mesh = box();
  std::swap(mesh.triangles[5][0], mesh.triangles[5][1]);
  EXPECT_THAT(complaint_about(mesh), HasSubstr("two neighbours are turned against each other at the edge from ("));
}

TEST(HullMesh, WallInsideTheHullIsTold) {
  TriangleMesh mesh = qvslv::barge_mesh({4, 2, 1}, 0, 0, {1, 1, 1});
  const std::array<int, 3> edge = mesh.triangles[0];
  mesh.points.push_back({0, 0, 0});
  mesh.triangles.push_back({edge[0], edge[1], static_cast<int>(mesh.points.size()) - 1});
  EXPECT_THAT(complaint_about(mesh), HasSubstr("belongs to 3 triangles, not two; take out what lies inside the hull"));
}

TEST(HullMesh, TriangleOnALineIsTold) {
  TriangleMesh mesh = box();
  mesh.points.push_back({0, 0, 0});
  mesh.points.push_back({1, 1, 1});
  mesh.points.push_back({2, 2, 2});
  const int first = static_cast<int>(mesh.points.size()) - 3;
  mesh.triangles.push_back({first, first + 1, first + 2});
  EXPECT_THAT(complaint_about(mesh), HasSubstr("at (0, 0, 0) has no area, its corners lie on one line"));
}

TEST(HullMesh, WeldingMakesOneMeshOfLooseTriangles) {
  const TriangleMesh mesh = qvslv::icosphere_mesh(1, 2);
  const TriangleMesh soup = soup_of(mesh);
  ASSERT_EQ(soup.points.size(), 3 * mesh.triangles.size());
  EXPECT_THAT(complaint_about(soup), HasSubstr("not closed"));
  const TriangleMesh again = qvslv::welded(soup);
  EXPECT_EQ(again.points.size(), mesh.points.size());
  expect_closed_like_a_sphere(again);
}

TEST(HullMesh, WeldingForgivesRoundingAndDropsWhatCollapses) {
  TriangleMesh soup = soup_of(box());
  double sign = 1;
  for (Vec3& point : soup.points) point[0] += (sign = -sign) * 1e-7;  // the mesh is 4.6 across
  soup.points.push_back({0, 0, 0.5});
  const int extra = static_cast<int>(soup.points.size()) - 1;
  soup.triangles.push_back({extra, extra, 0});
  const TriangleMesh mesh = qvslv::welded(soup);
  EXPECT_EQ(mesh.points.size(), box().points.size());
  EXPECT_EQ(mesh.triangles.size(), box().triangles.size());
  expect_closed_like_a_sphere(mesh);
}

TEST(HullMesh, SlicesShareTheTrianglesAndTogetherEncloseTheSame) {
  const TriangleMesh mesh = qvslv::barge_mesh({6, 2, 1}, 1, 1, {9, 3, 2});
  for (const int parts : {1, 2, 5}) {
    const std::vector<TriangleMesh> slices = qvslv::sliced(mesh, parts);
    ASSERT_EQ(slices.size(), static_cast<size_t>(parts));
    size_t triangles = 0;
    double volumes = 0, area = 0;
    for (const TriangleMesh& slice : slices) {
      triangles += slice.triangles.size();
      volumes += six_volumes(slice);
      area += qvslv::calc_area(slice);
      EXPECT_NEAR(static_cast<double>(slice.triangles.size()), static_cast<double>(mesh.triangles.size()) / parts, 1);
    }
    EXPECT_EQ(triangles, mesh.triangles.size());
    EXPECT_NEAR(volumes / 6, 10, k_rounding);
    EXPECT_NEAR(area, qvslv::calc_area(mesh), k_rounding);
  }
}

TEST(HullMesh, SlicesFollowEachOtherAlongTheLongerSide) {
  for (const bool along_y : {false, true}) {
    const TriangleMesh mesh = along_y ? qvslv::round_mesh(1, 8, 1, 12, 6) : qvslv::round_mesh(1, 8, 0, 12, 6);
    const std::vector<TriangleMesh> slices = qvslv::sliced(mesh, 2);
    const size_t axis = along_y ? 1 : 0;
    EXPECT_LE(qvslv::calc_measures(slices[0]).high[axis], 2);
    EXPECT_GE(qvslv::calc_measures(slices[1]).low[axis], -2);
  }
}

/// Files are written here by hand, so that reader and test have nothing in common.
class MeshFile : public testing::Test {
protected:
  std::string write(const std::string& name, const std::string& text) {
    std::string path = testing::TempDir() + name;
    std::ofstream(path, std::ios::binary) << text;
    return path;
  }
  std::string complaint_about_file(const std::string& path) {
    try {
      qvslv::read_mesh_file(path);
    } catch (const qvslv::MeshError& error) {
      return error.what();
    }
    return "none";
  }
  void expect_box(const std::string& path) {
    const TriangleMesh mesh = qvslv::read_mesh_file(path);
    expect_closed_like_a_sphere(mesh);
    const MeshMeasures measures = qvslv::calc_measures(mesh);
    EXPECT_NEAR(measures.volume, 8, 8 * k_float_rounding);
    EXPECT_NEAR(measures.low[0], -2, k_float_rounding);
    EXPECT_NEAR(measures.high[2], 0.5, k_float_rounding);
  }
};

std::string ascii_stl(const TriangleMesh& mesh) {
  std::ostringstream text;
  text.imbue(std::locale::classic());
  text << "solid box\n";
  for (const auto& triangle : mesh.triangles) {
    text << " facet normal 0 0 0\n  outer loop\n";
    for (const int corner : triangle) {
      const Vec3& p = mesh.points[static_cast<size_t>(corner)];
      text << "   vertex " << p[0] << " " << p[1] << " " << p[2] << "\n";
    }
    text << "  endloop\n endfacet\n";
  }
  text << "endsolid box\n";
  return text.str();
}

std::string binary_stl(const TriangleMesh& mesh) {
  std::string text(80, ' ');
  const auto append = [&](const auto& value) {
    char bytes[sizeof value];
    std::memcpy(bytes, &value, sizeof value);
    text.append(bytes, sizeof value);
  };
  append(static_cast<std::uint32_t>(mesh.triangles.size()));
  for (const auto& triangle : mesh.triangles) {
    for (int k = 0; k < 3; ++k) append(0.0F);
    for (const int corner : triangle)
      for (const double coordinate : mesh.points[static_cast<size_t>(corner)]) append(static_cast<float>(coordinate));
    append(std::uint16_t{0});
  }
  return text;
}

TEST_F(MeshFile, StlIsReadAsTextAndBinaryAndWelded) {
  expect_box(write("box_ascii.stl", ascii_stl(box())));
  expect_box(write("box_binary.STL", binary_stl(box())));
}

TEST_F(MeshFile, PolygonsOfAnObjFileBecomeTriangles) {
  const std::string text =
      "v -2 -1 -0.5\nv 2 -1 -0.5\nv 2 1 -0.5\nv -2 1 -0.5\nv -2 -1 0.5\nv 2 -1 0.5\nv 2 1 0.5\nv -2 1 0.5\n"
      "f 4 3 2 1\nf 5 6 7 8\nf 1 2 6 5\nf 3 4 8 7\nf 2 3 7 6\nf 4 1 5 8\n";
  const std::string path = write("box.obj", text);
  expect_box(path);
  EXPECT_EQ(qvslv::read_mesh_file(path).triangles.size(), 12u);
}

TEST_F(MeshFile, PlyIsReadAsText) {
  const TriangleMesh mesh = box();
  std::ostringstream text;
  text.imbue(std::locale::classic());
  text << "ply\nformat ascii 1.0\nelement vertex " << mesh.points.size()
       << "\nproperty float x\nproperty float y\nproperty float z\nelement face " << mesh.triangles.size()
       << "\nproperty list uchar int vertex_indices\nend_header\n";
  for (const Vec3& p : mesh.points) text << p[0] << " " << p[1] << " " << p[2] << "\n";
  for (const auto& t : mesh.triangles) text << "3 " << t[0] << " " << t[1] << " " << t[2] << "\n";
  expect_box(write("box.ply", text.str()));
}

TEST_F(MeshFile, FileThatIsNoMeshIsRefusedWithTheReason) {
  const std::string step = write("box.step", "ISO-10303-21;\n");
  EXPECT_EQ(complaint_about_file(step), "'" + step + "' is no mesh file known here; known: .stl, .obj, .ply");
  const std::string broken = write("broken.ply", "this is no mesh\n");
  EXPECT_THAT(complaint_about_file(broken), HasSubstr("'" + broken + "' cannot be read: "));
  const std::string points = write("points.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\n");
  EXPECT_THAT(complaint_about_file(points), HasSubstr(points));
}

}  // namespace
