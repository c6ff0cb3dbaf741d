#include <gtest/gtest.h>

#include <set>
#include <string>

#include "tests/library/elf_file.h"

namespace {

using names = std::set<std::string>;

const names k_entries = {"qvballplacing_report",   "qvhydro_force",          "qvhydro_report",
                         "qvsoil_interaction_mtl", "qvsoil_mtl_eom",         "qvsoil_mtl_velocity",
                         "qvsoil_shearforce_mtl",  "qvsoil_normalforce_mtl", "qvsoil_interaction_mtl_sum",
                         "qvsoil_interaction",     "qvsoil_interaction_Sum", "qvsoil_error_velocity",
                         "qvsoil_thrustforce"};
const names k_services = {"sysary",      "sysfnc", "get_string_s", "GET_QVSPATH_S", "stop_solver",
                          "THROW_ERROR", "AKISPL", "GTUNTS",       "STEP",          "get_mass"};

qvtest::elf_file library() { return qvtest::read_elf(QVBRISK_LIBRARY); }

TEST(ExportedSymbols, AreExactlyTheThirteenEntryPoints) {
  EXPECT_EQ(library().defined, k_entries);
  EXPECT_EQ(library().defined_data, names{});
}

TEST(ExportedSymbols, TheTenServicesAreLeftToTheHost) {
  const qvtest::elf_file file = library();
  for (const std::string& service : k_services) {
    EXPECT_EQ(file.undefined.count(service), 1u) << service;
    EXPECT_EQ(file.weak_undefined.count(service), 0u) << service;
  }
}

TEST(ExportedSymbols, AreAllBoundWhileTheLibraryIsLoaded) { EXPECT_TRUE(library().bind_now); }

TEST(NeededLibraries, AreThoseOfTheLanguageOnly) {
#ifdef QVTEST_INSTRUMENTED
  GTEST_SKIP() << "an instrumented build needs the libraries of its instruments too";
#endif
  const names allowed = {"libstdc++.so.6", "libm.so.6", "libc.so.6", "libgcc_s.so.1"};
  for (const std::string& needed : library().needed) EXPECT_EQ(allowed.count(needed), 1u) << needed;
}

// Those of the C library differ between its versions and processors; the library has its own (common/kernels/powers.h,
// angles.h).
TEST(NeededLibraries, ComputeNoFunctionOfTheLaws) {
  const qvtest::elf_file file = library();
  for (const char* name : {"pow", "exp", "exp2", "exp10", "expm1", "log", "log2", "log10", "log1p", "cbrt", "hypot",
                           "sinh", "cosh", "tanh", "sin", "cos", "sincos", "tan"})
    EXPECT_EQ(file.undefined.count(name), 0u) << name;
}

}  // namespace
