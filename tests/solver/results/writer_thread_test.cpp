#include "solver/results/writer_thread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using qvslv::WriterThread;

TEST(WriterThread, DoesItsJobsInTheirOrder) {
  std::vector<int> done;
  WriterThread thread;
  for (int k = 0; k < 100; ++k) thread.post([&done, k] { done.push_back(k); });
  thread.finish();
  ASSERT_EQ(done.size(), 100U);
  for (int k = 0; k < 100; ++k) EXPECT_EQ(done[static_cast<std::size_t>(k)], k);
}

TEST(WriterThread, WorksBesideTheOneThatPosts) {
  std::promise<void> gate;
  std::promise<void> reached;
  WriterThread thread;
  thread.post([&] {
    reached.set_value();
    gate.get_future().wait();  // would wait for ever where the job is done at the post
  });
  reached.get_future().wait();
  gate.set_value();
  thread.finish();
}

TEST(WriterThread, TellsAFailureOnceAndDropsTheJobsBehindIt) {
  std::atomic<int> done{0};
  WriterThread thread;
  std::promise<void> gate;
  thread.post([&] {
    gate.get_future().wait();
    throw std::runtime_error("cannot write x: No space left on device");
  });
  thread.post([&] { ++done; });
  gate.set_value();
  try {
    thread.finish();
    FAIL() << "the failure is not told";
  } catch (const std::runtime_error& error) {
    EXPECT_EQ(std::string(error.what()), "cannot write x: No space left on device");
  }
  thread.post([&] { ++done; });
  thread.finish();
  EXPECT_EQ(done, 0);
}

TEST(WriterThread, AFailureEndsTheWaitOfALongLine) {
  std::promise<void> gate;
  WriterThread thread;
  thread.post([&] {
    gate.get_future().wait();
    throw std::runtime_error("full");
  });
  auto poster = std::async(std::launch::async, [&thread] {
    for (int k = 0; k < 1000; ++k) thread.post([] {});
  });
  gate.set_value();
  EXPECT_THROW(poster.get(), std::runtime_error);
}

TEST(WriterThread, KeepsOnlySoManyJobsInLine) {
  std::promise<void> gate;
  std::atomic<int> posted{0};
  WriterThread thread;
  thread.post([&] { gate.get_future().wait(); });
  auto poster = std::async(std::launch::async, [&] {
    for (int k = 0; k < 100; ++k, ++posted) thread.post([] {});
  });
  EXPECT_EQ(poster.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
  EXPECT_LT(posted, 20);
  gate.set_value();
  poster.get();
  thread.finish();
  EXPECT_EQ(posted, 100);
}

}  // namespace
