#pragma once

#include "common/data_file.h"

namespace qv {

/// The tokens of a file of numbers, with the grammar of formatted stream input, through a buffer that stays in the
/// cache. After the first token that cannot be read nothing more is: every further request fails and writes nothing.
class token_source {
public:
  explicit token_source(data_file& file) : file_(file) {}

  /// The next integer.
  bool integer(int& value);
  /// The next real number.
  bool real(double& value);
  /// One character that is no white space, whichever it is.
  bool separator();
  /// Bytes behind the token that was returned last, as far as known.
  std::size_t bytes_left() const { return static_cast<std::size_t>(end_ - at_) + file_.bytes_left(); }

private:
  bool find_token();
  bool goes_on(const char* from);
  bool refill();
  bool fail();

  data_file& file_;
  large_vector<char> buffer_;
  const char* at_ = nullptr;
  const char* end_ = nullptr;
  bool more_ = true;  ///< the file has not ended yet
  bool good_ = true;
};

}  // namespace qv
