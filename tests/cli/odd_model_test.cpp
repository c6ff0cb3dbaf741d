#include <gmock/gmock.h>

#include "tests/cli/process.h"
#include "tests/solver/checks/odd_models.h"

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
