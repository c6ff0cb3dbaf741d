#pragma once

#include "common/files/data_file.h"

namespace qv {

/// The tokens of a file of numbers, with the grammar of formatted stream input. After the first token that cannot be
/// read, every further request fails and writes nothing.
class token_source : public file_window {
public:
  using file_window::file_window;

  /// Reads the next integer; false if there is none.
  bool integer(int& value);
  /// Reads the next real number; false if there is none.
  bool real(double& value);
  /// Reads one character that is not white space, whichever it is; false at the end of the file.
  bool separator();

private:
  bool find_token();
  bool goes_on(const char* from);
  bool read_on();
  bool fail();

  bool m_more = true;  ///< the file has not ended yet
  bool m_good = true;  ///< every token so far could be read
};

}  // namespace qv
