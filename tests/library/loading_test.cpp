#include <dlfcn.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "qvbrisk/services.h"
#include "qvbrisk/subroutines.h"

// This program is a host of its own: it provides the ten services and loads the library as a stranger.
namespace {

std::vector<std::string> g_messages;
int g_handle;  // its address is the handle

void expect_handle(void* handle) { EXPECT_EQ(handle, &g_handle); }

}  // namespace

#define HOST_SERVICE extern "C" __attribute__((visibility("default")))
HOST_SERVICE void sysary(void*, const char*, const int*, int, double*, int*, int*) {}
HOST_SERVICE void sysfnc(void* handle, const char* name, const int* ids, int nids, double* value, int* err) {
  expect_handle(handle);
  EXPECT_EQ(nids, 1);
  EXPECT_EQ(*err, 0);
  *value = std::string(name) == "VM" ? ids[0] : 2.0 * ids[0];
}
HOST_SERVICE void get_string_s(void*, int, int*, wchar_t*, int*) {}
HOST_SERVICE void GET_QVSPATH_S(void*, int*, wchar_t*, int*) {}
HOST_SERVICE void stop_solver(void*, int, int, int, const char*, int*) {}
HOST_SERVICE void THROW_ERROR(void* handle, const char* title, int count, char** messages) {
  expect_handle(handle);
  g_messages = {title};
  for (int k = 0; k < count; ++k) {
    g_messages.emplace_back(messages[k]);
    delete[] messages[k];
  }
}
HOST_SERVICE void AKISPL(void*, double, double, int, int, double*, int*) {}
HOST_SERVICE void GTUNTS(void*, double*, void**, int*) {}
HOST_SERVICE void STEP(void*, double*, int*, double, double, double, double, double) {}
HOST_SERVICE void get_mass(void* handle, const int*, int nids, double* mass, int* err) {
  expect_handle(handle);
  EXPECT_EQ(nids, 1);
  EXPECT_EQ(*err, 0);
  *mass = 10;
}

namespace {

/// The library, loaded once and kept, as a host does.
void* library() {
  static void* const loaded = dlopen(QVBRISK_LIBRARY, RTLD_NOW | RTLD_LOCAL);
  if (loaded == nullptr) ADD_FAILURE() << dlerror();
  return loaded;
}

qv_user_subroutine entry(const char* name) {
  return reinterpret_cast<qv_user_subroutine>(library() != nullptr ? dlsym(library(), name) : nullptr);
}

TEST(Loading, EveryEntryPointIsFoundByName) {
  for (const char* name :
       {"qvballplacing_report", "qvhydro_force", "qvhydro_report", "qvsoil_interaction_mtl", "qvsoil_mtl_eom",
        "qvsoil_mtl_velocity", "qvsoil_shearforce_mtl", "qvsoil_normalforce_mtl", "qvsoil_interaction_mtl_sum",
        "qvsoil_interaction", "qvsoil_interaction_Sum", "qvsoil_error_velocity", "qvsoil_thrustforce"}) {
    EXPECT_NE(entry(name), nullptr) << name;
  }
}

TEST(Loading, AnEntryPointReachesTheHostsServices) {
  const qv_user_subroutine report = entry("qvballplacing_report");
  ASSERT_NE(report, nullptr);
  double par[4] = {0, 1, 3, 2}, result[3] = {};
  report(&g_handle, 0, par, 4, 0, 0, result);
  EXPECT_EQ(result[0], 2);
  EXPECT_EQ(result[1], 45);  // 10 * 3^2 / 2
  EXPECT_EQ(result[2], 72);  // (0.4 * 10 * 1) * 6^2 / 2
}

TEST(Loading, AFaultInsideComesBackAsAReportAndNotAsAnException) {
  const qv_user_subroutine interaction = entry("qvsoil_interaction");
  ASSERT_NE(interaction, nullptr);
  g_messages.clear();
  std::vector<double> par(64, std::nan("")), result(64);  // no id among them is a number
  EXPECT_NO_THROW(interaction(&g_handle, 0, par.data(), 64, 0, 1, result.data()));
  ASSERT_EQ(g_messages.size(), 2u);
  EXPECT_EQ(g_messages[0], "USUB ERROR");
  EXPECT_EQ(g_messages[1].rfind("SOILINTERACTION ERROR : ", 0), 0u) << g_messages[1];
}

TEST(Loading, AHostWithoutTheServicesIsToldWhichOneItLacks) {
  std::FILE* const host =
      popen((std::string("'") + QVTEST_BARE_HOST + "' '" + QVBRISK_LIBRARY + "' 2>&1").c_str(), "r");
  ASSERT_NE(host, nullptr);
  std::string said;
  std::array<char, 512> text;
  while (std::fgets(text.data(), static_cast<int>(text.size()), host) != nullptr) said += text.data();
  EXPECT_NE(pclose(host), 0);
  EXPECT_NE(said.find("undefined symbol"), std::string::npos) << said;
  bool named = false;
  for (const char* service : {"sysary", "sysfnc", "get_string_s", "GET_QVSPATH_S", "stop_solver", "THROW_ERROR",
                              "AKISPL", "GTUNTS", "STEP", "get_mass"}) {
    named = named || said.find(service) != std::string::npos;
  }
  EXPECT_TRUE(named) << said;
}

}  // namespace
