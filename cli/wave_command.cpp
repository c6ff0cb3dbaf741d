#include <algorithm>
#include <cstdio>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "cli/commands.h"
#include "cli/terminal.h"
#include "solver/data_files/make_wave.h"
#include "solver/data_files/wave_file.h"
#include "solver/model/nearest_name.h"

namespace qvcli {

namespace {

constexpr double k_standard_gravity = 9.81;  // [m/s^2]

struct WaveRequest {
  qvslv::WaveSettings settings;
  std::string kind = "regular", direction = "+x", out;
  std::vector<const CLI::Option*> needed;    ///< options that waves of any kind need
  std::vector<const CLI::Option*> of_waves;  ///< options that still water does not have
};

void check_what_is_given(const WaveRequest& request, bool still) {
  for (const CLI::Option* option : request.of_waves)
    if (still && option->count() > 0)
      throw UsageError(option->get_name() + ": still water has no such option; known: --extent, --duration, --out");
  for (const CLI::Option* option : request.needed)
    if (!still && option->count() == 0) throw UsageError(option->get_name() + " is required");
}

qvslv::WaveSettings settings_of(const WaveRequest& request) {
  qvslv::WaveSettings settings = request.settings;
  const std::vector<std::string>& kinds = qvslv::wave_kind_names();
  if (std::find(kinds.begin(), kinds.end(), request.kind) == kinds.end())
    throw UsageError("--kind: '" + request.kind + "' is not known; " + qvslv::name_hint(request.kind, kinds));
  settings.kind = qvslv::wave_kind(request.kind);
  check_what_is_given(request, settings.kind == qvslv::WaveKind::still);
  if (request.direction != "+x" && request.direction != "-x")
    throw UsageError("--direction: '" + request.direction + "' is not known; known: +x, -x");
  settings.against_x = request.direction == "-x";
  return qvslv::completed(settings);
}

void tell_waves(const qvslv::WaveSettings& s) {
  const bool regular = s.kind == qvslv::WaveKind::regular;
  print(stdout, "%s, %s %g, %s %g, wave length %.4g", qvslv::wave_kind_name(s.kind),
        regular ? "height" : "significant height", s.height, regular ? "period" : "peak period", s.period,
        qvslv::wave_length(s));
  if (!regular) print(stdout, " (shortest %.4g)", qvslv::shortest_wave_length(s));
  print(stdout, ", height over length %.1f %%\n", 100 * s.height / qvslv::wave_length(s));
}

void tell(const qvslv::WaveSettings& s, const qvslv::WaveFile& wave, const std::string& path) {
  const bool still = s.kind == qvslv::WaveKind::still, regular = s.kind == qvslv::WaveKind::regular;
  print(stdout, "made wave %s: ", path.c_str());
  if (still) {
    print(stdout, "still water\n");
  } else {
    tell_waves(s);
  }
  print(stdout, "  %zu times from 0 to %g, %zu positions from 0 to %g", wave.time.size(), wave.time.back(),
        wave.x.size(), wave.x.back());
  if (still || regular) {
    print(stdout, "\n");
  } else {
    print(stdout, "; significant height of the table %.4g\n", qvslv::significant_height(wave));
  }
}

int make_wave(const WaveRequest& request) {
  const qvslv::WaveSettings settings = settings_of(request);
  const std::string mistake = qvslv::mistake_in(settings);
  if (!mistake.empty()) throw UsageError(mistake);
  for (const std::string& doubt : qvslv::doubts_about(settings)) print(stderr, "warning: %s\n", doubt.c_str());
  tell(settings, qvslv::write_wave_file(settings, request.out), request.out);
  return k_done;
}

void add_wave_options(CLI::App* wave, WaveRequest& request) {
  qvslv::WaveSettings& s = request.settings;
  wave->add_option("--kind", request.kind, "regular, pierson_moskowitz, jonswap or still")->capture_default_str();
  request.needed = {
      wave->add_option("--height,--Hs", s.height, "regular: crest to trough; a spectrum: significant height"),
      wave->add_option("--period,--Tp", s.period, "regular: of the wave; a spectrum: at its peak")};
  request.of_waves = {
      wave->add_option("--gamma", s.gamma, "jonswap: peak enhancement")->capture_default_str(),
      wave->add_option("--seed", s.seed, "A spectrum: same seed, same sea")->capture_default_str(),
      wave->add_option("--components", s.components, "A spectrum: waves it is made of")->capture_default_str(),
      wave->add_option("--depth", s.depth, "Depth of the water; deep when not given"),
      wave->add_option("--direction", request.direction, "+x or -x: where the waves run to")->capture_default_str(),
      wave->add_option("--ramp", s.ramp, "Time over which the waves grow from nothing")};
  request.of_waves.insert(request.of_waves.begin(), request.needed.begin(), request.needed.end());
}

void add_table_options(CLI::App* wave, WaveRequest& request) {
  qvslv::WaveSettings& s = request.settings;
  wave->add_option("--duration", s.duration, "Times run from 0 to this; 20 (peak) periods when not given, still: 1");
  wave->add_option("--extent", s.extent,
                   "Positions run from 0 to this; 5 (peak) wave lengths when not given, still: required");
  const CLI::Option* of_waves[] = {
      wave->add_option("--time-step", s.time_step, "A twentieth of the shortest period when not given"),
      wave->add_option("--x-step", s.x_step, "A twentieth of the shortest wave length when not given"),
      wave->add_option("--gravity", s.gravity, "In the units of lengths and times: 9810 for millimetres")
          ->capture_default_str()};
  request.of_waves.insert(request.of_waves.end(), std::begin(of_waves), std::end(of_waves));
}

}  // namespace

void add_make_wave(CLI::App& make, Action& action) {
  auto request = std::make_shared<WaveRequest>();
  request->settings.gravity = k_standard_gravity;
  CLI::App* wave = make.add_subcommand("wave", "Make a WAVE file: the water's surface over time and position");
  wave->add_option("-o,--out", request->out, "WAVE file to write")->required();
  add_wave_options(wave, *request);
  add_table_options(wave, *request);
  wave->callback([request, &action] { action = [request] { return make_wave(*request); }; });
}

}  // namespace qvcli
