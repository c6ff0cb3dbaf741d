#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <locale>
#include <stdexcept>

// Linked into every test program: QVTEST_LOCALE=de_DE.UTF-8 runs it as a host of that locale would.
namespace {

bool set_host_locale() {
  const char* name = std::getenv("QVTEST_LOCALE");
  if (name == nullptr || *name == '\0') return false;
  try {
    std::locale::global(std::locale(name));
  } catch (const std::runtime_error&) {
    std::fprintf(stderr, "QVTEST_LOCALE: this machine has no locale %s; scripts/setup makes de_DE.UTF-8.\n", name);
    std::exit(1);
  }
  std::setlocale(LC_ALL, name);
  return true;
}

[[maybe_unused]] const bool k_foreign = set_host_locale();

}  // namespace
