#include <gtest/gtest.h>

#include <string>

#include "soilrdf/rdf_reader.h"
#include "tests/soilrdf/read_text.h"
#include "tests/support/failing_new.h"
#include "tests/support/scripted_host.h"
#include "tests/support/temporary_folder.h"

// Memory that runs out, at every single allocation of the reader.
namespace {

using qvtest::failing_new;

struct outcome {
  bool returned = false;
  bool threw = false;
  int count = 2;
  bool slots_untouched = true;
  long allocations = 0;
  std::string message;
};

char g_first[] = "first", g_second[] = "second";

outcome read_failing(const std::wstring& name, long n, failing_new::later later) {
  qvtest::ScriptedHost host;
  qvsoilrdf::CRoad road;
  char* slots[5] = {g_first, g_second, nullptr, nullptr, nullptr};
  outcome o;
  {
    const failing_new watch(n, later);
    try {
      o.returned = qvsoilrdf::read_rdf(host.handle(), name, road, o.count, slots);
    } catch (int) {
      o.threw = true;
    }
    o.allocations = failing_new::allocations();
  }
  o.slots_untouched = slots[0] == g_first && slots[1] == g_second && slots[2] == nullptr;
  if (slots[0] != g_first) {
    o.message = slots[0];
    delete[] slots[0];
  }
  return o;
}

TEST(RdfAllocation, AFailureAnywhereGivesFalseAndLeavesTheChannelAsItWas) {
  const qvtest::TemporaryFolder folder;
  folder.write("road.rdf",
               qvtest::with_mesh("LENGTH = 'MM'\nSOIL_TYPE=a soil type that is too long for no allocation\n"));
  const std::wstring name = folder.wide_path("road.rdf");
  const long needed = read_failing(name, 0, failing_new::fail_too).allocations;
  ASSERT_GT(needed, 10);
  for (failing_new::later later : {failing_new::fail_too, failing_new::pass_again}) {
    for (long n = 1; n <= needed; ++n) {
      const outcome o = read_failing(name, n, later);
      EXPECT_FALSE(o.returned) << n;
      EXPECT_FALSE(o.threw) << n;
      EXPECT_EQ(o.count, 2) << n;
      EXPECT_TRUE(o.slots_untouched) << n;
    }
  }
  EXPECT_TRUE(read_failing(name, needed + 1, failing_new::fail_too).returned);
}

TEST(RdfAllocation, ARefusalIsEitherReportedWholeOrEndsInFalse) {
  const qvtest::TemporaryFolder folder;
  folder.write("road.rdf", "TIME = 'a time unit that is too long for no allocation'\n");
  const std::wstring name = folder.wide_path("road.rdf");
  const outcome whole = read_failing(name, 0, failing_new::fail_too);
  ASSERT_TRUE(whole.threw);
  for (long n = 1; n <= whole.allocations; ++n) {
    const outcome o = read_failing(name, n, failing_new::fail_too);
    EXPECT_FALSE(o.returned || o.threw) << n;
    EXPECT_EQ(o.count, 2) << n;
    EXPECT_TRUE(o.slots_untouched) << n;
  }
  EXPECT_EQ(whole.count, 1);
  EXPECT_EQ(whole.message,
            "READ RDF ERROR : A TIME UNIT THAT IS TOO LONG FOR NO ALLOCATION is an unsupported TIME UNIT.");
}

}  // namespace
