#pragma once

#include <cstddef>
#include <utility>
#include <vector>

namespace qvslv {

/// Keeps a growing list within a number of bytes. When it grows beyond, every second item goes and from then on only
/// every second one of those to come stays: what is left is an even subset from the first item on. The item that was
/// added last is always there, as the last one.
class EvenSubset {
public:
  explicit EvenSubset(std::size_t most_bytes) : m_most_bytes(most_bytes) {}

  /// @param items  the list that this object keeps, and nobody else changes
  /// @param bytes  that the item holds
  template <class Item>
  void add(std::vector<Item>& items, Item item, std::size_t bytes) {
    if (m_count > 0 && (m_count - 1) % m_stride != 0) drop(items, items.size() - 1);
    items.push_back(std::move(item));
    m_bytes.push_back(bytes);
    m_sum += bytes;
    ++m_count;
    while (m_sum > m_most_bytes && items.size() > 2) halve(items);
  }

  std::size_t count() const { return m_count; }  ///< items that were added, kept or not

private:
  template <class Item>
  void drop(std::vector<Item>& items, std::size_t k) {
    m_sum -= m_bytes[k];
    items.erase(items.begin() + static_cast<std::ptrdiff_t>(k));
    m_bytes.erase(m_bytes.begin() + static_cast<std::ptrdiff_t>(k));
  }

  template <class Item>
  void halve(std::vector<Item>& items) {
    m_stride *= 2;
    std::size_t kept = 0;
    m_sum = 0;
    for (std::size_t k = 0; k < items.size(); ++k) {
      if (k % 2 != 0 && k + 1 < items.size()) continue;
      if (kept != k) items[kept] = std::move(items[k]);
      m_bytes[kept] = m_bytes[k];
      m_sum += m_bytes[kept++];
    }
    items.resize(kept);
    m_bytes.resize(kept);
  }

  std::size_t m_most_bytes;
  std::size_t m_count = 0, m_stride = 1, m_sum = 0;
  std::vector<std::size_t> m_bytes;  ///< per item
};

}  // namespace qvslv
