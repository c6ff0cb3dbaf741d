#include <gmock/gmock.h>
#include <unistd.h>

#include <nlohmann/json.hpp>

#include "tests/cli/process.h"

// Where the command is called, what lies there, and whether the model's folder can be written make no difference.

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> examples() {
  std::vector<fs::path> folders;
  for (const auto& entry : fs::directory_iterator(QVBRISK_EXAMPLES))
    if (fs::exists(entry.path() / "model.toml")) folders.push_back(entry.path());
  return folders;
}

std::vector<std::string> arguments(const fs::path& model, const fs::path& out) {
  // A moment of each: long enough to read every file and to feel the ground and the water.
  return {"run",
          model.string(),
          "--out",
          out.string(),
          "-q",
          "--set",
          "simulation.end_time=0.5",
          "--set",
          "simulation.output_step=0.25"};
}

/// A copy of a folder that nobody may write into, and who is not allowed to ignore that.
fs::path read_only_copy(const fs::path& folder, const fs::path& to) {
  fs::copy(folder, to, fs::copy_options::recursive);
  for (const auto& entry : fs::directory_iterator(to)) fs::permissions(entry.path(), fs::perms(0444));
  fs::permissions(to, fs::perms(0555));
  return to;
}

/// The command and its libraries where anybody may run them: the build may lie in a folder of the administrator's.
fs::path copied_command(const fs::path& to) {
  const fs::path command = QVBRISK_COMMAND_PATH, libraries = command.parent_path().parent_path() / "lib";
  fs::create_directories(to / "bin");
  fs::create_directories(to / "lib");
  fs::copy(command, to / "bin");
  for (const char* library : {"libqvslv.so", "libqvslv_engine.so", "libqvslv_polygons.so", "libqvbrisk.so"})
    fs::copy(libraries / library, to / "lib");
  return to / "bin" / command.filename();
}

/// Runs a program as a user who must respect permissions, even if the tests run as the system's administrator.
CommandResult run_as_user(const fs::path& program, const std::vector<std::string>& arguments, const fs::path& folder) {
  if (geteuid() != 0) return run_program(program, arguments, folder);
  std::vector<std::string> all = {"--reuid=65534", "--regid=65534", "--clear-groups", "--", program.string()};
  all.insert(all.end(), arguments.begin(), arguments.end());
  return run_program("/usr/bin/setpriv", all, folder);
}

TEST(ExampleFolders, ResultsDoNotDependOnTheCurrentFolderNorOnFilesOfTheSameNamesThere) {
  const fs::path folder = fresh_folder();
  for (const fs::path& example : examples()) {
    SCOPED_TRACE(example.filename().string());
    const fs::path here = folder / example.filename(), elsewhere = here / "elsewhere";
    fs::create_directories(elsewhere);
    const CommandResult own = run_command(arguments("model.toml", here / "own"), example);
    ASSERT_EQ(own.code, 0) << own.err;
    const auto record = nlohmann::json::parse(file_text(here / "own/run.json"));
    for (const auto& input : record["inputs"])
      for (const char* role : {"model", "road", "wave", "current", "mesh"})
        if (input["role"] == role) {
          const fs::path decoy = elsewhere / fs::path(input["name"].get<std::string>()).filename();
          write_text(decoy, "this is another file\n");
        }
    ASSERT_EQ(run_command(arguments(example / "model.toml", here / "other"), elsewhere).code, 0);
    EXPECT_EQ(file_text(here / "own/results.csv"), file_text(here / "other/results.csv"));
  }
}

TEST(ExampleFolders, ModelsRunFromFoldersThatCannotBeWritten) {
  const fs::path folder = fresh_folder();
  fs::permissions(folder, fs::perms(0777));
  fs::permissions(folder.parent_path(), fs::perms(0755));  // of this process
  const fs::path command = copied_command(folder / "installed");
  if (run_as_user(command, {"version"}, "/").code != 0) GTEST_SKIP() << "no other user can reach " << folder;
  for (const fs::path& example : examples()) {
    SCOPED_TRACE(example.filename().string());
    const fs::path copy = read_only_copy(example, folder / example.filename());
    std::vector<std::string> all = arguments(copy / "model.toml", folder / (example.filename().string() + "-out"));
    all.insert(all.end(), {"--made", (folder / "made").string()});
    const CommandResult result = run_as_user(command, all, copy);
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_TRUE(fs::exists(folder / (example.filename().string() + "-out") / "results.csv"));
    fs::permissions(copy, fs::perms(0755));  // so that the tests' folder can be removed
  }
}

}  // namespace
