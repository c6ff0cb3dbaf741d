#include <gmock/gmock.h>

#include "tests/cli/process.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

// A ball in the air: nothing but what a test adds is in the way.
const std::string k_model = R"toml(
gravity = [0, 0, -9.81]
[simulation]
end_time = 0.1
output_step = 0.02
[[body]]
name = "ball"
mass = 1
shape = { sphere = { radius = 0.1 } }
)toml";

fs::path folder_with(const std::string& more) {
  const fs::path folder = fresh_folder();
  write_text(folder / "ball.toml", k_model + more);
  return folder;
}

std::string element_calling(const std::string& subroutine) {
  return "[[element]]\nname = \"spy\"\ntype = \"subroutine\"\nsubroutine = \"" + subroutine +
         "\"\nkind = \"report\"\nresult_length = 1\npar = [1]\n";
}

TEST(HostileInput, MeshThatLiesEndsCheckAndRunWithTwo) {
  const fs::path folder = folder_with(
      "[[wave]]\nname = \"sea\"\nfile = \"sea.wave\"\nkind = \"still\"\nextent = 60\n"
      "[[current]]\nname = \"stream\"\nfile = \"stream.current\"\nalong_x = { profile = \"uniform\", speed = 0 }\n"
      "[[element]]\nname = \"hull\"\ntype = \"hull\"\nbody = \"ball\"\nmesh = \"lie.ply\"\nwave = \"sea\"\n"
      "current = \"stream\"\ndensity = 1000\n");
  write_text(folder / "lie.ply", "ply\nformat ascii 1.0\nelement vertex 4000000000\nproperty float x\n");
  for (const char* command : {"check", "run"}) {
    const CommandResult result = run_command({command, "ball.toml"}, folder);
    EXPECT_EQ(result.code, 2);
    EXPECT_THAT(result.err, HasSubstr("element 'hull', mesh: 'lie.ply' cannot be read: line 5: the file ends in its "
                                      "header; the line 'end_header' is missing"));
  }
}

TEST(HostileInput, ControlCharactersInNamesAreShownAndNotObeyed) {
  const fs::path folder = folder_with("");
  const CommandResult body = run_command({"check", "ball.toml", "--set", "body.ball.name=\"a\\u001b[2Jb\""}, folder);
  EXPECT_EQ(body.code, 2);
  EXPECT_THAT(body.err, HasSubstr("the name 'a\\x1b[2Jb' of a body holds a control character; letters, digits, "
                                  "signs and blanks are expected"));
  EXPECT_THAT(body.err, Not(HasSubstr("\x1b")));
  const CommandResult title = run_command({"check", "ball.toml", "--set", "title=\"a\\u202eb\\u009b2J\""}, folder);
  EXPECT_EQ(title.code, 0) << title.err;
  EXPECT_THAT(title.out, HasSubstr("ball.toml: a\\u202eb\\x9b2J\n"));
  const CommandResult option = run_command({"check", "ball.toml", "--\x1b[2J"}, folder);
  EXPECT_EQ(option.code, 2);
  EXPECT_THAT(option.err, HasSubstr("\\x1b[2J"));
  EXPECT_THAT(option.err, Not(HasSubstr("\x1b")));
  write_text(folder / "bad\x1b.toml", "gravity = 1\n");
  EXPECT_THAT(run_command({"check", "bad\x1b.toml"}, folder).err, HasSubstr("bad\\x1b.toml:1:"));
}

TEST(HostileInput, ControlCharactersOfColumnsAreRefused) {
  const std::string column = element_calling("my_own");
  for (const char* entry : {"name = \"a\\rb\"", "name = \"a\", unit = \"a\\rb\""}) {
    const fs::path folder = folder_with(column + "columns = [{ index = 0, " + entry + " }]\n");
    const CommandResult result = run_command({"check", "ball.toml"}, folder);
    EXPECT_EQ(result.code, 2);
    EXPECT_THAT(result.err,
                HasSubstr("'a\\rb' holds a control character; letters, digits, signs and blanks are expected"));
  }
}

TEST(HostileInput, ExpandedTextIsTheSameTextAgain) {
  const fs::path folder = folder_with("[[string]]\nname = \"note\"\ntext = \"a\\u001b\\\"\\\\ b\"\n");
  const CommandResult result = run_command({"expand", "ball.toml"}, folder);
  EXPECT_THAT(result.out, HasSubstr("text = \"a\\u001b\\\"\\\\ b\"\n"));
}

TEST(HostileInput, HeadsThatLookLikeFormulasAreTexts) {
  const fs::path folder = folder_with("");
  const CommandResult result =
      run_command({"run", "ball.toml", "--set", "body.ball.name=\"=1+1\"", "--out", "r"}, folder);
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_THAT(file_text(folder / "r/results.csv"), HasSubstr("time [s],\"'=1+1.x [m]\","));
}

TEST(HostileInput, FunctionOfTheSystemIsNoSubroutine) {
  for (const char* name : {"system", "abort", "exit"}) {
    const fs::path folder = folder_with(element_calling(name));
    const CommandResult checked = run_command({"check", "ball.toml"}, folder);
    EXPECT_EQ(checked.code, 2);
    EXPECT_THAT(checked.err, HasSubstr(std::string("ball.toml:10:1: element 'spy', subroutine: the library ")));
    EXPECT_THAT(checked.err, HasSubstr(std::string("exports no subroutine ") + name + "; the " + name + " of "));
    const CommandResult ran = run_command({"run", "ball.toml"}, folder);
    EXPECT_EQ(ran.code, 1);
    EXPECT_THAT(ran.err, HasSubstr(std::string("exports no subroutine ") + name + "; the " + name + " of "));
  }
}

TEST(HostileInput, CheckLooksSubroutinesUpInTheLibraryThatIsNamed) {
  const fs::path folder = folder_with(element_calling("my_own"));
  const CommandResult result = run_command({"check", "ball.toml"}, folder);
  EXPECT_EQ(result.code, 2);
  EXPECT_THAT(result.err, HasSubstr("(a library of your own is named with --library)"));
  EXPECT_THAT(run_command({"check", "ball.toml", "--library", "none.so"}, folder).err, HasSubstr("none.so"));
}

}  // namespace
