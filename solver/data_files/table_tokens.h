#pragma once

#include <cstddef>
#include <sstream>
#include <string>

namespace qvslv {

/// Reads a WAVE or CURRENT file token by token as the library's readers do: numbers by formatted stream input, and
/// between two numbers one character of any kind but white space. After the first token that cannot be read, no further
/// one is read, and values passed in stay as they were. Remembers where that was, and where a character was taken for a
/// separator that was hardly meant as one.
class TableTokens {
public:
  explicit TableTokens(const std::string& text);

  // Each reads one token. False if it cannot be read, now or because an earlier one could not.
  bool integer(int& value);
  bool real(double& value);
  bool separator();

  bool stopped() const { return m_stopped; }
  /// Line, from 1, of the text that could not be read.
  int stop_line() const { return m_stop_line; }
  /// First word of the text that could not be read; empty at the end of the file.
  const std::string& stop_word() const { return m_stop_word; }
  /// Line, from 1, of the first separator that could be a part of a number: a digit, a sign, a point, a letter. 0 if
  /// there is none.
  int odd_line() const { return m_odd_line; }
  char odd_separator() const { return m_odd_separator; }

  std::size_t size() const { return m_text.size(); }
  std::size_t position() const { return m_at; }  ///< number of bytes up to the end of the last token
  int line() const;                              ///< line of the last token's end, from 1

private:
  std::size_t next() const;
  template <class Token>
  bool read_by_stream(Token& value);
  bool read_plain(double& value);
  bool settle(std::size_t began);
  int line_of(std::size_t position) const;

  const std::string& m_text;
  std::istringstream m_stream;
  std::size_t m_at = 0;  ///< end of the last token
  bool m_stopped = false;
  int m_stop_line = 0, m_odd_line = 0;
  char m_odd_separator = 0;
  std::string m_stop_word;
};

/// Reads all bytes of a file; false if it cannot be read.
bool read_whole_file(const std::string& path, std::string& text);

}  // namespace qvslv
