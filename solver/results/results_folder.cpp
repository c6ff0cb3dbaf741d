#include "solver/results/results_folder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <stdexcept>

namespace qvslv {

namespace fs = std::filesystem;

namespace {

// The lock's first line names its process; then follows a line for each file of the run, so that what a killed run left
// behind is known too.
constexpr const char* k_lock_name = ".qvbrisk-run";
constexpr const char* k_record_name = "run.json";
constexpr const char* k_results[] = {k_record_name, "report.html", "results.csv", "frames.pvd"};
constexpr const char* k_frames = "frames";  // the folder of the frames, *.vtp

[[noreturn]] void cannot_use(const std::string& path, int cause) {
  throw std::runtime_error("cannot write into the folder " + path + ": " + std::strerror(cause));
}

std::string text_of(const fs::path& path) {
  constexpr std::uintmax_t k_most_bytes = 256'000'000;
  std::error_code failure;
  if (fs::symlink_status(path, failure).type() != fs::file_type::regular) return "";
  if (fs::file_size(path, failure) > k_most_bytes || failure) return "";
  std::ifstream stream(path, std::ios::binary);
  std::ostringstream text;
  text << stream.rdbuf();
  return text.str();
}

/// The files that a run listed in its lock and its record, whoever wrote them.
std::vector<std::string> noted_files(const fs::path& folder) {
  std::vector<std::string> names;
  std::istringstream lines(text_of(folder / k_lock_name));
  std::string line;
  std::getline(lines, line);
  while (std::getline(lines, line)) names.push_back(line);
  const auto record = nlohmann::json::parse(text_of(folder / k_record_name), nullptr, false);
  if (!record.is_object()) return names;
  const auto files = record.find("files");
  if (files == record.end() || !files->is_array()) return names;
  for (const auto& name : *files)
    if (name.is_string()) names.push_back(name.get<std::string>());
  names.emplace_back(k_record_name);
  return names;
}

/// Can a run have written a file of this name? A record may come from anywhere, so its list is not believed.
bool is_result_name(const fs::path& name) {
  for (const char* known : k_results)
    if (name == known) return true;
  return name.parent_path() == k_frames && name.extension() == ".vtp" && name.filename() != ".vtp";
}

bool is_folder(const fs::path& path) {
  std::error_code failure;
  return fs::symlink_status(path, failure).type() == fs::file_type::directory;  // a link to a folder is none
}

/// The process that holds the lock, for messages.
std::string holder(const std::string& lock_path) {
  const std::string text = text_of(lock_path);
  return text.substr(0, text.find('\n'));
}

bool same_file(const struct stat& a, const struct stat& b) { return a.st_dev == b.st_dev && a.st_ino == b.st_ino; }

}  // namespace

ResultsFolder::ResultsFolder(const std::string& path, bool force)
    : m_path(path), m_lock_path(path + "/" + k_lock_name) {
  std::error_code failure;
  fs::create_directories(path, failure);
  if (failure) cannot_use(path, failure.value());
  take_lock(force);
  try {
    remove_earlier_files();
    refuse_foreign_files();
  } catch (...) {
    unlink(m_lock_path.c_str());
    close(m_lock);
    throw;
  }
  const std::string head = "process " + std::to_string(getpid()) + "\n";
  if (ftruncate(m_lock, 0) != 0 || pwrite(m_lock, head.data(), head.size(), 0) < 0) cannot_use(path, errno);
  lseek(m_lock, 0, SEEK_END);
}

ResultsFolder::~ResultsFolder() {
  if (m_lock < 0) return;
  struct stat ours = {}, there = {};
  const bool held = fstat(m_lock, &ours) == 0 && lstat(m_lock_path.c_str(), &there) == 0 && same_file(ours, there);
  if (held) unlink(m_lock_path.c_str());  // before the lock goes, so that nobody can hold a removed one
  close(m_lock);
}

void ResultsFolder::take_lock(bool force) {
  for (;;) {
    m_lock = open(m_lock_path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0666);
    if (m_lock < 0) cannot_use(m_path, errno);
    if (flock(m_lock, LOCK_EX | LOCK_NB) == 0) {
      struct stat ours = {}, there = {};
      fstat(m_lock, &ours);
      if (lstat(m_lock_path.c_str(), &there) == 0 && same_file(ours, there)) return;
    } else if (errno != EWOULDBLOCK) {
      const int cause = errno;
      close(m_lock);
      cannot_use(m_path, cause);
    } else if (force) {
      m_earlier = noted_files(m_path);
      unlink(m_lock_path.c_str());  // its holder sees that at its next output
    } else {
      close(m_lock);
      throw std::runtime_error("the folder " + m_path + " is being written by another run (" + holder(m_lock_path) +
                               "); wait for its end, name another folder with --out, or take this one with --force");
    }
    close(m_lock);
  }
}

void ResultsFolder::remove_earlier_files() {
  const fs::path folder(m_path);
  const bool has_frames = is_folder(folder / k_frames);
  const std::vector<std::string> noted = noted_files(folder);
  m_earlier.insert(m_earlier.end(), noted.begin(), noted.end());
  for (const std::string& name : m_earlier) {
    if (!is_result_name(name) || (!fs::path(name).parent_path().empty() && !has_frames)) continue;
    std::error_code failure;
    const fs::file_type type = fs::symlink_status(folder / name, failure).type();
    if (type != fs::file_type::regular && type != fs::file_type::symlink) continue;
    fs::remove(folder / name, failure);  // of a link, the link
    if (failure) cannot_use(m_path, failure.value());
  }
  rmdir((folder / k_frames).c_str());  // stays if the user put something there
}

void ResultsFolder::refuse_foreign_files() const {
  const fs::path folder(m_path);
  std::error_code failure;
  const auto refuse = [this](const std::string& name) {
    throw std::runtime_error("the folder " + m_path + " holds '" + name +
                             "', which no run wrote (no run.json lists it) and which is not overwritten; name another "
                             "folder with --out, or move it away");
  };
  for (const char* name : k_results)
    if (fs::symlink_status(folder / name, failure).type() != fs::file_type::not_found) refuse(name);
  if (fs::symlink_status(folder / k_frames, failure).type() != fs::file_type::not_found &&
      !is_folder(folder / k_frames))
    refuse(k_frames);
}

std::string ResultsFolder::add(const std::string& name) {
  const std::string line = name + "\n";
  if (write(m_lock, line.data(), line.size()) != static_cast<ssize_t>(line.size())) cannot_use(m_path, errno);
  m_files.push_back(name);
  return m_path + "/" + name;
}

void ResultsFolder::check_held() const {
  struct stat ours = {}, there = {};
  if (lstat(m_lock_path.c_str(), &there) != 0)
    throw std::runtime_error("the results are lost: the folder " + m_path + " was removed or emptied during the run");
  if (fstat(m_lock, &ours) != 0 || !same_file(ours, there))
    throw std::runtime_error("the results are lost: another run (" + holder(m_lock_path) + ") took the folder " +
                             m_path);
}

void ResultsFolder::check_there(const std::vector<std::string>& names) const {
  check_held();
  for (const std::string& name : names) {
    const std::string path = m_path + "/" + name;
    struct stat there = {};
    if (lstat(path.c_str(), &there) != 0 || !S_ISREG(there.st_mode) || there.st_size == 0)
      throw std::runtime_error("the results are not whole: " + path + " is gone or empty");
  }
}

}  // namespace qvslv
