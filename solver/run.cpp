#include "solver/run.h"

#include <Simbody.h>
#include <dlfcn.h>
#include <fmt/chrono.h>
#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <ctime>
#include <filesystem>
#include <future>
#include <memory>
#include <optional>

#include "solver/data_files/made_file.h"
#include "solver/engine/engine.h"
#include "solver/model/plain_reason.h"
#include "solver/read_model.h"
#include "solver/results/output_file.h"
#include "solver/results/recorder.h"
#include "solver/results/report_page.h"
#include "solver/results/results_folder.h"
#include "solver/results/water_surface.h"
#include "solver/watch/watch.h"

namespace qvslv {

namespace {

using Clock = std::chrono::steady_clock;

std::string now_utc() { return fmt::format("{:%Y-%m-%dT%H:%M:%SZ}", fmt::gmtime(std::time(nullptr))); }

/// The output times: multiples of the output step, and the end.
class OutputTimes {
public:
  explicit OutputTimes(const Simulation& simulation) : m_end(simulation.end_time), m_step(simulation.output_step) {
    constexpr double k_slack = 1e-9;  // of a step; covers the rounding of a decimal multiple
    if (!(m_end > 0)) return;         // only the state at time 0 is recorded
    if (!(m_step > 0) || m_step > m_end) m_step = m_end;
    m_count = static_cast<long>(std::ceil(m_end / m_step - k_slack));
    // k / 50 is the double nearest to the decimal number that is meant; k * 0.02 is often its neighbour.
    const double per_unit = std::round(1.0 / m_step);
    if (per_unit > 0 && std::abs(per_unit * m_step - 1.0) < 1e-14) m_per_unit = per_unit;
  }

  long count() const { return m_count; }  ///< without time 0
  double at(long k) const {
    if (k >= m_count) return m_end;
    return m_per_unit > 0 ? static_cast<double>(k) / m_per_unit : static_cast<double>(k) * m_step;
  }

private:
  double m_end;
  double m_step;
  double m_per_unit = 0;
  long m_count = 0;
};

/// The shared library or program that holds an address.
std::string file_of(const void* address) {
  Dl_info found = {};
  return dladdr(address, &found) != 0 && found.dli_fname != nullptr ? found.dli_fname : "";
}

std::string simbody_version() {
  int major = 0, minor = 0, build = 0;
  SimTK_version_simbody(&major, &minor, &build);
  return fmt::format("{}.{}.{}", major, minor, build);
}

/// One run from its folder to its summary.
class Run {
public:
  Run(const Model& model, RunOptions& options) : m_model(model), m_options(options), m_began(Clock::now()) {
    m_record.plugin_path = options.plugin_path;
    m_record.command = options.command;
    m_record.overrides = options.overrides;
    m_record.model_text = options.model_text;
    m_record.resolved_model = options.resolved_model;
    m_record.inputs = options.inputs;
    m_record.warnings = options.warnings;
    m_record.engine_version = simbody_version();
    m_record.running = true;
    m_record.started = now_utc();
  }

  RunSummary run() {
    try {
      m_folder.emplace(m_options.out_folder, m_options.force);
      m_folder->add("run.json");
      write_record();
    } catch (const std::exception& error) {
      finish(RunOutcome::failed, plain_reason(error));
      return m_summary;
    }
    try {
      const Plugin plugin(m_options.plugin_path);
      note_inputs(plugin);
      Engine engine(
          m_model, plugin, m_time, [this](const std::string& text) { warn("subroutine", text); }, m_options.threads);
      integrate(engine);
    } catch (const std::exception& error) {  // for example a fault in the set-up or a full disk
      finish(RunOutcome::failed, plain_reason(error));
    }
    close_record();
    return m_summary;
  }

private:
  void note_inputs(const Plugin& plugin) {
    m_record.inputs.push_back({"library", m_options.plugin_path, plugin.path()});
    m_record.inputs.push_back({"solver", "libqvslv.so", file_of(reinterpret_cast<const void*>(&read_model_file))});
    m_record.inputs.push_back({"solver", "libqvslv_engine.so", file_of(reinterpret_cast<const void*>(&now_utc))});
    m_record.inputs.push_back({"command", "qvbrisk", "/proc/self/exe"});
    for (InputFile& input : m_record.inputs) {
      std::error_code failure;
      const std::filesystem::path path = std::filesystem::canonical(input.path, failure);
      if (!failure) input.path = path.string();
      if (input.role == "model") {
        input.digest = digest_of_text(m_options.model_text);  // what was read; the file may be edited meanwhile
      }
    }
    m_digests = take_digests(m_record.inputs);
  }

  void check_inputs() {
    if (!m_digests.valid()) return;  // the run ended before its inputs were known
    m_record.inputs = m_digests.get();
    for (const InputFile& input : m_record.inputs)
      if (input.role != "model" && !is_unchanged(input))
        warn("input-changed", "the file " + input.path +
                                  " was changed while the run went on; run.json tells what was "
                                  "in it at the start");
  }

  void integrate(Engine& engine) {
    engine.start();
    if (engine.fault().raised()) return finish(engine.fault().outcome(), engine.fault().message());
    if (m_refused) return;
    m_recorder = std::make_unique<Recorder>(
        engine, *m_folder, [this](const std::string& text) { warn("no-picture", text); }, m_options.recording,
        std::move(m_options.roads));
    try {
      m_recorder->record(engine);
      Watch watch(engine, m_recorder->recording(), m_options.warnings);
      advance(engine, *m_recorder, watch);
    } catch (const std::exception& error) {
      finish(RunOutcome::failed, plain_reason(error));
    }
    warn_about_rejected_steps(engine);
    m_summary.time = engine.time();
    m_summary.steps = engine.steps();
    m_summary.evaluations = engine.evaluations();
  }

