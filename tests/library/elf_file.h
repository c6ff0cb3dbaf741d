#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>

namespace qvtest {

/// What the dynamic linker sees of a 64-bit shared library or program.
struct elf_file {
  std::set<std::string> defined;       ///< dynamic symbols, global or weak, of functions and of data
  std::set<std::string> defined_data;  ///< those of them that are no functions
  std::set<std::string> undefined;     ///< global ones, without their version
  std::set<std::string> weak_undefined;
  std::set<std::string> needed;  ///< libraries
  bool bind_now = false;
  bool has_relro = false;     ///< what is relocated is read-only afterwards
  bool shadow_stack = false;  ///< marked as keeping to a shadow stack
  std::optional<std::string> runpath;
  std::map<std::string, std::string> first_bytes;  ///< by defined function: the first four bytes of its code
};

/// Reads a library's dynamic section and symbols. Throws std::runtime_error for anything else.
elf_file read_elf(const std::string& path);

}  // namespace qvtest
