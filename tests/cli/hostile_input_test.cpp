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
    EXPECT_THAT(result.err, HasSubstr("/lie.ply' cannot be read: line 5: the file ends in its "
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

struct extreme_case {
  const char* option;
  const char* message;
};

// What the libraries below say, and what no user can do anything with.
void expect_no_bare_text(const std::string& text) {
  for (const char* bare :
       {"SimTK", "Assertion", "std::", "bad_alloc", "filesystem error", "basic_", "TOML_", "terminate"})
    EXPECT_THAT(text, Not(HasSubstr(bare)));
}

TEST(HostileInput, NumbersBeyondAllMeasureEndWithASentence) {
  const extreme_case cases[] = {
      {"simulation.max_step=1e-300",
       "simulation, max_step: 1e-300 is too short for the end time; at least 1e-10 is expected, so that there are "
       "1e+09 steps at most"},
      {"simulation.output_step=1e-300", "simulation, output_step: 1e-300 is too short for the end time"},
      {"simulation.end_time=1e300",
       "simulation, end_time: 1e+300 is too large to compute with; at most 1e+100 is expected, other units bring it "
       "there"},
      {"simulation.end_time=1e-320",
       "simulation, end_time: 1e-320 is too small to compute with; at least 1e-100 is expected, other units bring it "
       "there"},
      {"body.ball.mass=1e-300", "body ball, mass: 1e-300 is too small to compute with"},
      {"body.ball.mass=1e300", "body ball, mass: 1e+300 is too large to compute with"},
      {"body.ball.center=[1e300,0,0]", "body ball, center: 1e+300 is too large to compute with"},
      {"body.ball.angular_velocity=[1e300,0,0]", "body ball, angular velocity: 1e+300 is too large to compute with"},
      {"body.ball.shape.sphere.radius=1e300", "body ball, inertia: inf is no finite number"},
      {"gravity=[0,0,1e308]", "gravity: 1e+308 is too large to compute with"},
  };
  for (const extreme_case& row : cases) {
    SCOPED_TRACE(row.option);
    const fs::path folder = folder_with("");
    const CommandResult checked = run_command({"check", "ball.toml", "--set", row.option}, folder);
    EXPECT_EQ(checked.code, 2);
    EXPECT_THAT(checked.err, HasSubstr(row.message));
    const CommandResult ran = run_command({"run", "ball.toml", "--out", "r", "--set", row.option}, folder);
    EXPECT_NE(ran.code, 0);
    EXPECT_THAT(ran.err, HasSubstr(row.message));
    expect_no_bare_text(checked.err + ran.err);
  }
}

TEST(HostileInput, FixedStepThatIsLostInTheTimeIsRefused) {
  const fs::path folder = folder_with("");
  const CommandResult result = run_command(
      {"run", "ball.toml", "--set", "simulation.integrator=runge-kutta-fixed", "--set", "simulation.step=1e-17"},
      folder);
  EXPECT_EQ(result.code, 1);
  EXPECT_THAT(result.err, HasSubstr("simulation, step: 1e-17 is too short for the end time"));
}

TEST(HostileInput, MotionThatOverflowsNamesTheBodyAndTheTime) {
  const fs::path folder = folder_with("[[force]]\nname = \"push\"\nmarker = \"ball\"\nforce = [\"1e306*t\", 0, 0]\n");
  const CommandResult result = run_command(
      {"run", "ball.toml", "--out", "r", "--set", "body.ball.mass=1e-90", "--set", "simulation.end_time=1"}, folder);
  EXPECT_EQ(result.code, 1);
  EXPECT_THAT(result.err,
              testing::ContainsRegex("at time [0-9.e-]+ the motion leaves what numbers can hold; body ball "));
  EXPECT_THAT(result.err, HasSubstr("look at their units"));
  expect_no_bare_text(result.err);
  EXPECT_THAT(file_text(folder / "r/run.json"), HasSubstr("the motion leaves what numbers can hold"));
}

TEST(HostileInput, FolderThatCannotBeMadeIsNamedWithTheSystemsReason) {
  const fs::path folder = folder_with("");
  write_text(folder / "file", "in the way");
  const CommandResult result = run_command({"run", "ball.toml", "--out", "file/results"}, folder);
  EXPECT_EQ(result.code, 1);
  EXPECT_THAT(result.err, HasSubstr("cannot write into the folder file/results: Not a directory\n"));
  expect_no_bare_text(result.err);
}

TEST(HostileInput, KeysAndValuesOfThousandsOfPartsAreRefused) {
  std::string dots, brackets;
  for (int i = 0; i < 100000; ++i) dots += "a.";
  brackets.assign(100000, '[');
  const fs::path folder = folder_with("");
  write_text(folder / "dots.toml",
             "title = \"1.2.3.4.5.6.7.8.9.10.11.12\"  # 1.2.3.4.5.6.7.8.9.10.11.12\n" + dots + "b = 1\n");
  EXPECT_EQ(run_command({"check", "dots.toml"}, folder).err,
            "dots.toml:2:1: a key of more than 10 parts; is a dot too many?\n");
  write_text(folder / "deep.toml", "title = " + brackets);
  const CommandResult deep = run_command({"check", "deep.toml"}, folder);
  EXPECT_EQ(deep.code, 2);
  EXPECT_THAT(deep.err, HasSubstr("exceeded maximum nested value depth of 256\n"));
  expect_no_bare_text(deep.err);
}

TEST(HostileInput, LettersBeyondAsciiStandInTextsAndComments) {
  const fs::path folder = folder_with("");
  for (const char* text :
       {"k\u00e9y = 1\n", "gravity =\u03cb[0, 0, 0]\n", "a = 5{b=\"\u03cb}\n", "title = \"\"\"\\\u00e9\"\"\"\n"}) {
    write_text(folder / "a.toml", text);
    const CommandResult result = run_command({"check", "a.toml"}, folder);
    EXPECT_EQ(result.code, 2) << text;
    EXPECT_THAT(result.err, testing::StartsWith("a.toml:1:"));
  }
  const std::string dots(50, '.');
  for (const std::string& text :
       {"# caf\u00e9 'and \"so" + dots + "\ntitle = \"caf\u00e9 " + dots + "\"", "title = 'caf\u00e9 " + dots + "'",
        "title = \"\"\"\ncaf\u00e9 \"so\"\n" + dots + "\n\"\"\"", "title = '''it's\ncaf\u00e9" + dots + "'''",
        "title = \"\\\\\" # caf\u00e9" + dots, "title = \"\" # \u00e9" + dots, "title = \"a\\\"" + dots + "\""}) {
    write_text(folder / "a.toml", text + k_model);
    const CommandResult result = run_command({"check", "a.toml"}, folder);
    EXPECT_EQ(result.code, 0) << text << result.err;
  }
}

TEST(HostileInput, DevicesAreNoModels) {
  const CommandResult result = run_command({"check", "/dev/zero"}, fresh_folder());
  EXPECT_EQ(result.code, 2);
  EXPECT_EQ(result.err, "/dev/zero: this is no regular file; a model file (TOML) is expected\n");
}

TEST(HostileInput, LibraryInTheCurrentFolderIsTheOneThatIsLoaded) {
  const fs::path folder = folder_with(element_calling("my_own"));
  write_text(folder / "libm.so.6", "no library, though the system has one of this name");
  const CommandResult result = run_command({"run", "ball.toml", "--library", "libm.so.6"}, folder);
  EXPECT_EQ(result.code, 1);
  EXPECT_THAT(result.err, HasSubstr(": " + (folder / "libm.so.6").string() + ": "));
}

TEST(HostileInput, ParametersInAChainOfThousandsAreRead) {
  std::string chain = "[parameters]\n";
  for (int i = 0; i < 20000; ++i) chain += "p" + std::to_string(i) + " = \"p" + std::to_string(i + 1) + " + 1\"\n";
  const fs::path folder = folder_with(chain + "p20000 = 1\n[[string]]\nname = \"s\"\ntext = \"t\"\n");
  const CommandResult result = run_command({"check", "ball.toml", "--set", "body.ball.mass=p0"}, folder);
  EXPECT_EQ(result.code, 0) << result.err.substr(0, 1000);
  EXPECT_THAT(result.out, HasSubstr("body ball: mass 20001\n"));
}

TEST(HostileInput, AThousandBodiesMove) {
  std::string bodies;
  for (int i = 0; i < 1000; ++i)
    bodies += "[[body]]\nname = \"b" + std::to_string(i) +
              "\"\nmass = 1\nshape = { sphere = { radius = 0.1 } }\nposition = [" + std::to_string(i) + ", 0, 0]\n";
  const fs::path folder = folder_with(bodies);
  const CommandResult result = run_command({"run", "ball.toml", "--out", "r"}, folder);
  EXPECT_EQ(result.code, 0) << result.err;
  const ResultTable table(folder / "r/results.csv");
  EXPECT_NEAR(table["b999.z [m]"].back(), -0.5 * 9.81 * 0.01, 1e-9);
}

}  // namespace
