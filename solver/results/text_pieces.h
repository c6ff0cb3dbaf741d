#pragma once

#include <deque>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qvslv {

/// A long text as its pieces in order, so that it can be written without being put together in memory first.
class TextPieces {
public:
  TextPieces() = default;
  TextPieces(TextPieces&&) = default;
  TextPieces& operator=(TextPieces&&) = default;
  TextPieces(const TextPieces&) = delete;  // the pieces refer to the texts that this object holds
  TextPieces& operator=(const TextPieces&) = delete;
  ~TextPieces() = default;

  void add(std::string text) { m_pieces.emplace_back(m_held.emplace_back(std::move(text))); }
  /// Adds a text that is there for as long as the program runs.
  void add_lasting(std::string_view text) { m_pieces.push_back(text); }

  const std::vector<std::string_view>& pieces() const { return m_pieces; }
  std::string together() const {
    std::string text;
    for (const std::string_view piece : m_pieces) text += piece;
    return text;
  }

private:
  std::deque<std::string> m_held;  // its texts stay where they are when more come, and when it is moved
  std::vector<std::string_view> m_pieces;
};

}  // namespace qvslv
