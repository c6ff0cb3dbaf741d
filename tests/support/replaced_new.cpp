#include "tests/support/replaced_new.h"

#include <cstdlib>
#include <new>

// Out of line, so that the compiler cannot pair a call of new with a free it looked into.
#define QV_OUT_OF_LINE __attribute__((noinline))

namespace {

void* allocate(std::size_t size, std::size_t alignment) {
  qvtest::admit_allocation(size);
  if (size == 0) size = 1;
  void* block = alignment <= alignof(std::max_align_t)
                    ? std::malloc(size)
                    : std::aligned_alloc(alignment, (size + alignment - 1) / alignment * alignment);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

/// The forms that do not throw.
void* allocate_or_null(std::size_t size) noexcept {
  try {
    return allocate(size, 0);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

}  // namespace

QV_OUT_OF_LINE void* operator new(std::size_t size) { return allocate(size, 0); }
QV_OUT_OF_LINE void* operator new[](std::size_t size) { return allocate(size, 0); }
QV_OUT_OF_LINE void* operator new(std::size_t size, std::align_val_t alignment) {
  return allocate(size, static_cast<std::size_t>(alignment));
}
QV_OUT_OF_LINE void* operator new[](std::size_t size, std::align_val_t alignment) {
  return allocate(size, static_cast<std::size_t>(alignment));
}
QV_OUT_OF_LINE void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return allocate_or_null(size); }
QV_OUT_OF_LINE void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return allocate_or_null(size); }
QV_OUT_OF_LINE void operator delete(void* block) noexcept { std::free(block); }
QV_OUT_OF_LINE void operator delete[](void* block) noexcept { std::free(block); }
QV_OUT_OF_LINE void operator delete(void* block, std::size_t) noexcept { std::free(block); }
QV_OUT_OF_LINE void operator delete[](void* block, std::size_t) noexcept { std::free(block); }
QV_OUT_OF_LINE void operator delete(void* block, std::align_val_t) noexcept { std::free(block); }
QV_OUT_OF_LINE void operator delete[](void* block, std::align_val_t) noexcept { std::free(block); }
QV_OUT_OF_LINE void operator delete(void* block, std::size_t, std::align_val_t) noexcept { std::free(block); }
QV_OUT_OF_LINE void operator delete[](void* block, std::size_t, std::align_val_t) noexcept { std::free(block); }
