#include <gtest/gtest.h>

#include <string>

#include "qvbrisk/subroutines.h"
#include "support/scripted_host.h"

namespace {

struct entry {
  const char* name;
  qv_user_subroutine call;
};

#define ENTRY(name) \
  entry { #name, name }
const entry k_not_built[] = {ENTRY(qvhydro_force),          ENTRY(qvhydro_report),
                             ENTRY(qvsoil_interaction_mtl), ENTRY(qvsoil_mtl_eom),
                             ENTRY(qvsoil_mtl_velocity),    ENTRY(qvsoil_shearforce_mtl),
                             ENTRY(qvsoil_normalforce_mtl), ENTRY(qvsoil_interaction_mtl_sum),
                             ENTRY(qvsoil_error_velocity),  ENTRY(qvsoil_thrustforce)};
#undef ENTRY

TEST(EntriesNotBuilt, SayWhatIsMissingThroughTheChannelAtEveryKindOfCall) {
  for (const entry& e : k_not_built) {
    for (int iflag : {0, 1, 2}) {
      qvtest::ScriptedHost host;
      double par[4] = {}, result[4] = {7, 7, 7, 7};
      e.call(host.handle(), 0.5, par, 4, 0, iflag, result);
      ASSERT_EQ(host.reports.size(), 1u) << e.name;
      EXPECT_EQ(host.reports[0].title, "USUB ERROR");
      ASSERT_EQ(host.reports[0].messages.size(), 1u) << e.name;
      EXPECT_EQ(host.reports[0].messages[0],
                "USUB ERROR : " + std::string(e.name) + " is not built yet in this version of the library.");
      for (double value : result) EXPECT_EQ(value, 7);
    }
  }
}

}  // namespace
