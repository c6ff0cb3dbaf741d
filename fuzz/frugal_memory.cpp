#include <cstddef>
#include <cstdlib>
#include <new>

// The allocator of the fuzz targets. A file of a few bytes can ask for a grid of gigabytes: such requests fail as they
// would on a machine that is out of memory, instead of ending the fuzzer. 64 MB keep an input short, too.

namespace {

constexpr std::size_t k_largest_request = std::size_t{64} << 20;

void* allocate(std::size_t size, std::size_t alignment) {
  if (size > k_largest_request) throw std::bad_alloc();
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

void* operator new(std::size_t size) { return allocate(size, 0); }
void* operator new[](std::size_t size) { return allocate(size, 0); }
void* operator new(std::size_t size, std::align_val_t alignment) {
  return allocate(size, static_cast<std::size_t>(alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
  return allocate(size, static_cast<std::size_t>(alignment));
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return allocate_or_null(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return allocate_or_null(size); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t) noexcept { std::free(block); }
void operator delete(void* block, std::align_val_t) noexcept { std::free(block); }
void operator delete[](void* block, std::align_val_t) noexcept { std::free(block); }
void operator delete(void* block, std::size_t, std::align_val_t) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t, std::align_val_t) noexcept { std::free(block); }
