#include "solver/model_file/recipes.h"

namespace qvslv {

namespace {

/// Makes the file of a recipe when it is missing or outdated, and says what was done.
template <class Make>
void bring_up_to_date(const char* kind, const std::string& path, MadeFileState state, Make make,
                      std::vector<std::string>& lines) {
  if (state == MadeFileState::foreign)
    lines.push_back(std::string(kind) + " " + path + " is there and was not made from settings: used as it is");
  if (state == MadeFileState::foreign || state == MadeFileState::current) return;
  lines.push_back(std::string("made ") + kind + " " + path + make());
}

}  // namespace

std::vector<std::string> bring_files_up_to_date(const ModelFile& file) {
  std::vector<std::string> lines;
  for (const RoadRecipe& road : file.roads) {
    const auto make = [&road] {
      write_road_file(road.settings, road.path);
      return " (" + std::to_string(triangle_count(road.settings)) + " triangles)";
    };
    bring_up_to_date("road", road.path, road_file_state(road.path, road.settings), make, lines);
  }
  for (const WaveRecipe& wave : file.waves) {
    const auto make = [&wave] {
      const WaveFile table = write_wave_file(wave.settings, wave.path);
      return " (" + std::to_string(table.time.size()) + " times, " + std::to_string(table.x.size()) + " positions)";
    };
    bring_up_to_date("wave", wave.path, wave_file_state(wave.path, wave.settings), make, lines);
  }
  for (const CurrentRecipe& current : file.currents) {
    const auto make = [&current] {
      write_current_file(current.settings, current.path);
      return std::string();
    };
    bring_up_to_date("current", current.path, current_file_state(current.path, current.settings), make, lines);
  }
  return lines;
}

}  // namespace qvslv
