#include "fuzz/memory_file.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

memory_file::memory_file() : m_file(memfd_create("fuzz", 0)) {
  if (m_file < 0) std::abort();
}

memory_file::~memory_file() { close(m_file); }

void memory_file::write(const void* data, std::size_t size) {
  if (ftruncate(m_file, 0) != 0) std::abort();
  if (pwrite(m_file, data, size, 0) != static_cast<ssize_t>(size)) std::abort();
}

std::wstring memory_file::path() const { return L"/proc/self/fd/" + std::to_wstring(m_file); }

void broken_promise(const char* promise, const char* file, int line) {
  std::fprintf(stderr, "%s:%d: broken promise: %s\n", file, line, promise);
  std::abort();
}
