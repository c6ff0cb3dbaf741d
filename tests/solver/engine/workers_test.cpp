#include "solver/engine/workers.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>
#include <vector>

#include "solver/engine/call_order.h"

namespace {

using qvslv::CallOrder;
using qvslv::Workers;

TEST(Workers, EveryThreadDoesEveryJobOnceAwakeOrAsleep) {
  constexpr int k_threads = 3, k_jobs = 2000;
  Workers workers(k_threads);
  ASSERT_EQ(workers.count(), k_threads);
  std::vector<int> done(k_threads, 0);  // written by one thread each, read between jobs
  for (int job = 1; job <= k_jobs; ++job) {
    workers.run([&](int thread) { ++done[static_cast<size_t>(thread)]; });
    ASSERT_EQ(done, std::vector<int>(k_threads, job));
    if (job % 500 == 0) std::this_thread::sleep_for(std::chrono::milliseconds(2));  // long enough to fall asleep
  }
}

TEST(Workers, ASingleOneDoesItsJobsInTheCallersThread) {
  Workers workers(1);
  std::thread::id in;
  workers.run([&](int) { in = std::this_thread::get_id(); });
  EXPECT_EQ(in, std::this_thread::get_id());
}

TEST(CallOrder, ACallWaitsForAllBeforeItWhateverThreadTheyAreOn) {
  constexpr size_t k_calls = 40;
  CallOrder order(k_calls);
  Workers workers(2);
  for (int pass = 0; pass < 200; ++pass) {
    std::vector<size_t> finished(k_calls, 0), seen(k_calls, 0);
    order.begin();
    workers.run([&](int thread) {
      for (size_t k = static_cast<size_t>(thread); k < k_calls; k += 2) {
        if (k % 3 == 0) {
          order.await_all_before(k);
          for (size_t i = 0; i < k; ++i) seen[k] += finished[i];
        }
        finished[k] = 1;
        order.set_done(k);
      }
    });
    for (size_t k = 0; k < k_calls; k += 3) ASSERT_EQ(seen[k], k);
  }
}

}  // namespace
