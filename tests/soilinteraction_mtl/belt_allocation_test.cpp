#include <gtest/gtest.h>

#include <limits>

#include "qvbrisk/subroutines.h"
#include "tests/soilinteraction/allocation_control.h"
#include "tests/soilinteraction_mtl/belt_scene.h"

// Memory: an evaluation takes none, and a set-up that gets none says so and can be tried again.

namespace qvtest {
namespace {

/// A host that takes no memory itself: answers from the markers of a scene, at their places by id.
class FrugalTrackHost : public qvslv::ServiceHost {
public:
  marker_state at[32];
  double belt_speed = 0.0;
  std::wstring file;
  int reports = 0, stops = 0, last_count = -1;
  bool stop_had_text = false;
  char first_message[200] = {};

  bool vector_quantity(const char* name, const int* ids, int nids, double* values, int&) override {
    const marker_state& m = at[ids[0]];
    if (nids == 2) {
      for (std::size_t c = 0; c < 9; ++c) values[c] = m.axes[c];
      return true;
    }
    const marker_state& from = at[ids[1]];
    const vec3& of = name[1] == 'D' ? m.position : name[0] == 'T' ? m.velocity : m.angular_velocity;
    const vec3& less = name[1] == 'D' ? from.position : name[0] == 'T' ? from.velocity : from.angular_velocity;
    const vec3 seen = transposed_times(at[ids[2]].axes, {of[0] - less[0], of[1] - less[1], of[2] - less[2]});
    for (std::size_t c = 0; c < 3; ++c) values[c] = seen[c];
    return true;
  }
  bool scalar_quantity(const char*, const int*, int, double& value) override {
    value = belt_speed;
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
};

constexpr int k_nodes = 3;

soil_mesh level_with_a_hole() {
  soil_mesh mesh = flat_mesh(8, 8, 0.5, -1.0, -2.0);
  mesh.triangles.erase(mesh.triangles.begin(), mesh.triangles.begin() + 2);
  return mesh;
}

/// A road file, a track on it and a frugal host.
struct frugal_track {
  FrugalTrackHost host;
  std::vector<double> par, result;
  std::wstring file;

