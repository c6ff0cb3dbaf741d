#include <gmock/gmock.h>

#include <filesystem>
#include <string>

#include "tests/cli/process.h"

namespace {

namespace fs = std::filesystem;

struct example_case {
  const char* example;
  const char* end_time;
  const char* shares;  ///< what can be computed side by side
};
constexpr example_case k_cases[] = {
    {"tracked_vehicle", "0.35", "two tracks on roads of their own, with their drives"},
    {"capsize_test", "4", "two hulls"},
    {"plate_sinkage", "1", "two plates on one road"},
};

std::string results_on(const fs::path& folder, const std::string& threads, const std::string& end_time) {
  const CommandResult result = run_command(
      {"run", "model.toml", "--out", "on" + threads, "--threads", threads, "--set", "simulation.end_time=" + end_time},
      folder);
  EXPECT_EQ(result.code, 0) << result.err;
  return file_text(folder / ("on" + threads) / "results.csv");
}

TEST(ThreadsOfARun, GiveTheBitsOfASingleOne) {
  for (const auto& [example, end_time, shares] : k_cases) {
    const fs::path folder = fresh_folder() / example;
    fs::create_directories(folder);
    fs::copy(fs::path(QVBRISK_EXAMPLES) / example / "model.toml", folder / "model.toml");
    const std::string alone = results_on(folder, "1", end_time);
    EXPECT_GT(alone.size(), 1000u);
    for (const char* threads : {"2", "4"})
      EXPECT_EQ(results_on(folder, threads, end_time), alone) << example << " (" << shares << "), threads " << threads;
  }
}

TEST(ThreadsOfARun, AreRefusedBelow1AndAbove256) {
  for (const char* threads : {"0", "-2", "257", "many"}) {
    const CommandResult result = run_command({"run", "model.toml", "--threads", threads}, fresh_folder());
    EXPECT_NE(result.code, 0) << threads;
    EXPECT_THAT(result.err, testing::HasSubstr("--threads")) << threads;
  }
}

}  // namespace
