#include <gtest/gtest.h>

#include "qvbrisk/subroutines.h"
#include "tests/soilinteraction/allocation_control.h"
#include "tests/soilinteraction/soil_scene.h"

// Memory: an evaluation takes none, and a set-up that gets none says so and can be tried again.

namespace qvtest {
namespace {

const qvref::body k_plate = {1, 0.5, 0.25, 4, 3};

/// A host that takes no memory itself: markers only, answers from fixed records.
class FrugalHost : public qvslv::ServiceHost {
public:
  marker_state body, road;
  std::wstring file;
  int reports = 0, stops = 0, last_count = -1;
  bool stop_had_text = false;
  char first_message[200] = {};

  bool vector_quantity(const char* name, const int* ids, int nids, double* values, int&) override {
    const marker_state ground;
    const marker_state& m = state_of(ids[0], ground);
    const marker_state& axes = state_of(ids[nids - 1], ground);
    if (nids == 2) {
      for (std::size_t c = 0; c < 9; ++c) values[c] = m.axes[c];
      return true;
    }
    const marker_state& from = state_of(ids[1], ground);
    const vec3& of = name[1] == 'D' ? m.position : name[0] == 'T' ? m.velocity : m.angular_velocity;
    const vec3& less = name[1] == 'D' ? from.position : name[0] == 'T' ? from.velocity : from.angular_velocity;
    const vec3 seen = transposed_times(axes.axes, {of[0] - less[0], of[1] - less[1], of[2] - less[2]});
    for (std::size_t c = 0; c < 3; ++c) values[c] = seen[c];
    return true;
  }
  bool string_entity(int, std::wstring& text) override {
    text.swap(file);  // a fault in the middle of a copy would be this host's, not the library's
    return true;
  }
  void stop(const char* message) override {
    ++stops;
    stop_had_text = message != nullptr;
  }
  void throw_error(const char*, int count, char** messages) override {
    ++reports;
    last_count = count;
    first_message[0] = '\0';
    if (count > 0) std::snprintf(first_message, sizeof first_message, "%s", messages[0]);
    for (int i = 0; i < count; ++i) delete[] messages[i];
  }

private:
  const marker_state& state_of(int id, const marker_state& ground) const {
    return id == k_body_marker ? body : id == k_road_marker ? road : ground;
  }
};

/// A road file, an element on it and a frugal host.
struct frugal_scene {
  FrugalHost host;
  std::vector<double> par, result;
  std::wstring file;