  explicit frugal_track(module_state module = module_state::sized) {
    const BeltScene scene(level_with_a_hole(), loam(), circles(), module);
    par = scene.parameters.list();
    result.assign(scene.parameters.results(), 0.0);
    file.assign(scene.file.begin(), scene.file.end());
    put(0.0, 0.0);
  }
  static std::vector<circle> circles() { return level_circles(k_nodes, 0.75, 0.25, -0.05); }
  void put(double x, double z) {
    for (int i = 0; i < k_nodes; ++i) host.at[k_belt_first_node + i].position = {0.75 * i + x, 0.0, 0.2 + z};
  }
  void call(int iflag) {
    qvsoil_interaction_mtl(static_cast<qvslv::ServiceHost*>(&host), 0.01, par.data(), 0, 0, iflag, result.data());
  }
  /// A set-up call; the host has the file's name ready.
  void set_up() {
    host.file = file;
    call(1);
  }
};

TEST(TrackEvaluation, AllocatesNothing) {
  frugal_track track;
  track.set_up();
  ASSERT_GT(track.result[4], 0.1);
  track.host.belt_speed = 1.0;
  const std::pair<double, double> places[] = {{0.0, 0.0}, {0.1, 0.0},  {0.0, 0.5},    {-1.5, 0.0},
                                              {1.0, 0.0}, {99.0, 0.0}, {0.0, -1e300}, {0.2, -0.1}};
  for (const auto& [x, z] : places) {
    track.put(x, z);
    for (const int iflag : {0, 2, 0, 2}) {
      long count;
      {
        const allocation_watch watch;
        track.call(iflag);
        count = watch.count();
      }
      EXPECT_EQ(count, 0) << "at " << x << ", " << z << ", iflag " << iflag;
    }
  }
  EXPECT_EQ(track.host.reports, 0);
}

TEST(TrackEvaluation, OfOutputsAndEquationsAllocatesNothing) {
  frugal_track track;
  track.set_up();
  const double road = track.par[1];
  double shear[] = {0, road}, normal[] = {0, 1, road}, sum[] = {road, 0}, velocity[] = {1, 2.0, 11};
  double eom[15] = {0, 0, 11, 1, 1, road, 1, 2, 3, 4, 1, 1, 0, 0, 0}, result[6] = {};
  void* handle = static_cast<qvslv::ServiceHost*>(&track.host);
  double normal_force = 0.0;
  long count;
  {
    const allocation_watch watch;
    qvsoil_shearforce_mtl(handle, 0.0, shear, 2, 0, 2, result);
    qvsoil_normalforce_mtl(handle, 0.0, normal, 3, 0, 2, result);
    normal_force = result[2];
    qvsoil_interaction_mtl_sum(handle, 0.0, sum, 2, 0, 2, result);
    qvsoil_mtl_eom(handle, 0.0, eom, 15, 0, 2, result);
    qvsoil_mtl_velocity(handle, 0.0, velocity, 3, 0, 2, result);
    count = watch.count();
  }
  EXPECT_EQ(count, 0);
  EXPECT_GT(normal_force, 0.0);
  EXPECT_EQ(track.host.reports, 0);
}

/// What a set-up call with failing allocations may end in. A stopped call goes on and may report on top of that, when
/// the memory fails there too.
enum class ending { in_force, reported, reported_without_text, stopped };

ending ending_of(const frugal_track& track) {
  const FrugalTrackHost& host = track.host;
  EXPECT_LE(host.reports, 1);
  EXPECT_LE(host.stops, 1);
  if (host.stops == 1) {
    EXPECT_FALSE(host.stop_had_text);
    EXPECT_EQ(track.result[4], 0.0) << "a road without cells";
    return ending::stopped;
  }
  if (host.reports == 0) return ending::in_force;
  EXPECT_EQ(track.result[4], 0.0);
  if (host.last_count == 0) return ending::reported_without_text;
  EXPECT_EQ(host.last_count, 1);
  EXPECT_STREQ(host.first_message, "SOILINTERACTION MTL ERROR : std::bad_alloc");
  return ending::reported;
}

/// Allocation `first` (to `last`) of a set-up call fails. Returns how it ended; a following set-up call must work,
/// unless the road was read as far as it went and stays so.
ending set_up_with_failure(long first, long last, bool& refused, module_state module = module_state::sized) {
  frugal_track track(module);
  track.host.file = track.file;
  {
    const allocation_watch watch(first, last);
    track.call(1);
    refused = watch.failed() > 0;
  }
  const ending end = ending_of(track);
  EXPECT_LE(track.host.reports + track.host.stops, first == last ? 1 : 2) << "one fault, one word";
  track.host.reports = track.host.stops = 0;
  track.set_up();
  EXPECT_EQ(track.host.reports, 0);
  EXPECT_EQ(track.host.stops, 0);
  EXPECT_NEAR(track.result[4], end == ending::stopped ? 0.0 : 0.75, 1e-14);
  return end;
}

TEST(TrackSetUpWithoutMemory, ReportsOrStopsWhicheverAllocationFailsAndCanBeTriedAgain) {
  long endings[4] = {};
  long n = 0;
  for (bool refused = true; refused; ++n) {
    const ending end = set_up_with_failure(n, n, refused);
    ++endings[static_cast<int>(end)];
    EXPECT_EQ(end == ending::in_force, !refused) << "allocation " << n;
    ASSERT_LT(n, 800);
  }
  EXPECT_GT(n, 20);
  EXPECT_EQ(endings[static_cast<int>(ending::in_force)], 1) << "the last round";
  EXPECT_GT(endings[static_cast<int>(ending::reported)], 10) << "in the module";
  EXPECT_GT(endings[static_cast<int>(ending::stopped)], 2) << "in the reader";
}

TEST(TrackSetUpWithoutMemory, EvenWithoutMemoryForTheTextReportsSomethingAndCanBeTriedAgain) {
  long endings[4] = {};
  long n = 0;
  for (bool refused = true; refused; ++n) {
    ++endings[static_cast<int>(set_up_with_failure(n, allocation_watch::k_never, refused))];
    ASSERT_LT(n, 800);
  }
  EXPECT_EQ(endings[static_cast<int>(ending::in_force)], 1) << "the last round";
  EXPECT_EQ(endings[static_cast<int>(ending::reported)], 0);
  EXPECT_GT(endings[static_cast<int>(ending::reported_without_text)], 2);
}

/// The first set-up of a process sizes the containers of all roads. Its failures must leave containers that a later
/// call can size, so each is tried in a process of its own.
TEST(FirstTrackSetUpWithoutMemory, LeavesContainersThatALaterCallSizes) {
  if (module_may_be_sized()) GTEST_SKIP() << "the containers stand already in this process";
  for (const long n : {0L, 1L, 2L, 3L, 100L, 1000L, 3000L, 5000L, 6500L}) {
    EXPECT_EXIT(
        {
          bool refused = false;
          set_up_with_failure(n, n, refused, module_state::untouched);
          std::exit(testing::Test::HasFailure() || !refused ? 1 : 0);
        },
        testing::ExitedWithCode(0), "")
        << "allocation " << n;
  }
}

TEST(TrackFaultWithoutMemory, IsReportedWithoutAText) {
  frugal_track track;
  track.set_up();
  track.par[9] = 1.0;
  {
    const allocation_watch watch(0, allocation_watch::k_never);
    track.call(0);
  }
  EXPECT_EQ(track.host.reports, 1);
  EXPECT_EQ(track.host.last_count, 0);
  track.call(0);
  EXPECT_STREQ(track.host.first_message,
               "SOILINTERACTION MTL ERROR : The grid count along a span (parameter 9) is 1; it must be at least 2.");
}

/// A call with a parameter that is no number, whose first allocation, that of the fault's text, fails.
std::string said_without_memory(FrugalTrackHost& host, subroutine_to_call subroutine) {
  double par[15] = {}, result[6] = {};
  par[0] = std::numeric_limits<double>::quiet_NaN();
  host.last_count = -1;
  {
    const allocation_watch watch(0, 0);
    subroutine(static_cast<qvslv::ServiceHost*>(&host), 0.0, par, 15, 0, 2, result);
  }
  return std::to_string(host.last_count) + " " + host.first_message;
}

TEST(TrackStandardExceptions, OfTheStateEquationsHavePrefixesOfTheirOwnAndThoseOfTheOutputsNoText) {
  FrugalTrackHost host;
  EXPECT_EQ(said_without_memory(host, qvsoil_mtl_eom), "1 SOILINTERACTION MTL(EOM) ERROR : std::bad_alloc");
  EXPECT_EQ(said_without_memory(host, qvsoil_mtl_velocity), "1 SOILINTERACTION MTL(VELOCITY) ERROR : std::bad_alloc");
  for (const subroutine_to_call output : {qvsoil_shearforce_mtl, qvsoil_normalforce_mtl, qvsoil_interaction_mtl_sum}) {
    EXPECT_EQ(said_without_memory(host, output), "0 ") << "they have no handler of their own";
  }
}

}  // namespace
}  // namespace qvtest
