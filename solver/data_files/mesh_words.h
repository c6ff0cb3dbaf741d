#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qvslv {

/// Cuts the text of a mesh file into words and counts its lines, from 1.
class MeshWords {
public:
  explicit MeshWords(std::string_view text, std::size_t first_line = 1) : m_text(text), m_line(first_line) {}

  /// The next word, of whatever line; empty at the end of the text. line() is then the word's.
  std::string_view next();
  /// What is left of the line, without blanks around it.
  std::string_view rest_of_line();
  /// Is there another word on this line? A backslash before the line's end continues it on the next one.
  bool more_on_line();
  void next_line();  ///< goes on behind the end of the line, if that is next
  bool at_end() const { return m_at >= m_text.size(); }
  std::size_t line() const { return m_line; }
  std::size_t position() const { return m_at; }  ///< byte behind what was read

  /// The next word as a coordinate. `what` names it in the message.
  template <class Real>
  Real number(const char* what);

  [[noreturn]] void fail(const std::string& text) const;

private:
  std::string_view m_text;
  std::size_t m_at = 0;
  std::size_t m_line;
};

/// A word for a message: cut short, and without what a terminal would obey.
std::string quoted_word(std::string_view word);

}  // namespace qvslv
