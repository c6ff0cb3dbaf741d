#include <gtest/gtest.h>

#include "tests/soilinteraction/soil_scene.h"

// A road whose reading a standard exception broke off, and a host that lies about a string's length. This program is
// linked so that the library's calls of stop_solver and get_string_s come here first (--wrap), which is how the three
// integers can be seen and the length be forged.

namespace {

struct stop_call {
  int a, b, c;
  bool without_message;
  int status;
};
std::vector<stop_call> stop_calls;
const int* forged_length = nullptr;  // null: the host's own

}  // namespace

extern "C" {
void __real_stop_solver(void* handle, int a, int b, int c, const char* message, int* status);
void __wrap_stop_solver(void* handle, int a, int b, int c, const char* message, int* status) {
  stop_calls.push_back({a, b, c, message == nullptr, *status});
  __real_stop_solver(handle, a, b, c, message, status);
  *status = 1;  // not inspected afterwards
}
void __real_get_string_s(void* handle, int id, int* length, wchar_t* text, int* err);
void __wrap_get_string_s(void* handle, int id, int* length, wchar_t* text, int* err) {
  __real_get_string_s(handle, id, length, text, err);
  if (forged_length != nullptr) *length = *forged_length;
}
}

namespace qvtest {
namespace {

/// A file whose two triangles ask for a grid of some 10^18 cells: no vector may hold as many.
std::string endless_road() {
  soil_mesh mesh = flat_mesh(1, 1, 1.0);
  mesh.nodes.push_back({1e9, 1e9, 0.0});
  return rdf_text(mesh, loam());
}

TEST(RoadWhoseReadingBrokeOff, StopsTheSolverWithoutATextAndTheCallGoesOnOverARoadWithoutCells) {
  stop_calls.clear();
  SoilScene scene(flat_mesh(4, 4, 1.0), loam(), {1, 0.5, 0.25, 3, 2});
  write_text(scene.file, endless_road());
  scene.body().position = {0.5, 0.5, -0.1};
  scene.host.log = true;
  scene.call(1);
  ASSERT_EQ(stop_calls.size(), 1U);
  EXPECT_EQ(stop_calls[0].a, 1);
  EXPECT_EQ(stop_calls[0].b, 0);
  EXPECT_EQ(stop_calls[0].c, 1);
  EXPECT_TRUE(stop_calls[0].without_message);
  EXPECT_EQ(stop_calls[0].status, 0);
  EXPECT_EQ(scene.take_report(), "") << "the call itself succeeds";
  for (std::size_t entry = 0; entry < 7; ++entry) EXPECT_EQ(scene.total(entry), 0.0);
  EXPECT_EQ(scene.point(2, 1, 3), 0.75) << "the points still have their places";
  EXPECT_EQ(scene.point(2, 1, 6), 0.0);
}

TEST(RoadWhoseReadingBrokeOff, IsNotReadAgain) {
  stop_calls.clear();
  SoilScene scene(flat_mesh(4, 4, 1.0), loam(), {1, 0.5, 0.25, 3, 2});
  const std::string good = rdf_text(flat_mesh(4, 4, 1.0), loam());
  write_text(scene.file, endless_road());
  scene.body().position = {0.5, 0.5, -0.1};
  scene.host.log = true;
  scene.call(1);
  write_text(scene.file, good);
  for (const int iflag : {1, 0, 2}) {
    scene.call(iflag);
    EXPECT_EQ(scene.area(), 0.0);
  }
  EXPECT_EQ(stop_calls.size(), 1U);
  EXPECT_EQ(std::count(scene.host.requests.begin(), scene.host.requests.end(), "string 4"), 1);
}

TEST(FileName, WithALengthThatTheBufferCannotHaveIsRefusedAndAskedForAgain) {
  SoilScene scene(flat_mesh(4, 4, 1.0), loam(), {1, 0.5, 0.25, 3, 2});
  scene.body().position = {1.5, 1.5, -0.1};
  for (const int length : {1025, -1, 2147483647}) {
    forged_length = &length;
    scene.call(1);
    forged_length = nullptr;
    EXPECT_EQ(scene.take_report(), "SOILINTERACTION ERROR : The length of string 4 is " + std::to_string(length) +
                                       "; it must lie between 0 and 1024.");
    EXPECT_EQ(scene.area(), 0.0);
  }
  scene.call(1);
  EXPECT_EQ(scene.take_report(), "");
  EXPECT_GT(scene.area(), 0.1);
}

}  // namespace
}  // namespace qvtest
