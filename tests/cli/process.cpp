#include "tests/cli/process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace fs = std::filesystem;

namespace {

[[noreturn]] void become_command(const std::vector<std::string>& arguments, const fs::path& folder, const fs::path& out,
                                 const fs::path& err) {
  std::vector<char*> argv;
  std::string command = QVBRISK_COMMAND;
  argv.push_back(command.data());
  for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
  argv.push_back(nullptr);
  const int out_file = open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  const int err_file = open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  if (chdir(folder.c_str()) != 0 || dup2(out_file, STDOUT_FILENO) < 0 || dup2(err_file, STDERR_FILENO) < 0) _exit(126);
  execv(argv[0], argv.data());
  _exit(127);
}

}  // namespace

RunningCommand::RunningCommand(const std::vector<std::string>& arguments, const fs::path& folder) {
  static int number = 0;
  const std::string base = "qvbrisk_" + std::to_string(getpid()) + "_" + std::to_string(++number);
  out_ = fs::path(testing::TempDir()) / (base + ".out");
  err_ = fs::path(testing::TempDir()) / (base + ".err");
  pid_ = fork();
  if (pid_ < 0) throw std::runtime_error("cannot fork");
  if (pid_ == 0) become_command(arguments, folder, out_, err_);
}

bool RunningCommand::ended() {
  if (!reaped_) reaped_ = waitpid(pid_, &status_, WNOHANG) == pid_;
  return reaped_;
}

void RunningCommand::send(int signal) const { kill(pid_, signal); }

CommandResult RunningCommand::wait() {
  if (!reaped_ && waitpid(pid_, &status_, 0) != pid_) throw std::runtime_error("the command is gone");
  reaped_ = true;
  CommandResult result;
  result.code = WIFEXITED(status_) ? WEXITSTATUS(status_) : 128 + WTERMSIG(status_);
  result.out = file_text(out_);
  result.err = file_text(err_);
  fs::remove(out_);
  fs::remove(err_);
  return result;
}

CommandResult run_command(const std::vector<std::string>& arguments, const fs::path& folder) {
  return RunningCommand(arguments, folder).wait();
}

fs::path fresh_folder() {
  const testing::TestInfo& test = *testing::UnitTest::GetInstance()->current_test_info();
  const fs::path folder =
      fs::path(testing::TempDir()) / ("qvbrisk_" + std::string(test.test_suite_name()) + "_" + test.name());
  fs::remove_all(folder);
  fs::create_directories(folder);
  return folder;
}

std::string file_text(const fs::path& path) {
  std::ifstream stream(path, std::ios::binary);
  std::ostringstream text;
  text << stream.rdbuf();
  return text.str();
}

void write_text(const fs::path& path, const std::string& text) { std::ofstream(path, std::ios::binary) << text; }

ResultTable::ResultTable(const fs::path& csv) {
  std::istringstream stream(file_text(csv));
  std::string line, cell;
  std::getline(stream, line);
  for (std::istringstream head(line); std::getline(head, cell, ',');) names_.push_back(cell);
  columns_.resize(names_.size());
  while (std::getline(stream, line)) {
    std::istringstream row(line);
    for (std::vector<double>& column : columns_) {
      if (!std::getline(row, cell, ',')) throw std::runtime_error("a row of " + csv.string() + " is too short");
      column.push_back(std::stod(cell));
    }
  }
}

const std::vector<double>& ResultTable::operator[](const std::string& column) const {
  for (size_t i = 0; i < names_.size(); ++i)
    if (names_[i] == column) return columns_[i];
  throw std::runtime_error("there is no column " + column);
}
