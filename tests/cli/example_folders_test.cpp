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

/// Runs the command as a user who must respect permissions, even if the tests run as the system's administrator.
CommandResult run_as_user(const std::vector<std::string>& more, const fs::path& folder) {
  if (geteuid() != 0) return run_command(more, folder);
  std::vector<std::string> all = {"--reuid=65534", "--regid=65534", "--clear-groups", "--", QVBRISK_COMMAND_PATH};
  all.insert(all.end(), more.begin(), more.end());
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
  for (fs::path parent = folder.parent_path(); parent != "/tmp" && parent != "/"; parent = parent.parent_path())
    fs::permissions(parent, fs::perms::others_exec, fs::perm_options::add);
  for (const fs::path& example : examples()) {
    SCOPED_TRACE(example.filename().string());
    const fs::path copy = read_only_copy(example, folder / example.filename());
    std::vector<std::string> all = arguments(copy / "model.toml", folder / (example.filename().string() + "-out"));
    all.insert(all.end(), {"--made", (folder / "made").string()});
    const CommandResult result = run_as_user(all, copy);
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_TRUE(fs::exists(folder / (example.filename().string() + "-out") / "results.csv"));
    fs::permissions(copy, fs::perms(0755));  // so that the tests' folder can be removed
  }
}

}  // namespace