  /// The library never searches a water table backwards in time. After a rejected step the water therefore stays ahead
  /// until the time has caught up.
  void warn_about_rejected_steps(const Engine& engine) {
    const std::vector<Water>& waters = m_recorder->recording().waters;
    if (engine.rejected_steps() == 0 || std::none_of(waters.begin(), waters.end(), is_moving)) return;
    warn("waves-ahead",
         fmt::format(
             "the integrator tried {} of {} steps again with a smaller one; after that the waves stand ahead of the "
             "time for a moment. For the exact sea take integrator = \"runge-kutta-fixed\" with a step, or a max_step "
             "so small that this line goes away",
             engine.rejected_steps(), engine.steps()));
  }

  void advance(Engine& engine, Recorder& recorder, Watch& watch) {
    const OutputTimes outputs(m_model.simulation);
    for (long k = 1; k <= outputs.count(); ++k) {
      while (engine.time() < outputs.at(k)) {
        if (!engine.step(outputs.at(k))) return finish(engine.fault().outcome(), engine.fault().message());
        look(engine, outputs.at(k), watch);
        if (m_refused) return;
        if (m_options.on_progress) {
          m_options.on_progress({engine.time(), m_model.simulation.end_time, engine.last_step(), wall_seconds()});
        }
        if (m_options.interrupted != nullptr && *m_options.interrupted != 0) {
          return finish(RunOutcome::interrupted, fmt::format("interrupted at time {}", engine.time()));
        }
      }
      const TimeSpent::During here(m_time, Work::results);
      recorder.record(engine);
    }
    finish(RunOutcome::finished, "");
  }

  void look(const Engine& engine, double output, Watch& watch) {
    const TimeSpent::During here(m_time, Work::watch);
    for (const Finding& finding : watch.look({engine, output, wall_seconds()})) warn(finding);
  }

  void tell(const std::string& text) {
    m_record.messages.push_back(text);
    if (m_options.on_message) m_options.on_message(text);
  }

  /// Something that looks wrong while the run goes on, or at its end. Under `strict` it is a fault.
  void warn(const char* id, const std::string& text) { warn(finding_in(m_model.path, 0, Level::warning, id, text)); }

  void warn(const Finding& finding) {
    m_record.warnings.push_back(finding);
    m_refused = m_options.strict;
    if (m_refused) return fail(finding_text(finding));
    tell("warning: " + finding_text(finding));
  }

  void finish(RunOutcome outcome, const std::string& message) {
    m_summary.outcome = outcome;
    m_summary.message = message;
    m_summary.wall_seconds = wall_seconds();
    if (!message.empty()) tell(message);
  }

  /// Trouble that no fault of the engine tells of. The first reason for a run's end stands.
  void fail(const std::string& message) {
    if (m_summary.outcome == RunOutcome::failed && !m_summary.message.empty()) return tell(message);
    finish(RunOutcome::failed, message);
  }

  void close_record() {
    attempt([this] { check_inputs(); });
    m_record.running = false;
    m_time.begin(Work::results);
    note_time();
    try {
      m_folder->check_held();
    } catch (const std::exception& error) {  // nothing more can be written
      m_summary.files.clear();
      if (m_summary.message != error.what()) fail(error.what());
      return;
    }
    if (m_model.simulation.results.page) attempt([this] { write_page(); });
    attempt([this] {
      if (m_recorder) m_recorder->close();
      m_folder->check_there(m_folder->files());
    });
    note_time();
    attempt([this] { write_record(); });  // even if the page could not be written: the record says so
  }

  template <class Write>
  void attempt(Write&& write) {
    try {
      write();
    } catch (const std::exception& error) {
      fail(plain_reason(error));
    }
  }

  /// Written even if nothing was recorded: what a user opens tells how the run ended.
  void write_page() {
    const std::string path = m_folder->add("report.html");
    note_files();
    m_record.summary = m_summary;
    write_new_file(path, report_page(m_model, m_recorder ? m_recorder->recording() : Recording{}, m_record));
  }

  void write_record() {
    note_files();
    m_record.summary = m_summary;
    write_file_whole(run_record_text(m_model, m_record), m_folder->path() + "/run.json");
  }

  /// The page first: it is what a user opens first.
  void note_files() {
    m_summary.files = m_folder->files();
    const auto page = std::find(m_summary.files.begin(), m_summary.files.end(), "report.html");
    if (page != m_summary.files.end()) std::rotate(m_summary.files.begin(), page, page + 1);
  }

  void note_time() {
    m_summary.wall_seconds = wall_seconds();
    m_record.time_spent = m_time.shares(m_model, m_summary.wall_seconds);
  }

  double wall_seconds() const {
    return m_options.seconds ? m_options.seconds() : std::chrono::duration<double>(Clock::now() - m_began).count();
  }

  const Model& m_model;
  RunOptions& m_options;
  Clock::time_point m_began;
  TimeSpent m_time;
  std::optional<ResultsFolder> m_folder;
  RunRecord m_record;
  RunSummary m_summary;
  std::future<std::vector<InputFile>> m_digests;  ///< the record's inputs, while their digests are taken
  bool m_refused = false;                         ///< a warning came, and warnings are errors
  std::unique_ptr<Recorder> m_recorder;           ///< null if the run ended before its start
};

}  // namespace

RunSummary run_model(const Model& model, RunOptions options) { return Run(model, options).run(); }

RunSummary run_model(const ModelFile& file, RunOptions options) {
  options.model_text = file.text;
  options.resolved_model = file.resolved;
  options.inputs = file.inputs;
  options.warnings = file.findings;
  return Run(file.model, options).run();
}

}  // namespace qvslv
