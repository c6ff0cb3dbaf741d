#include "tests/cli/process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <csignal>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "tests/support/exact_text.h"
#include "tests/support/temporary_folder.h"

namespace fs = std::filesystem;

namespace {

[[noreturn]] void become(std::string program, const std::vector<std::string>& arguments, const fs::path& folder,
                         const fs::path& out, const fs::path& err, const Environment& environment) {
  std::vector<char*> argv;
  argv.push_back(program.data());
  for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
  argv.push_back(nullptr);
  const int out_file = open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  const int err_file = open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  // Files that are made for models go into a folder of this process, not into the home folder of who runs the tests.
  setenv("XDG_CACHE_HOME", qvtest::temporary_path("cache").c_str(), 1);
  for (const auto& [name, value] : environment) setenv(name.c_str(), value.c_str(), 1);
  if (chdir(folder.c_str()) != 0 || dup2(out_file, STDOUT_FILENO) < 0 || dup2(err_file, STDERR_FILENO) < 0) _exit(126);
  execv(argv[0], argv.data());
  _exit(127);
}

}  // namespace

RunningCommand::RunningCommand(const std::vector<std::string>& arguments, const fs::path& folder,
                               const Environment& environment, const std::string& program) {
  static int number = 0;
  const std::string base = "qvbrisk_" + std::to_string(getpid()) + "_" + std::to_string(++number);
  m_out = fs::path(testing::TempDir()) / (base + ".out");
  m_err = fs::path(testing::TempDir()) / (base + ".err");
  m_pid = fork();
  if (m_pid < 0) throw std::runtime_error("cannot fork");
  if (m_pid == 0) become(program, arguments, folder, m_out, m_err, environment);
}

bool RunningCommand::ended() {
  if (!m_reaped) m_reaped = waitpid(m_pid, &m_status, WNOHANG) == m_pid;
  return m_reaped;
}

void RunningCommand::send(int signal) const { kill(m_pid, signal); }

CommandResult RunningCommand::wait() {
  if (!m_reaped && waitpid(m_pid, &m_status, 0) != m_pid) throw std::runtime_error("the command is gone");
  m_reaped = true;
  CommandResult result;
  result.code = WIFEXITED(m_status) ? WEXITSTATUS(m_status) : 128 + WTERMSIG(m_status);
  result.out = file_text(m_out);
  result.err = file_text(m_err);
  fs::remove(m_out);
  fs::remove(m_err);
  return result;
}

CommandResult run_command(const std::vector<std::string>& arguments, const fs::path& folder,
                          const Environment& environment) {
  return RunningCommand(arguments, folder, environment).wait();
}

CommandResult run_program(const std::string& program, const std::vector<std::string>& arguments,
                          const fs::path& folder) {
  return RunningCommand(arguments, folder, {}, program).wait();
}

fs::path fresh_folder() {
  const testing::TestInfo& test = *testing::UnitTest::GetInstance()->current_test_info();
  // In a folder of this process: two suites may run at a time.
  const fs::path folder = qvtest::temporary_path(std::string(test.test_suite_name()) + "_" + test.name());
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
  for (std::istringstream head(line); std::getline(head, cell, ',');) m_names.push_back(cell);
  m_columns.resize(m_names.size());
  while (std::getline(stream, line)) {
    std::istringstream row(line);
    for (std::vector<double>& column : m_columns) {
      if (!std::getline(row, cell, ',')) throw std::runtime_error("a row of " + csv.string() + " is too short");
      column.push_back(qvtest::number_in(cell));
    }
  }
}

const std::vector<double>& ResultTable::operator[](const std::string& column) const {
  for (size_t i = 0; i < m_names.size(); ++i)
    if (m_names[i] == column) return m_columns[i];
  throw std::runtime_error("there is no column " + column);
}
