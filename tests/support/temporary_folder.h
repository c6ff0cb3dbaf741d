#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

namespace qvtest {

/// A folder for the files of one test; it is removed with this object.
class TemporaryFolder {
public:
  TemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "qvbrisk-test-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
    m_folder = name;
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  std::string path(const std::string& name) const { return (m_folder / name).string(); }
  std::wstring wide_path(const std::string& name) const {
    const std::string narrow = path(name);
    return {narrow.begin(), narrow.end()};
  }

  /// Writes a file byte by byte and returns its path.
  std::string write(const std::string& name, const std::string& content) const {
    std::ofstream(path(name), std::ios::binary) << content;
    return path(name);
  }

private:
  std::filesystem::path m_folder;
};

/// Path of a file in a folder of this process, which is removed when the process ends.
inline std::string temporary_path(const std::string& name) {
  static const TemporaryFolder folder;
  return folder.path(name);
}

}  // namespace qvtest
