#pragma once

#include <string>
#include <vector>

namespace qvslv {

/// The folder of a run. One process at a time holds it, by a lock that ends with the process. Taking it removes what
/// earlier runs wrote, which they noted, and nothing else.
class ResultsFolder {
public:
  ResultsFolder() = default;
  /// Makes the folder where it is missing and takes it. With `force`, takes it from a run that still goes on, which
  /// then ends with a fault. Throws std::runtime_error that says what is in the way: another process, a file that no
  /// run wrote, a folder that cannot be written.
  ResultsFolder(const std::string& path, bool force);
  ~ResultsFolder();
  ResultsFolder(const ResultsFolder&) = delete;
  ResultsFolder& operator=(const ResultsFolder&) = delete;

  const std::string& path() const { return m_path; }

  /// Notes that this run is about to write a file, and returns its whole path. `name` is relative to the folder.
  std::string add(const std::string& name);
  /// Files noted so far, in this order.
  const std::vector<std::string>& files() const { return m_files; }

  /// Throws std::runtime_error if the folder is no longer this run's: removed, or taken by another run.
  void check_held() const;
  /// Throws std::runtime_error if one of these files, relative to the folder, is not there.
  void check_there(const std::vector<std::string>& names) const;

private:
  void take_lock(bool force);
  void remove_earlier_files();
  void refuse_foreign_files() const;

  std::string m_path, m_lock_path;
  int m_lock = -1;  ///< descriptor of the locked file
  std::vector<std::string> m_files;
  std::vector<std::string> m_earlier;  ///< noted by a run that the folder was taken from
};

}  // namespace qvslv
