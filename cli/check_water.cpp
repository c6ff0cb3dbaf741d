#include "cli/check_water.h"

#include <algorithm>
#include <cstdio>
#include <vector>

#include "cli/commands.h"
#include "cli/terminal.h"
#include "solver/data_files/made_file.h"
#include "solver/data_files/table_tokens.h"
#include "solver/data_files/water_check.h"
#include "solver/data_files/wave_file.h"

namespace qvcli {

namespace {

std::string text_of(const std::string& file, const char* kind) {
  std::string text;
  if (!qvslv::read_whole_file(file, text)) throw UsageError(std::string("there is no ") + kind + " file " + file);
  return text;
}

struct Range {
  double least, most;
};

Range range_of(const std::vector<std::vector<double>>& table) {
  Range range{table.front().front(), table.front().front()};
  for (const std::vector<double>& row : table) {
    const auto [least, most] = std::minmax_element(row.begin(), row.end());
    range = {std::min(range.least, *least), std::max(range.most, *most)};
  }
  return range;
}

void tell_wave(const std::string& file, const qvslv::WaveFile& wave) {
  const Range elevation = range_of(wave.elevation), velocity = range_of(wave.velocity);
  print(stdout, "%s: %zu times from %g to %g, %zu positions from %g to %g\n", file.c_str(), wave.time.size(),
        wave.time.front(), wave.time.back(), wave.x.size(), wave.x.front(), wave.x.back());
  print(stdout, "  elevation %g to %g, vertical velocity %g to %g\n", elevation.least, elevation.most, velocity.least,
        velocity.most);
}

}  // namespace

qvslv::Findings check_wave(const std::string& file, bool describe) {
  const qvslv::WaveCheck check = qvslv::check_wave_text(text_of(file, "WAVE"), file);
  if (check.wave && describe) tell_wave(file, *check.wave);
  return check.found;
}

void tell_current_table(const char* name, const qvslv::CurrentTable& table) {
  if (table.key.empty()) return;
  print(stdout, "  along %s: %zu point%s", name, table.key.size(), table.key.size() == 1 ? "" : "s");
  const auto [least, most] = std::minmax_element(table.value.begin(), table.value.end());
  if (table.key.size() == 1 && !table.over_x()) {
    print(stdout, ", speed %g everywhere\n", *least);
  } else {
    print(stdout, " over %s from %g to %g, speed %g to %g, %s\n", table.over_x() ? "x" : "y", table.key.front(),
          table.key.back(), *least, *most, table.over_x() ? "0 outside" : "held outside");
  }
}

qvslv::Findings check_current(const std::string& file, bool describe) {
  const qvslv::CurrentCheck check = qvslv::check_current_text(text_of(file, "CURRENT"), file);
  if (!describe) return check.found;
  print(stdout, "%s:\n", file.c_str());
  tell_current_table("x", check.current.along_x);
  tell_current_table("y", check.current.along_y);
  return check.found;
}

void tell_water_of(const qvslv::ModelFile& file) {
  for (const qvslv::WaveRecipe& wave : file.waves)
    if (qvslv::made_file_state(wave.path, wave.settings) != qvslv::MadeFileState::current)
      print(stdout, "  wave %s: a run makes it first (%d times, %d positions)\n", wave.file.c_str(),
            qvslv::time_rows(wave.settings), qvslv::columns_along_x(wave.settings));
  for (const qvslv::CurrentRecipe& current : file.currents)
    if (qvslv::made_file_state(current.path, current.settings) != qvslv::MadeFileState::current)
      print(stdout, "  current %s: a run makes it first\n", current.file.c_str());
}

}  // namespace qvcli
