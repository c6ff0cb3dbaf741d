#include <csignal>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "cli/commands.h"
#include "cli/default_paths.h"
#include "cli/progress_line.h"
#include "cli/run_model.h"
#include "cli/tell_findings.h"
#include "cli/terminal.h"
#include "solver/model/model.h"
#include "solver/model/outcome.h"
#include "solver/model/units.h"
#include "solver/model_file/contents.h"
#include "solver/model_file/recipes.h"
#include "solver/read_model.h"
#include "solver/run.h"

namespace qvcli {

namespace {

volatile std::sig_atomic_t interrupted = 0;

void note_interrupt(int signal) { interrupted = signal; }

/// The first ctrl-C, or a batch system's request to end, ends the run in good order; a second one ends the process.
void catch_interrupt() {
  struct sigaction action = {};
  action.sa_handler = note_interrupt;
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) sigaction(signal, &action, nullptr);
}

int exit_code(qvslv::RunOutcome outcome) {
  switch (outcome) {
    case qvslv::RunOutcome::finished:
      return k_done;
    case qvslv::RunOutcome::interrupted:
      return k_interrupted;
    case qvslv::RunOutcome::stopped:
      return k_stopped;
    case qvslv::RunOutcome::failed:
      break;
  }
  return k_fault;
}

const char* outcome_word(qvslv::RunOutcome outcome) {
  switch (outcome) {
    case qvslv::RunOutcome::finished:
      return "finished";
    case qvslv::RunOutcome::interrupted:
      return "interrupted";
    case qvslv::RunOutcome::stopped:
      return "stopped by a subroutine";
    case qvslv::RunOutcome::failed:
      break;
  }
  return "failed";
}

/// How to look at a result file that a user opens first; null for other files.
const char* how_to_look(const std::string& file) {
  if (file == "report.html") return "open in a browser: replay and plots";
  if (file == "results.csv") return "one row per output time, for a spreadsheet or a script";
  if (file == "run.json") return "the model, its inputs with digests, warnings, timings";
  if (std::filesystem::path(file).extension() == ".pvd") return "open in ParaView: bodies and terrain in motion";
  return nullptr;
}

void tell_outcome(const qvslv::RunSummary& summary, const RunRequest& request, const std::string& time_unit) {
  std::FILE* stream = summary.outcome == qvslv::RunOutcome::finished ? stdout : stderr;
  print(stream, "%s: %g %s simulated in %.2f s, %ld steps, %ld evaluations\n", outcome_word(summary.outcome),
        summary.time, time_unit.c_str(), summary.wall_seconds, summary.steps, summary.evaluations);
  if (summary.files.empty()) return;
  print(stream, "results: %s\n", request.out.c_str());
  for (const std::string& file : summary.files)
    if (const char* hint = how_to_look(file)) print(stream, "  %-20s %s\n", file.c_str(), hint);
}

/// Old results must not be taken for those of a model that could not be run.
void remove_old_results(const RunRequest& request) {
  try {
    qvslv::remove_results(request.out);
  } catch (const std::exception&) {  // another run goes on there, or nothing of ours is there
  }
}

int run(RunRequest request) {
  if (request.out.empty()) request.out = default_results_folder(request.model);
  if (request.results) request.overrides.push_back("simulation.results=" + *request.results);
  qvslv::EngineLibrary engine;
  try {
    qvslv::ModelFile file = qvslv::read_model_file(request.model, request.overrides, request.made);
    if (request.strict) make_strict(file.findings);
    const int code = run_model_file(file, request, engine);
    if (any_error(file.findings)) remove_old_results(request);
    return code;
  } catch (const qvslv::ModelError&) {
    remove_old_results(request);
    throw;
  }
}

}  // namespace

int run_model_file(const qvslv::ModelFile& file, const RunRequest& request, qvslv::EngineLibrary& engine) {
  tell(file.findings);
  if (any_error(file.findings)) return k_bad_input;
  for (const std::string& line : qvslv::make_missing_files(file))
    if (!request.quiet) print(stderr, "%s\n", line.c_str());

  const std::string time_unit = qvslv::UnitSymbols(file.model.units).time;
  ProgressLine progress_line(!request.quiet, time_unit);
  qvslv::RunOptions options;
  options.plugin_path = request.plugin_path.empty() ? default_library() : request.plugin_path;
  options.out_folder = request.out;
  options.command = request.typed;
  options.overrides = request.overrides;
  options.interrupted = &interrupted;
  options.strict = request.strict;
  options.force = request.force;
  options.threads = request.threads;
  options.on_progress = [&](const qvslv::Progress& progress) { progress_line.show(progress); };
  options.on_message = [&](const std::string& message) {
    progress_line.clear();
    print(stderr, "%s\n", message.c_str());
  };
  for (const qvslv::InputFile& input : file.inputs)  // the engine's library is still being loaded
    if (input.role == "road") options.roads.read_ahead(input.path);
  catch_interrupt();
  const qvslv::RunSummary summary = engine.doors().run_model(file, options);
  progress_line.clear();
  if (!request.quiet || summary.outcome != qvslv::RunOutcome::finished) tell_outcome(summary, request, time_unit);
  return exit_code(summary.outcome);
}

void add_made_option(CLI::App* command, std::string& folder) {
  command->add_option("--made", folder, "Folder for the files that are made for a model, shared between runs")
      ->capture_default_str();
}

void add_run_command(CLI::App& app, Action& action, const std::string& typed) {
  auto request = std::make_shared<RunRequest>();
  request->typed = typed;
  CLI::App* command = app.add_subcommand("run", "Run a model file and write its results");
  command->add_option("model", request->model, "Model file (TOML)")->required();
  command->add_option("-o,--out", request->out, "Folder for the results; results/<model> when not given");
  command
      ->add_option("--library", request->plugin_path,
                   "Shared library of user subroutines; the libqvbrisk.so that belongs to this command when not given")
      ->check(CLI::ExistingFile);
  command
      ->add_option("--set", request->overrides, "Change a value of the model file, e.g. body.wheel.mass=12; repeatable")
      ->type_name("KEY=VALUE")
      ->allow_extra_args(false);
  command
      ->add_option(
          "--results", request->results,
          "What to write: table, frames, page or all, several with commas between them; simulation.results of the "
          "model when not given")
      ->type_name("KINDS");
  add_made_option(command, request->made);
  command
      ->add_option("--threads", request->threads,
                   "Most threads to compute elements on that share no data; results are the same for any number")
      ->check(CLI::Range(1, 256))
      ->capture_default_str();
  command->add_flag("--strict", request->strict, "Take every warning for an error");
  command->add_flag("--force", request->force, "Take the results folder from a run that still goes on");
  command->add_flag("-q,--quiet", request->quiet, "Print warnings and faults only");
  command->callback([request, &action] { action = [request] { return run(*request); }; });
}

}  // namespace qvcli
