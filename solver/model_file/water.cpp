#include <algorithm>
#include <cmath>

#include "solver/model_file/reading.h"

namespace qvslv {

namespace {

const std::vector<std::string> k_wave_keys = {"name", "file",     "kind",      "height", "period",    "Hs",
                                              "Tp",   "gamma",    "seed",      "depth",  "direction", "components",
                                              "ramp", "duration", "time_step", "extent", "x_step",    "gravity"};

/// A regular wave has a height and a period, a spectrum Hs and Tp.
double height_or_period(const TableReader& table, bool regular, const char* of_wave, const char* of_spectrum) {
  const char* other = regular ? of_spectrum : of_wave;
  if (table.has(other))
    table.fail(other, std::string(regular ? "a regular wave" : "a spectrum") + " is given by '" +
                          (regular ? of_wave : of_spectrum) + "' instead");
  return table.positive(regular ? of_wave : of_spectrum);
}

void read_spectrum(const TableReader& table, WaveSettings& wave) {
  for (const char* key : {"gamma", "seed", "components"})
    if (table.has(key) && (wave.kind == WaveKind::regular || (key[0] == 'g' && wave.kind != WaveKind::jonswap)))
      table.fail(key, std::string("a wave of kind ") + wave_kind_name(wave.kind) + " has no such key");
  wave.gamma = table.number("gamma", wave.gamma);
  if (table.has("seed")) wave.seed = static_cast<unsigned>(table.count("seed"));
  if (table.has("components")) wave.components = table.count("components");
}

void read_still_water(const TableReader& table, WaveSettings& wave) {
  const std::vector<std::string> known = {"name", "file", "kind", "extent", "duration"};
  for (const std::string& key : k_wave_keys)
    if (table.has(key) && std::find(known.begin(), known.end(), key) == known.end())
      table.fail(key, "still water has no such key; known: name, file, kind, extent, duration");
  wave.extent = table.positive("extent", 0);
  wave.duration = table.positive("duration", 0);
}

void read_moving_water(const TableReader& table, const Model& model, WaveSettings& wave) {
  const bool regular = wave.kind == WaveKind::regular;
  wave.height = height_or_period(table, regular, "height", "Hs");
  wave.period = height_or_period(table, regular, "period", "Tp");
  read_spectrum(table, wave);
  wave.depth = table.positive("depth", 0);
  wave.against_x = table.has("direction") && table.choice("direction", {"+x", "-x"}) == "-x";
  wave.ramp = table.number("ramp", 0);
  wave.duration = table.positive("duration", model.simulation.end_time);
  wave.time_step = table.positive("time_step", 0);
  wave.extent = table.positive("extent", 0);
  wave.x_step = table.positive("x_step", 0);
  const Vec3& g = model.gravity;
  wave.gravity = table.positive("gravity", std::sqrt(g[0] * g[0] + g[1] * g[1] + g[2] * g[2]));
}

WaveSettings read_wave(const TableReader& table, const Model& model) {
  WaveSettings wave;
  wave.kind = wave_kind(table.choice("kind", wave_kind_names()));
  if (wave.kind == WaveKind::still) {
    read_still_water(table, wave);
  } else {
    read_moving_water(table, model, wave);
  }
  wave = completed(wave);
  const std::string mistake = mistake_in(wave);
  if (!mistake.empty()) table.fail(mistake);
  return wave;
}

void warn_about(const WaveSettings& wave, const TableReader& table, Reading& reading) {
  const FilePosition& at = table.at();
  const auto warn = [&](const char* id, const std::string& text) {
    reading.file.findings.push_back({Level::warning, id, at, table.what() + ": " + text});
  };
  for (const std::string& doubt : doubts_about(wave)) warn("wave-settings", doubt);
  const double end = reading.model().simulation.end_time;
  if (wave.kind != WaveKind::still && wave.duration < end)
    warn("wave-ends-early", "the table ends at " + number_text(wave.duration) + ", the run at " + number_text(end) +
                                ": from there on the water keeps its last shape");
}

/// Reads { profile = "linear", speeds = [0.5, 1.5], over = "y", range = [-20, 20] }; the other kinds have one `speed`.
CurrentProfile read_profile(const TableReader& current, const char* key) {
  CurrentProfile profile;
  if (!current.has(key)) return profile;
  const TableReader table = current.table(key, {"profile", "speed", "speeds", "over", "range"});
  const std::string kind = table.choice("profile", {"uniform", "linear", "power"});
  const bool linear = kind == "linear", uniform = kind == "uniform";
  profile.kind = linear ? ProfileKind::linear : uniform ? ProfileKind::uniform : ProfileKind::power;
  const char* without = linear ? "speed" : "speeds";
  if (table.has(without))
    table.fail(without, "a " + kind + " profile is given by '" +
                            (linear ? "speeds' (at both ends of the range)" : "speed'") + " instead");
  if (linear) {
    const std::vector<double> speeds = table.numbers("speeds", 2);
    profile.speed = speeds[0];
    profile.speed_end = speeds[1];
  } else {
    profile.speed = table.number("speed");
  }
  if (uniform) {
    for (const char* stretch : {"over", "range"})
      if (table.has(stretch)) table.fail(stretch, "a uniform profile is the same everywhere");
    return profile;
  }
  profile.over_x = table.has("over") && table.choice("over", {"x", "y"}) == "x";
  const std::vector<double> range = table.numbers("range", 2);
  profile.begin = range[0];
  profile.end = range[1];
  return profile;
}

}  // namespace

void read_waves(const TableReader& root, Reading& reading) {
  for (const TableReader& table : tables_of(root, "wave", k_wave_keys)) {
    std::vector<WaveRecipe>& waves = reading.file.waves;
    const WaveSettings settings = read_wave(table, reading.model());
    const std::string path = path_of_recipe(table, reading, settings_line(settings), "wave", waves);
    if (table.has("name"))
      reading.waves.add(table.text("name"), static_cast<int>(waves.size()), table.position("name"));
    waves.push_back({table.text("file"), path, settings});
    warn_about(waves.back().settings, table, reading);
  }
}

void read_currents(const TableReader& root, Reading& reading) {
  for (const TableReader& table : tables_of(root, "current", {"name", "file", "along_x", "along_y"})) {
    std::vector<CurrentRecipe>& currents = reading.file.currents;
    if (table.has("name"))
      reading.currents.add(table.text("name"), static_cast<int>(currents.size()), table.position("name"));
    const CurrentSettings settings{read_profile(table, "along_x"), read_profile(table, "along_y")};
    const std::string mistake = mistake_in(settings);
    if (!mistake.empty()) table.fail(mistake);
    const std::string path = path_of_recipe(table, reading, settings_line(settings), "current", currents);
    currents.push_back({table.text("file"), path, settings});
  }
}

}  // namespace qvslv
