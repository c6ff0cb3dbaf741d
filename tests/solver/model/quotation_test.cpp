#include "solver/model/quotation.h"

#include <gtest/gtest.h>

#include "solver/model/expression.h"
#include "solver/read_model.h"
#include "tests/solver/model_file/base_model.h"

namespace {

using qvslv::quotation;

TEST(Quotation, IsTheWholeTextWhereALineHoldsIt) {
  EXPECT_EQ(quotation("2*m0"), "2*m0");
  EXPECT_EQ(quotation(std::string(80, 'x')), std::string(80, 'x'));
}

TEST(Quotation, OfALongTextIsALineAroundThePlace) {
  std::string text;
  for (int k = 0; k < 100; ++k) text += std::to_string(100 + k) + "+";
  EXPECT_EQ(quotation(text), text.substr(0, 80) + "...");
  EXPECT_EQ(quotation(text, 200), "..." + text.substr(160, 80) + "...");
  EXPECT_EQ(quotation(text, 399), "..." + text.substr(320, 80));
  EXPECT_EQ(quotation(text, std::string::npos), "..." + text.substr(320, 80)) << "a place behind the end is the end";
}

TEST(Quotation, ShowsControlCharactersAsEscapes) { EXPECT_EQ(quotation("3\r\n"), "3\\r\\n"); }

TEST(Quotation, TearsNoCharacterOfSeveralBytes) {
  std::string text;
  for (int k = 0; k < 100; ++k) text += "\xc3\xa4";  // a with two dots
  for (size_t place = 0; place < text.size(); ++place) {
    const std::string quoted = quotation("x" + text, place);
    EXPECT_EQ(quoted.find('\\'), std::string::npos) << quoted;  // half a character would stand there as an escape
    EXPECT_LE(quoted.size(), 87u);
  }
}

/// What reading the base model with an override says.
std::string complaint(const std::string& option) {
  try {
    qvslv::read_model_text(k_base_model, "model.toml", {option});
  } catch (const qvslv::ModelError& error) {
    return error.what();
  }
  return "read without a complaint";
}

TEST(Quotation, MessageOnALongExpressionShowsTheFault) {
  std::string sum = "1";
  for (int k = 0; k < 300; ++k) sum += "+1";
  for (const std::string fault : {"+wrong_name", "+m0*)", "+sin(1,2,3,4,5)", "=3"}) {
    const std::string said = complaint("body.ball.mass=" + sum + fault + sum);
    EXPECT_LT(said.size(), 330u) << said;
    EXPECT_NE(said.find("in the expression \"..."), std::string::npos) << said;
    EXPECT_NE(said.find(fault, said.find("in the expression")), std::string::npos) << said;
  }
}

TEST(Quotation, MessageOnALongNameQuotesALineOfIt) {
  EXPECT_LT(complaint("body.ball.mass=" + std::string(5000, 'n')).size(), 400u);
}

TEST(Quotation, CarriageReturnInAValueIsShownAsSuch) {
  const std::string said = complaint("body.ball.mass=3*\r");
  EXPECT_EQ(said.find('\r'), std::string::npos) << said;
  EXPECT_NE(said.find("in the expression \"3*\\r\""), std::string::npos) << said;
}

}  // namespace
