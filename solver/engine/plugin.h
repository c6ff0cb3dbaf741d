#pragma once

#include <stdexcept>
#include <string>

#include "qvbrisk/subroutines.h"

namespace qvslv {

class PluginError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

/// A shared library of user subroutines. The dynamic linker binds the services that it leaves undefined to those of
/// this process: libqvslv.so, or a test program, defines them. The library's own symbols stay private to it.
class Plugin {
public:
  /// Loads the library and binds all its symbols. Throws PluginError with the loader's text if that fails.
  explicit Plugin(const std::string& path);
  /// Unloads the library, and its module state with it: the next run starts from a fresh one.
  ~Plugin();
  Plugin(const Plugin&) = delete;
  Plugin& operator=(const Plugin&) = delete;

  /// The exported user subroutine of that name. Throws PluginError if the library itself has no such function: the
  /// loader looks in what the library is linked to as well, and would find `system` or `abort` there.
  qv_user_subroutine find(const std::string& name) const;

  /// The file that was loaded, as the loader knows it.
  const std::string& path() const { return m_file; }

private:
  std::string m_path;  ///< as asked for
  std::string m_file;
  void* m_library;
};

}  // namespace qvslv
