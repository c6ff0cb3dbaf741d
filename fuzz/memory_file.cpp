#include "fuzz/memory_file.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

memory_file::memory_file() : file_(memfd_create("fuzz", 0)) {
  if (file_ < 0) std::abort();
}

memory_file::~memory_file() { close(file_); }

void memory_file::write(const void* data, std::size_t size) {
  if (ftruncate(file_, 0) != 0) std::abort();
  if (pwrite(file_, data, size, 0) != static_cast<ssize_t>(size)) std::abort();
}

std::wstring memory_file::path() const { return L"/proc/self/fd/" + std::to_wstring(file_); }

void broken_promise(const char* promise, const char* file, int line) {
  std::fprintf(stderr, "%s:%d: broken promise: %s\n", file, line, promise);
  std::abort();
}
