#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

/// The command as a user runs it: its own process, its output caught in files, no terminal.
struct CommandResult {
  int code = -1;  ///< exit code; 128 + signal when a signal ended it
  std::string out, err;
};

/// Variables that a command gets besides those of the tests.
using Environment = std::vector<std::pair<std::string, std::string>>;

/// Runs `qvbrisk` with these arguments in a folder and waits for its end.
CommandResult run_command(const std::vector<std::string>& arguments, const std::filesystem::path& folder,
                          const Environment& environment = {});

/// The same for another program.
CommandResult run_program(const std::string& program, const std::vector<std::string>& arguments,
                          const std::filesystem::path& folder);

/// A command that is still running.
class RunningCommand {
public:
  RunningCommand(const std::vector<std::string>& arguments, const std::filesystem::path& folder,
                 const Environment& environment = {}, const std::string& program = QVBRISK_COMMAND_PATH);
  /// Has it ended by itself?
  bool ended();
  void send(int signal) const;
  CommandResult wait();

private:
  std::filesystem::path m_out, m_err;
  pid_t m_pid = -1;
  bool m_reaped = false;
  int m_status = 0;
};

/// A new empty folder with the name of the running test, which goes when the process ends.
std::filesystem::path fresh_folder();

std::string file_text(const std::filesystem::path& path);
void write_text(const std::filesystem::path& path, const std::string& text);

/// results.csv by columns.
class ResultTable {
public:
  explicit ResultTable(const std::filesystem::path& csv);
  /// Throws when there is no such column.
  const std::vector<double>& operator[](const std::string& column) const;
  size_t rows() const { return m_columns.empty() ? 0 : m_columns.front().size(); }

private:
  std::vector<std::string> m_names;
  std::vector<std::vector<double>> m_columns;
};
