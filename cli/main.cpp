#include <cstdio>
#include <exception>
#include <sstream>
#include <string>
#include <vector>

#include "cli/commands.h"
#include "cli/standard_streams.h"
#include "cli/terminal.h"
#include "solver/model/model.h"
#include "solver/model/nearest_name.h"
#include "solver/model/plain_reason.h"

namespace {

std::string typed_command(int argc, char** argv) {
  std::string text;
  for (int i = 0; i < argc; ++i) text += (i == 0 ? "" : " ") + std::string(argv[i]);
  return text;
}

/// Tells the nearest command if the first word is none: it is most often a mistyped one.
void hint_at_command(int argc, char** argv) {
  if (argc < 2 || argv[1][0] == '-') return;
  const std::vector<std::string> commands = {"run", "rerun", "check", "expand", "make", "version"};
  for (const std::string& command : commands)
    if (command == argv[1]) return;
  qvcli::print(stderr, "qvbrisk: there is no command '%s'; %s\n", argv[1], qvslv::name_hint(argv[1], commands).c_str());
}

int command_line(int argc, char** argv) {
  CLI::App app("Stand-alone solver for user subroutines on deformable soil and in water.", "qvbrisk");
  app.require_subcommand(1);
  app.set_version_flag("--version", "qvbrisk " QVBRISK_VERSION);
  app.footer(
      "Exit codes: 0 done, 1 fault in the run, 2 bad input, 3 stopped by a subroutine, 130 interrupted (ctrl-C, "
      "SIGTERM).");
  qvcli::Action action;
  qvcli::add_run_command(app, action, typed_command(argc, argv));
  qvcli::add_rerun_command(app, action, typed_command(argc, argv));
  qvcli::add_check_command(app, action);
  qvcli::add_expand_command(app, action);
  qvcli::add_make_command(app, action);
  app.add_subcommand("version", "Print the version")->callback([&action] {
    action = [] {
      std::puts("qvbrisk " QVBRISK_VERSION);
      return static_cast<int>(qvcli::k_done);
    };
  });
  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& request) {  // --help and the like
    return app.exit(request);
  } catch (const CLI::ParseError& error) {
    hint_at_command(argc, argv);
    std::ostringstream text;
    app.exit(error, text, text);
    qvcli::print(stderr, "%s", text.str().c_str());
    return qvcli::k_bad_input;
  }
  return action();
}

/// Runs the command line. Every fault ends in a line of text and an exit code.
int perform(int argc, char** argv) {
  try {
    return command_line(argc, argv);
  } catch (const qvslv::ModelError& error) {
    qvcli::print(stderr, "%s\n", error.what());
    return qvcli::k_bad_input;
  } catch (const qvcli::UsageError& error) {
    qvcli::print(stderr, "qvbrisk: %s\n", error.what());
    return qvcli::k_bad_input;
  } catch (const std::exception& error) {
    qvcli::print(stderr, "qvbrisk: %s\n", qvslv::plain_reason(error).c_str());
    return qvcli::k_fault;
  }
}

}  // namespace

int main(int argc, char** argv) {
  qvcli::guard_standard_streams();
  return qvcli::check_output(perform(argc, argv));
}
