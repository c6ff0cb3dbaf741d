#include "support/failing_new.h"

#include <climits>
#include <cstdlib>
#include <new>

namespace {

bool g_watching = false;
long g_allocations = 0;
long g_first_failure = 0;
long g_last_failure = 0;

void count_allocation() {
  if (!g_watching) return;
  ++g_allocations;
  if (g_allocations >= g_first_failure && g_allocations <= g_last_failure) throw std::bad_alloc();
}

void* checked(void* memory) {
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

void* allocate(std::size_t size) {
  count_allocation();
  return checked(std::malloc(size > 0 ? size : 1));
}

void* allocate(std::size_t size, std::align_val_t alignment) {
  count_allocation();
  const auto step = static_cast<std::size_t>(alignment);
  return checked(std::aligned_alloc(step, (size / step + 1) * step));
}

}  // namespace

void* operator new(std::size_t size) { return allocate(size); }
void* operator new[](std::size_t size) { return allocate(size); }
void* operator new(std::size_t size, std::align_val_t alignment) { return allocate(size, alignment); }
void* operator new[](std::size_t size, std::align_val_t alignment) { return allocate(size, alignment); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::align_val_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t, std::align_val_t) noexcept { std::free(memory); }

namespace qvtest {

failing_new::failing_new(long n, later allocations) {
  g_allocations = 0;
  g_first_failure = n > 0 ? n : LONG_MAX;
  g_last_failure = allocations == pass_again ? n : LONG_MAX;
  g_watching = true;
}

failing_new::~failing_new() { g_watching = false; }

long failing_new::allocations() { return g_allocations; }

}  // namespace qvtest
