#include "common/call/entry_frame.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "common/call/messages.h"
#include "tests/support/scripted_host.h"

namespace {

using qvtest::ScriptedHost;

/// What a module function was called with.
struct call_record {
  void* handle;
  double time;
  double* par;
  int npar, difflag, iflag;
  double* result;
};
call_record g_call;

void recording_module(void* handle, double time, double* par, int npar, int difflag, int iflag, double* result,
                      int& ierr, char** msg) {
  g_call = {handle, time, par, npar, difflag, iflag, result};
  EXPECT_EQ(ierr, 0);
  for (int k = 0; k < qv::k_message_slots; ++k) EXPECT_EQ(msg[k], nullptr) << k;
  result[0] = 5;
}

struct odd_exception {
  int value;
};

enum class failure { integer, standard, structure, text };

template <failure kind, int texts>
void failing_module(void*, double, double*, int, int, int, double* result, int& ierr, char** msg) {
  result[0] = 8;
  for (int k = 0; k < texts; ++k) qv::add_message("text " + std::to_string(k), ierr, msg);
  switch (kind) {
    case failure::integer:
      throw 1;
    case failure::standard:
      throw std::runtime_error("abc");
    case failure::structure:
      throw odd_exception{3};
    case failure::text:
      throw "text";
  }
}

void run(ScriptedHost& host, qv::module_function module, double* result) {
  double par[1] = {0};
  qv::run_user_subroutine(module, host.handle(), 0.0, par, 1, 0, 0, result);
}

TEST(EntryFrame, HandsItsArgumentsOnUnchangedWithAnEmptyChannel) {
  ScriptedHost host;
  double par[3] = {1, 2, 3}, result[1] = {0};
  qv::run_user_subroutine(recording_module, host.handle(), 1.25, par, 3, 4, 2, result);
  EXPECT_EQ(g_call.handle, host.handle());
  EXPECT_EQ(g_call.time, 1.25);
  EXPECT_EQ(g_call.par, par);
  EXPECT_EQ(g_call.npar, 3);
  EXPECT_EQ(g_call.difflag, 4);
  EXPECT_EQ(g_call.iflag, 2);
  EXPECT_EQ(g_call.result, result);
  EXPECT_EQ(result[0], 5);
  EXPECT_TRUE(host.reports.empty());
}

TEST(EntryFrame, AnExceptionOfAnyTypeBecomesOneReport) {
  struct {
    const char* why;
    qv::module_function module;
    size_t texts;
  } const rows[] = {
      {"an integer", failing_module<failure::integer, 1>, 1},
      {"an integer without any text", failing_module<failure::integer, 0>, 0},
      {"a standard exception", failing_module<failure::standard, 2>, 2},
      {"a standard exception without any text", failing_module<failure::standard, 0>, 0},
      {"a structure", failing_module<failure::structure, 5>, 5},
      {"a text", failing_module<failure::text, 3>, 3},
  };
  for (const auto& row : rows) {
    ScriptedHost host;
    double result[1] = {0};
    EXPECT_NO_THROW(run(host, row.module, result)) << row.why;
    ASSERT_EQ(host.reports.size(), 1u) << row.why;
    EXPECT_EQ(host.reports[0].title, "USUB ERROR") << row.why;
    ASSERT_EQ(host.reports[0].messages.size(), row.texts) << row.why;
    for (size_t k = 0; k < row.texts; ++k) EXPECT_EQ(host.reports[0].messages[k], "text " + std::to_string(k));
    EXPECT_EQ(result[0], 8) << row.why << ": the result keeps what was written";
    EXPECT_TRUE(host.stops.empty());
  }
}

TEST(EntryFrame, AMessageWithoutAnExceptionIsNotReported) {
  ScriptedHost host;
  double result[1] = {0};
  run(
      host,
      [](void*, double, double*, int, int, int, double*, int& ierr, char** msg) {
        qv::add_message("recorded and swallowed", ierr, msg);
        delete[] msg[0];
      },
      result);
  EXPECT_TRUE(host.reports.empty());
}

}  // namespace
