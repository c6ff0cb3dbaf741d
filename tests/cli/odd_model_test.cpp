#include <gmock/gmock.h>

#include <algorithm>

#include "tests/cli/process.h"
#include "tests/solver/checks/odd_models.h"
#include "tests/support/exact_text.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

TEST(CheckCommand, WarnsOfEveryThingThatLooksWrongAndStrictRefusesIt) {
  const fs::path folder = fresh_folder();
  for (const odd_model& model : odd_models())
    for (const oddity& row : model.oddities) {
      SCOPED_TRACE(row.why);
      write_text(folder / "model.toml", odd(model, row, row.to));
      const CommandResult result = run_command({"check", "model.toml"}, folder);
      EXPECT_EQ(result.code, 0);
      EXPECT_THAT(result.err, HasSubstr(std::string("warning: ") + row.message + "\n"));
      EXPECT_THAT(result.out, HasSubstr("can be used; see the warnings\n"));
      const CommandResult strict = run_command({"check", "model.toml", "--strict"}, folder);
      EXPECT_EQ(strict.code, 2);
      EXPECT_THAT(strict.err, HasSubstr(std::string("error: ") + row.message + "\n"));
    }
}

/// A box of 4 x 2 x 2, with triangles of half its height, towed through still water.
std::string towed_box(double draught, double speed) {
  return R"toml(gravity = [0, 0, -9.81]
[simulation]
end_time = 0.02
output_step = 0.01
[[wave]]
name = "sea"
file = "sea.wave"
kind = "still"
extent = 100
[[current]]
name = "none"
file = "none.current"
along_x = { profile = "uniform", speed = 0.0 }
[[body]]
name = "box"
mass = 1000
inertia = [1000, 1000, 1000]
[[joint]]
name = "tow"
type = "slider"
body = "box"
position = [50, 0, )toml" +
         qvtest::exact_text(1 - draught) + R"toml(]
axis = "x"
motion = ")toml" +
         qvtest::exact_text(speed) + R"toml(*t"
[[element]]
name = "hull"
type = "hull"
body = "box"
mesh = { shape = "box", size = [4, 2, 2], divisions = [4, 2, 2] }
wave = "sea"
current = "none"
density = 1000
)toml";
}

TEST(CoarseWaterline, GivesDragWithinTheBoundsThatTheWarningNamesAndComesNearToThem) {
  const double panel = 1, speed = 2, area = 2, density = 1000;
  const fs::path folder = fresh_folder();
  double least = 1, most = 1;
  for (const double draught : {0.04, 0.4, 0.96, 1.04, 1.5, 1.96}) {
    write_text(folder / "model.toml", towed_box(draught, speed));
    ASSERT_EQ(run_command({"run", "model.toml", "--out", "o", "--quiet"}, folder).code, 0);
    const double drag = -ResultTable(folder / "o/results.csv")["hull.normal_drag_force_x [N]"].back();
    const double share = drag / (0.5 * density * speed * speed * area * draught), coarseness = panel / draught;
    EXPECT_GE(share, 1 - coarseness - 1e-9) << draught;
    EXPECT_LE(share, 1 + 0.5 * coarseness + 1e-9) << draught;
    least = std::min(least, share);
    most = std::max(most, share);
  }
  EXPECT_LT(least, 0.6);
  EXPECT_GT(most, 1.3);
}

TEST(CheckCommand, FindsNothingWrongInAnyExample) {
  for (const fs::directory_entry& example : fs::directory_iterator(QVBRISK_EXAMPLES)) {
    if (!example.is_directory()) continue;
    const CommandResult result = run_command({"check", (example.path() / "model.toml").string()}, fresh_folder());
    EXPECT_EQ(result.code, 0) << example.path();
    EXPECT_EQ(result.err, "") << example.path();
    EXPECT_THAT(result.out, testing::EndsWith("ok\n")) << example.path();
  }
}

}  // namespace
