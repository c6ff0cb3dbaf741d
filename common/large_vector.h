#pragma once

#include <sys/mman.h>

#include <cstddef>
#include <limits>
#include <new>
#include <utility>
#include <vector>

namespace qv {

/// Allocator of tables that may reach hundreds of megabytes. Large blocks ask for large pages, which makes filling
/// them several times cheaper and random reads miss the page tables less; elements without an initial value of their
/// own are not zeroed on a resize, since whoever resizes writes them next.
template <class T>
class large_allocator {
public:
  using value_type = T;

  large_allocator() = default;
  template <class U>
  large_allocator(const large_allocator<U>&) {}

  T* allocate(std::size_t count) {
    if (count > std::numeric_limits<std::size_t>::max() / (2 * sizeof(T))) throw std::bad_array_new_length();
    const std::size_t bytes = bytes_of(count);
    void* block = ::operator new(bytes, alignment_of(bytes));
    if (bytes >= k_large) madvise(block, bytes, MADV_HUGEPAGE);  // a wish: nothing depends on it
    return static_cast<T*>(block);
  }
  void deallocate(T* block, std::size_t count) { ::operator delete(block, alignment_of(bytes_of(count))); }

  template <class U, class... Arguments>
  void construct(U* at, Arguments&&... arguments) {
    if constexpr (sizeof...(Arguments) == 0) {
      ::new (static_cast<void*>(at)) U;
    } else {
      ::new (static_cast<void*>(at)) U(std::forward<Arguments>(arguments)...);
    }
  }

  friend bool operator==(const large_allocator&, const large_allocator&) { return true; }
  friend bool operator!=(const large_allocator&, const large_allocator&) { return false; }

private:
  static constexpr std::size_t k_page = std::size_t{2} << 20;
  static constexpr std::size_t k_large = 4 * k_page;
  static constexpr std::size_t k_line = 64;

  static std::size_t bytes_of(std::size_t count) {
    const std::size_t bytes = count * sizeof(T);
    return bytes >= k_large ? (bytes + k_page - 1) / k_page * k_page : bytes;
  }
  static std::align_val_t alignment_of(std::size_t bytes) {
    return std::align_val_t{bytes >= k_large ? k_page : k_line};
  }
};

template <class T>
using large_vector = std::vector<T, large_allocator<T>>;

}  // namespace qv
