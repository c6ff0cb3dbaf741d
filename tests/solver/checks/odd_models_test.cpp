#include "tests/solver/checks/odd_models.h"

#include <gmock/gmock.h>

#include "tests/solver/model_file/mistake.h"

namespace {

using namespace qvslv;
using testing::HasSubstr;
using testing::IsEmpty;

Findings findings_of(const std::string& text) { return read_model_text(text, "model.toml").findings; }

TEST(OddModels, SoundModelsAreQuiet) {
  for (const odd_model& model : odd_models()) EXPECT_THAT(finding_texts(findings_of(model.text)), IsEmpty());
}

TEST(OddModels, WhatLooksWrongIsToldOncePerElementAsAWarning) {
  for (const odd_model& model : odd_models())
    for (const oddity& row : model.oddities) {
      SCOPED_TRACE(row.why);
      const Findings found = findings_of(odd(model, row, row.to));
      ASSERT_FALSE(found.empty());
      EXPECT_EQ(finding_text(found[0]), row.message);
      for (size_t i = 0; i < found.size(); ++i) {
        EXPECT_EQ(found[i].level, Level::warning);
        EXPECT_EQ(found[i].id, found[0].id);
        for (size_t k = 0; k < i; ++k) EXPECT_NE(found[i].at.line, found[k].at.line);
      }
    }
}

TEST(OddModels, WhatIsJustInsideItsLimitIsQuiet) {
  for (const odd_model& model : odd_models())
    for (const oddity& row : model.oddities) {
      SCOPED_TRACE(row.why);
      EXPECT_THAT(finding_texts(findings_of(odd(model, row, row.inside))), IsEmpty());
    }
}

TEST(OddModels, PageShowsEveryOneAndItsMessage) {
  const std::string text = bad_input_page();
  for (const odd_model& model : odd_models())
    for (const oddity& row : model.oddities) {
      EXPECT_THAT(text, HasSubstr(std::string("| ") + row.why + " |"));
      EXPECT_THAT(text, HasSubstr("`" + in_table(row.message) + "`"));
    }
}

}  // namespace
