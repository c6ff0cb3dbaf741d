#pragma once

#include <cstddef>
#include <limits>
#include <new>
#include <utility>
#include <vector>

namespace qv {

/// Allocator of tables that may reach hundreds of megabytes. They begin on a cache line, and a resize does not zero
/// elements that have no initial value of their own, because whoever resizes writes them next.
template <class T>
class large_allocator {
public:
  using value_type = T;

  large_allocator() = default;
  template <class U>
  large_allocator(const large_allocator<U>&) {}

  T* allocate(std::size_t count) {
    if (count > std::numeric_limits<std::size_t>::max() / sizeof(T)) throw std::bad_array_new_length();
    return static_cast<T*>(::operator new(count * sizeof(T), k_line));
  }
  void deallocate(T* block, std::size_t) { ::operator delete(block, k_line); }

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
  static constexpr std::align_val_t k_line{64};
};

template <class T>
using large_vector = std::vector<T, large_allocator<T>>;

}  // namespace qv