  explicit frugal_scene(const soil_mesh& mesh) {
    const SoilScene scene(mesh, loam(), k_plate);
    par = scene.parameters.list();
    result.assign(7 + 8 * 12, 0.0);
    file.assign(scene.file.begin(), scene.file.end());
    host.body.position = {2.0, 2.0, -0.05};
  }
  void call(int iflag) {
    qvsoil_interaction(static_cast<qvslv::ServiceHost*>(&host), 0.0, par.data(), 15, 0, iflag, result.data());
  }
  /// A set-up call; the host has the file's name ready.
  void set_up() {
    host.file = file;
    call(1);
  }
};

soil_mesh level_with_a_hole() {
  soil_mesh mesh = flat_mesh(8, 8, 0.5);
  mesh.triangles.erase(mesh.triangles.begin(), mesh.triangles.begin() + 2);
  return mesh;
}

TEST(Evaluation, AllocatesNothing) {
  frugal_scene scene(level_with_a_hole());
  scene.set_up();
  ASSERT_GT(scene.result[6], 0.1);
  const vec3 places[] = {{2.0, 2.0, -0.05}, {2.1, 2.0, -0.05}, {2.0, 2.0, 0.5},    {0.25, 0.25, -0.05},
                         {4.0, 2.0, -0.05}, {99.0, 0, -0.05},  {2.0, 2.0, -1e300}, {2.2, 2.1, -0.1}};
  for (const vec3& place : places) {
    scene.host.body.position = place;
    for (const int iflag : {0, 2, 0, 2}) {
      long count;
      {
        const allocation_watch watch;
        scene.call(iflag);
        count = watch.count();
      }
      EXPECT_EQ(count, 0) << "at " << place[0] << ", " << place[1] << ", " << place[2] << ", iflag " << iflag;
    }
  }
  EXPECT_EQ(scene.host.reports, 0);
}

TEST(Evaluation, OfTheSumsAllocatesNothing) {
  frugal_scene scene(level_with_a_hole());
  scene.set_up();
  double par[] = {scene.par[3]}, sums[4] = {};
  long count;
  {
    const allocation_watch watch;
    qvsoil_interaction_Sum(static_cast<qvslv::ServiceHost*>(&scene.host), 0.0, par, 1, 0, 2, sums);
    count = watch.count();
  }
  EXPECT_EQ(count, 0);
  EXPECT_GT(sums[2], 0.0);
}

/// What a set-up call with failing allocations may end in. A stopped call goes on and may report on top of that, when
/// the memory fails there too.
enum class ending { in_force, reported, reported_without_text, stopped };

ending ending_of(const frugal_scene& scene) {
  const FrugalHost& host = scene.host;
  EXPECT_LE(host.reports, 1);
  EXPECT_LE(host.stops, 1);
  if (host.stops == 1) {
    EXPECT_FALSE(host.stop_had_text);
    EXPECT_EQ(scene.result[6], 0.0) << "a road without cells";
    return ending::stopped;
  }
  if (host.reports == 0) return ending::in_force;
  EXPECT_EQ(scene.result[6], 0.0);
  if (host.last_count == 0) return ending::reported_without_text;
  EXPECT_EQ(host.last_count, 1);
  EXPECT_STREQ(host.first_message, "SOILINTERACTION ERROR : std::bad_alloc");
  return ending::reported;
}

/// Allocation `first` (to `last`) of a set-up call fails. Returns how it ended; a following set-up call must work,
/// unless the road was read as far as it went and stays so.
ending set_up_with_failure(long first, long last, bool& refused) {
  frugal_scene scene(level_with_a_hole());
  scene.host.file = scene.file;
  {
    const allocation_watch watch(first, last);
    scene.call(1);
    refused = watch.failed() > 0;
  }
  const ending end = ending_of(scene);
  EXPECT_LE(scene.host.reports + scene.host.stops, first == last ? 1 : 2) << "one fault, one word";
  scene.host.reports = scene.host.stops = 0;
  scene.set_up();
  EXPECT_EQ(scene.host.reports, 0);
  EXPECT_EQ(scene.host.stops, 0);
  if (end == ending::stopped) {
    EXPECT_EQ(scene.result[6], 0.0);
  } else {
    EXPECT_NEAR(scene.result[6], 0.125, 1e-15);
  }
  return end;
}

TEST(SetUpWithoutMemory, ReportsOrStopsWhicheverAllocationFailsAndCanBeTriedAgain) {
  long endings[4] = {};
  long n = 0;
  for (bool refused = true; refused; ++n) {
    const ending end = set_up_with_failure(n, n, refused);
    ++endings[static_cast<int>(end)];
    EXPECT_EQ(end == ending::in_force, !refused) << "allocation " << n;
    ASSERT_LT(n, 2000);
  }
  EXPECT_GT(n, 10);
  EXPECT_EQ(endings[static_cast<int>(ending::in_force)], 1) << "the last round";
  EXPECT_GT(endings[static_cast<int>(ending::reported)], 2) << "in the module";
  EXPECT_GT(endings[static_cast<int>(ending::stopped)], 2) << "in the reader";
}

TEST(SetUpWithoutMemory, EvenWithoutMemoryForTheTextReportsSomethingAndCanBeTriedAgain) {
  long endings[4] = {};
  long n = 0;
  for (bool refused = true; refused; ++n) {
    ++endings[static_cast<int>(set_up_with_failure(n, allocation_watch::k_never, refused))];
    ASSERT_LT(n, 2000);
  }
  EXPECT_EQ(endings[static_cast<int>(ending::in_force)], 1) << "the last round";
  EXPECT_EQ(endings[static_cast<int>(ending::reported)], 0);
  EXPECT_GT(endings[static_cast<int>(ending::reported_without_text)], 2);
}

/// The first set-up of a process sizes the tables of all roads. Its failures must leave tables that a later call can
/// size, so each is tried in a process of its own.
TEST(FirstSetUpWithoutMemory, LeavesTablesThatALaterCallSizes) {
  if (module_is_in_use()) GTEST_SKIP() << "the tables stand already in this process";
  for (long n = 0; n < 12; ++n) {
    EXPECT_EXIT(
        {
          bool refused = false;
          set_up_with_failure(n, n, refused);
          std::exit(testing::Test::HasFailure() || !refused ? 1 : 0);
        },
        testing::ExitedWithCode(0), "")
        << "allocation " << n;
  }
}

TEST(FaultWithoutMemory, IsReportedWithoutAText) {
  frugal_scene scene(level_with_a_hole());
  scene.set_up();
  scene.par[11] = 0.0;  // no width
  {
    const allocation_watch watch(0, allocation_watch::k_never);
    scene.call(0);
  }
  EXPECT_EQ(scene.host.reports, 1);
  EXPECT_EQ(scene.host.last_count, 0);
  scene.call(0);
  EXPECT_STREQ(scene.host.first_message, "SOILINTERACTION ERROR : THE WIDTH OF BODY SHOULD BE GREATER THAN ZERO.");
}

}  // namespace
}  // namespace qvtest
