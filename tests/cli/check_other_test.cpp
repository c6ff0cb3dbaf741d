#include <gmock/gmock.h>

#include "tests/cli/process.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

// A tetrahedron of edges 1 along the axes, its faces to the outside; without the last face it is open.
const std::string k_open_mesh = "v 0 0 0\nv 1 0 0\nv 0 1 0\nv 0 0 1\nf 1 3 2\nf 1 2 4\nf 1 4 3\n";

TEST(CheckOther, TellsSizeAndVolumeOfAMeshThatCanBeAHull) {
  const fs::path folder = fresh_folder();
  write_text(folder / "boat.obj", k_open_mesh + "f 2 3 4\n");
  const CommandResult result = run_command({"check", "boat.obj"}, folder);
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_THAT(result.out, HasSubstr("boat.obj: a mesh of 4 points, 4 triangles, x 0 to 1, y 0 to 1, z 0 to 1"));
  EXPECT_THAT(result.out, HasSubstr("closed, volume 0.166667, centre of volume (0.25, 0.25, 0.25)"));
}

TEST(CheckOther, SaysWhyAnOpenMeshIsNoHull) {
  const fs::path folder = fresh_folder();
  write_text(folder / "boat.obj", k_open_mesh);
  const CommandResult result = run_command({"check", "boat.obj"}, folder);
  EXPECT_EQ(result.code, 2);
  EXPECT_THAT(result.out, HasSubstr("a mesh of 4 points, 3 triangles"));
  EXPECT_THAT(result.err, HasSubstr("error: boat.obj: cannot be a hull: "));
}

// A cube of six quadrangles; the command lies where its part that divides them is not.
TEST(CheckOther, SaysThatThePartIsMissingWhichDividesPolygons) {
  const fs::path folder = fresh_folder(), command = QVBRISK_COMMAND_PATH;
  write_text(folder / "cube.obj",
             "v 0 0 0\nv 1 0 0\nv 0 1 0\nv 1 1 0\nv 0 0 1\nv 1 0 1\nv 0 1 1\nv 1 1 1\n"
             "f 1 3 4 2\nf 5 6 8 7\nf 1 2 6 5\nf 3 7 8 4\nf 1 5 7 3\nf 2 4 8 6\n");
  write_text(folder / "boat.obj", k_open_mesh + "f 2 3 4\n");
  EXPECT_THAT(run_command({"check", "cube.obj"}, folder).out, HasSubstr("a mesh of 8 points, 12 triangles"));
  fs::create_directories(folder / "bin");
  fs::create_directories(folder / "lib");
  fs::copy(command, folder / "bin");
  fs::copy(command.parent_path().parent_path() / "lib/libqvslv.so", folder / "lib");
  const std::string alone = (folder / "bin" / command.filename()).string();
  const CommandResult result = run_program(alone, {"check", "cube.obj"}, folder);
  EXPECT_EQ(result.code, 2);
  EXPECT_THAT(
      result.err,
      HasSubstr(
          "error: cube.obj: 'cube.obj' cannot be read: it holds polygons of four or more corners, and the part of "
          "qvbrisk that splits them into triangles cannot be loaded ("));
  EXPECT_THAT(result.err, HasSubstr("libqvslv_polygons.so"));
  EXPECT_EQ(run_program(alone, {"check", "boat.obj"}, folder).code, 0) << "a mesh of triangles needs it not";
}

TEST(CheckOther, SaysWhatAFolderHolds) {
  const fs::path folder = fresh_folder();
  fs::create_directories(folder / "boats");
  EXPECT_THAT(run_command({"check", "boats"}, folder).err, HasSubstr("error: boats: this is a folder without a model"));
  write_text(folder / "boats/b.toml", "");
  write_text(folder / "boats/a.rdf", "");
  write_text(folder / "boats/notes.txt", "");
  const CommandResult result = run_command({"check", "boats"}, folder);
  EXPECT_EQ(result.code, 2);
  EXPECT_THAT(result.err, HasSubstr("this is a folder; check reads single files, here a.rdf, b.toml\n"));
  write_text(folder / "boats/run.json", "{}");
  EXPECT_THAT(run_command({"check", "boats"}, folder).err, HasSubstr("open its report.html in a browser"));
}

TEST(CheckOther, KnowsPicturesByTheirBeginningWhateverTheirName) {
  const fs::path folder = fresh_folder();
  write_text(folder / "a.png", "\x89PNG\r\n\x1a\nrest");
  write_text(folder / "b.toml", "\xff\xd8\xff rest");
  EXPECT_THAT(run_command({"check", "a.png"}, folder).err,
              HasSubstr("error: a.png: this is a picture (PNG); check reads"));
  const CommandResult result = run_command({"check", "b.toml"}, folder);
  EXPECT_EQ(result.code, 2);
  EXPECT_THAT(result.err, HasSubstr("error: b.toml: this is a picture (JPEG)"));
}

TEST(CheckOther, CountsATable) {
  const fs::path folder = fresh_folder();
  write_text(folder / "t.csv", "time,x,y\n0,1,2\n1,2,3\n");
  EXPECT_THAT(run_command({"check", "t.csv"}, folder).err,
              HasSubstr("this is a table of 3 lines and 3 columns, which no run"));
}

TEST(CheckOther, ListsItsVerdictForScripts) {
  const fs::path folder = fresh_folder();
  const CommandResult result = run_command({"check", "--json", "."}, folder);
  EXPECT_EQ(result.code, 2);
  EXPECT_THAT(result.out, HasSubstr("\"id\": \"file-kind\""));
}

}  // namespace
