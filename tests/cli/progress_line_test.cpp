#include "cli/progress_line.h"

#include <gtest/gtest.h>

namespace {

qvslv::Progress half_way() {
  qvslv::Progress progress;
  progress.time = 3;
  progress.end_time = 6;
  progress.step = 4e-4;
  progress.wall_seconds = 10;
  return progress;
}

std::string line(size_t width) { return qvcli::progress_text(half_way(), "s", width); }

TEST(ProgressLine, TellsAllOnAWideTerminal) {
  EXPECT_EQ(line(79), "  3.000 / 6 s    50 %   step 0.0004 s   0.3 x real time   10 s left");
}

TEST(ProgressLine, KeepsTheShareAndTheTimeLeftLongest) {
  EXPECT_EQ(line(66), "  3.000 / 6 s    50 %   step 0.0004 s   10 s left");
  EXPECT_EQ(line(40), "  3.000 / 6 s    50 %   10 s left");
  EXPECT_EQ(line(20), " 50 %   10 s left");
  EXPECT_EQ(line(10), " 50 %");
}

TEST(ProgressLine, NeverWraps) {
  for (size_t width = 0; width < 100; ++width) EXPECT_LE(line(width).size(), width);
}

}  // namespace
