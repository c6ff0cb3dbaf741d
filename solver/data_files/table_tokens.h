#pragma once

#include <cstddef>
#include <sstream>
#include <string>

namespace qvslv {

/// The tokens of a WAVE or CURRENT file as their readers take them: numbers by formatted stream input, and between two
/// of them one character that is no white space, whichever it is. Once something cannot be read nothing more is, and
/// every further value stays as it was. Remembers where that was, and where a separator was hardly meant as one.
class TableTokens {
public:
  explicit TableTokens(const std::string& text);

  bool integer(int& value);
  bool real(double& value);
  bool separator();

  bool stopped() const { return m_stopped; }
  /// Line, from 1, of the text that could not be read; its first word, empty at the end of the file.
  int stop_line() const { return m_stop_line; }
  const std::string& stop_word() const { return m_stop_word; }
  /// Line of the first separator that could be a part of a number: a digit, a sign, a point, a letter. 0: none.
  int odd_line() const { return m_odd_line; }
  char odd_separator() const { return m_odd_separator; }

  std::size_t size() const { return m_text.size(); }
  std::size_t position();  ///< byte of the text behind the last token
  int line();              ///< line of that byte, from 1

private:
  bool settle(std::size_t began);
  int line_of(std::size_t position) const;

  const std::string& m_text;
  std::istringstream m_stream;
  bool m_stopped = false;
  int m_stop_line = 0, m_odd_line = 0;
  char m_odd_separator = 0;
  std::string m_stop_word;
};

/// The file's bytes; false when it cannot be read.
bool read_whole_file(const std::string& path, std::string& text);

}  // namespace qvslv
