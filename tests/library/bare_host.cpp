#include <dlfcn.h>

#include <cstdio>

/// Loads a library from a process that provides no services, and says why it cannot.
int main(int argc, char** argv) {
  if (argc != 2) return 2;
  if (dlopen(argv[1], RTLD_NOW) != nullptr) return 0;
  std::puts(dlerror());
  return 1;
}
