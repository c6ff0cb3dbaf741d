#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <iterator>
#include <thread>

#include "tests/library/course.h"
#include "tests/support/comparison.h"

// Once all elements are set up, calls of different elements may run at the same time: they share nothing that changes.
// Under the thread sanitizer (preset tsan) this program also fails if they touch the same memory by luck unharmed.
namespace qvtest {
namespace {

constexpr int k_calls = 120;

courses all_courses() {
  courses all = make_soil_courses(), water = make_water_courses();
  std::move(water.begin(), water.end(), std::back_inserter(all));
  return all;
}

std::vector<double> drive(Course& course) {
  std::vector<double> results;
  for (int n = 0; n < k_calls; ++n) {
    const std::vector<double>& result = course.call(n);
    results.insert(results.end(), result.begin(), result.end());
  }
  return results;
}

TEST(ConcurrentCalls, OfDifferentElementsGiveTheBitsOfCallsOneAfterTheOther) {
  const courses alone = all_courses(), together = all_courses();
  std::vector<std::vector<double>> expected, found(together.size());
  expected.reserve(alone.size());
  for (const auto& course : alone) expected.push_back(drive(*course));

  std::atomic<std::size_t> waiting{together.size()};
  std::vector<std::thread> threads;
  threads.reserve(together.size());
  for (std::size_t i = 0; i < together.size(); ++i) {
    threads.emplace_back([&, i] {
      --waiting;
      while (waiting > 0) std::this_thread::yield();  // so that their calls overlap
      found[i] = drive(*together[i]);
    });
  }
  for (std::thread& thread : threads) thread.join();

  for (std::size_t i = 0; i < together.size(); ++i) {
    EXPECT_EQ(first_difference(found[i], expected[i]), -1) << together[i]->name;
    const auto loaded = [](double value) { return std::fabs(value) > 1.0; };
    EXPECT_TRUE(std::any_of(found[i].begin(), found[i].end(), loaded)) << together[i]->name << " exerts nothing";
  }
}

}  // namespace
}  // namespace qvtest
