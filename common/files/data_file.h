#pragma once

#include <cstdio>
#include <memory>
#include <string>

#include "common/files/large_vector.h"
#include "common/files/number_scanner.h"

/// Data files named by a string entity of the model.
namespace qv {

/// A file that is read once, from its beginning to its end.
class data_file {
public:
  /// Opens the file; false if it cannot be opened.
  bool open(const std::string& name);
  /// Fills `buffer` as far as the file goes and returns the number of bytes; 0 at the end of the file, and for
  /// something that opens but cannot be read (a folder).
  std::size_t read(char* buffer, std::size_t size);
  /// Bytes that are still to come; also 0 if that cannot be known (a pipe).
  std::size_t bytes_left() const { return m_bytes_left; }

private:
  struct closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  std::unique_ptr<std::FILE, closer> m_file;
  std::size_t m_bytes_left = 0;
};

/// Fetches the path of the model file (GET_QVSPATH_S). False if the host's length is beyond the buffer.
bool fetch_model_path(void* handle, std::wstring& path, int& length);

/// The path of `name` in the folder of the model file. Empty, which means no second attempt, for a model path without
/// "/" or with "/" at its end.
std::wstring beside_model(const std::wstring& model_path, const std::wstring& name);

enum class file_outcome { opened, not_found, path_too_long };

/// Opens the file by the name given or, if that fails, by that name in the model file's folder (GET_QVSPATH_S).
/// Throws the integer 1 if a name has no narrow form.
/// @param path_length  receives the length that the host gives for the model file's path
file_outcome open_data_file(void* handle, const std::wstring& name, data_file& file, int& path_length);

/// The part of a file that is being read. Its buffer is small enough to stay in the processor's cache.
class file_window {
public:
  explicit file_window(data_file& file) : m_file(file) {}

  /// Bytes of the file that nobody has taken yet, as far as known.
  std::size_t bytes_left() const { return static_cast<std::size_t>(m_end - m_at) + m_file.bytes_left(); }

protected:
  /// Moves the bytes that are not taken yet to the front of the buffer and reads on behind them; false at the end of
  /// the file.
  bool refill();

  static constexpr char k_line_end[] = "\n";
  const char* m_at = k_line_end;  ///< the first byte that is not taken yet
  const char* m_end =
      k_line_end;  ///< the end of the bytes in the buffer, where a line end stands that is not the file's

private:
  data_file& m_file;
  large_vector<char> m_buffer;
};

/// One line of a file, without its end.
struct text_line {
  const char* begin;
  const char* end;
  long number;  ///< from 1
};

/// The lines of a file, one after the other. The last line may lack its end.
class line_source : public file_window {
public:
  using file_window::file_window;

  /// The next line, valid until the next call; false at the end.
  bool next(text_line& line);

  /// Reads the numbers that the next line begins with, and takes the whole line. False, and nothing is taken, if the
  /// line begins with fewer numbers or the buffer does not hold all of it; next() tells which.
  template <std::size_t N>
  bool next_numbers(double (&numbers)[N]) {
    const char* at = m_at;
    for (double& number : numbers) {
      if (!scan_number_of_line(at, m_end, number)) return false;
    }
    return take_line(at);
  }

  /// The number of the latest line that was taken, from 1.
  long number() const { return m_number; }

private:
  /// Takes the line in which `at` is; false if the buffer does not hold its end.
  bool take_line(const char* at) {
    while (*at != '\n') ++at;
    if (at == m_end) return false;
    m_at = at + 1;
    ++m_number;
    return true;
  }

  long m_number = 0;
};

/// Fetches the text of a string entity of the model (get_string_s). False if the host's length is beyond the buffer.
bool fetch_string(void* handle, int id, std::wstring& text, int& length);

}  // namespace qv
