#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <stdexcept>
#include <string>

namespace qvcli {

/// Exit codes of the command, documented in docs/command-line.md.
enum ExitCode {
  k_done = 0,
  k_fault = 1,         ///< a fault in the run: a subroutine's message, the integrator, a file that cannot be written
  k_bad_input = 2,     ///< a mistake on the command line, in the model file or in a data file
  k_stopped = 3,       ///< a subroutine asked to stop
  k_interrupted = 130  ///< ctrl-C, SIGTERM, SIGHUP
};

/// What a subcommand does after the command line is read; returns the exit code.
using Action = std::function<int()>;

// Each adds one subcommand to the command line. If the user gives this one, `action` becomes what it does.
void add_run_command(CLI::App& app, Action& action, const std::string& typed);
void add_rerun_command(CLI::App& app, Action& action, const std::string& typed);
void add_check_command(CLI::App& app, Action& action);
void add_expand_command(CLI::App& app, Action& action);
void add_make_command(CLI::App& app, Action& action);
// The same for the subcommands of `make`.
void add_make_wave(CLI::App& make, Action& action);
void add_make_current(CLI::App& make, Action& action);

/// Adds the option `--made`, the folder for the files that are made for a model.
void add_made_option(CLI::App* command, std::string& folder);

/// A mistake on the command line that shows only after the line is read.
class UsageError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

}  // namespace qvcli
