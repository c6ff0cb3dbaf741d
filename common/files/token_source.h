#pragma once

#include "common/files/data_file.h"

namespace qv {

/// The tokens of a file of numbers, with the grammar of formatted stream input. After the first token that cannot be
/// read nothing more is: every further request fails and writes nothing.
class token_source : public file_window {
public:
  using file_window::file_window;

  /// The next integer.
  bool integer(int& value);
  /// The next real number.
  bool real(double& value);
  /// One character that is no white space, whichever it is.
  bool separator();

private:
  bool find_token();
  bool goes_on(const char* from);
  bool read_on();
  bool fail();

  bool m_more = true;  ///< the file has not ended yet
  bool m_good = true;
};

}  // namespace qv
