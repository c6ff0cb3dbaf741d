#include "common/call/messages.h"

#include <gtest/gtest.h>

#include <new>
#include <string>

#include "common/call/entry_frame.h"
#include "tests/support/failing_new.h"

namespace {

struct channel {
  int count = 0;
  char* slots[qv::k_message_slots] = {};
  char* behind = nullptr;  // the frame owns no sixth slot

  ~channel() {
    for (char* text : slots) delete[] text;
  }
};

/// The integer that the call throws; 0 when it returns.
template <class Call>
int thrown(Call&& call) {
  try {
    call();
  } catch (int number) {
    return number;
  }
  return 0;
}

TEST(Messages, AreStoredOneBehindTheOther) {
  channel c;
  qv::add_message("first", c.count, c.slots);
  qv::add_message("", c.count, c.slots);
  EXPECT_EQ(c.count, 2);
  EXPECT_STREQ(c.slots[0], "first");
  EXPECT_STREQ(c.slots[1], "");
  EXPECT_EQ(c.slots[2], nullptr);
}

TEST(Messages, AFullChannelKeepsWhatItHas) {
  channel c;
  for (int k = 0; k < 9; ++k) qv::add_message(std::to_string(k), c.count, c.slots);
  EXPECT_EQ(c.count, qv::k_message_slots);
  for (int k = 0; k < qv::k_message_slots; ++k) EXPECT_EQ(c.slots[k], std::to_string(k));
  EXPECT_EQ(c.behind, nullptr);
  EXPECT_EQ(thrown([&] { qv::fault("late", c.count, c.slots); }), 1);
  EXPECT_EQ(c.count, qv::k_message_slots);
  EXPECT_STREQ(c.slots[4], "4");
}

TEST(Messages, AFaultStoresItsTextAndThrowsOne) {
  channel c;
  qv::add_message("before", c.count, c.slots);
  EXPECT_EQ(thrown([&] { qv::fault("the fault", c.count, c.slots); }), 1);
  EXPECT_EQ(c.count, 2);
  EXPECT_STREQ(c.slots[1], "the fault");
}

TEST(Messages, AFirstFaultSetsTheCountToOneWhateverStoodThere) {
  channel c;
  for (int k = 0; k < 3; ++k) qv::add_message("old", c.count, c.slots);
  char* const replaced = c.slots[0];
  EXPECT_EQ(thrown([&] { qv::first_fault("the only one", c.count, c.slots); }), 1);
  EXPECT_EQ(c.count, 1);
  EXPECT_STREQ(c.slots[0], "the only one");
  delete[] replaced;
}

TEST(Messages, ATextIsACopyOfItsOwn) {
  channel c;
  std::string text = "kept";
  qv::add_message(text, c.count, c.slots);
  text[0] = 'X';
  EXPECT_STREQ(c.slots[0], "kept");
}

TEST(Messages, TheCountNeverCoversAnEmptySlotWhenMemoryRunsOut) {
  const std::string text(100, 'x');
  channel c;
  qv::add_message("before", c.count, c.slots);
  {
    const qvtest::failing_new at_first(1);
    EXPECT_THROW(qv::add_message(text, c.count, c.slots), std::bad_alloc);
  }
  EXPECT_EQ(c.count, 1);
  EXPECT_EQ(c.slots[1], nullptr);
  {
    const qvtest::failing_new at_first(1);
    EXPECT_THROW(qv::set_first_message(text, c.count, c.slots), std::bad_alloc);
  }
  EXPECT_EQ(c.count, 1);
  EXPECT_STREQ(c.slots[0], "before");
}

}  // namespace
