#include "solver/model_file/recipes.h"

#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace qvslv {

namespace fs = std::filesystem;

namespace {

// Each writes the file of a recipe and returns what to say about its size.

std::string write(const RoadRecipe& road, const std::string& path) {
  write_road_file(road.settings, path);
  return " (" + std::to_string(triangle_count(road.settings)) + " triangles)";
}

std::string write(const WaveRecipe& wave, const std::string& path) {
  const WaveFile table = write_wave_file(wave.settings, path);
  return " (" + std::to_string(table.time.size()) + " times, " + std::to_string(table.x.size()) + " positions)";
}

std::string write(const CurrentRecipe& current, const std::string& path) {
  write_current_file(current.settings, path);
  return "";
}

/// Calls `visit(kind, recipe)` for everything that the model describes.
template <class Visit>
void for_each_recipe(const ModelFile& file, Visit visit) {
  for (const RoadRecipe& road : file.roads) visit("road ", road);
  for (const WaveRecipe& wave : file.waves) visit("wave ", wave);
  for (const CurrentRecipe& current : file.currents) visit("current ", current);
}

void make_folder(const fs::path& folder, const std::string& remedy) {
  std::error_code failure;
  fs::create_directories(folder, failure);
  if (failure)
    throw std::runtime_error("cannot make the folder " + folder.string() + ": " + failure.message() + remedy);
}

const char* const k_made_remedy = "; name another folder for made files with --made";

}  // namespace

std::vector<std::string> make_missing_files(const ModelFile& file) {
  std::vector<std::string> lines;
  for_each_recipe(file, [&](const std::string& kind, const auto& recipe) {
    if (file.made_folder.empty())
      throw std::runtime_error("no folder for made files: neither XDG_CACHE_HOME nor HOME names one; use --made");
    if (made_file_state(recipe.path, recipe.settings) == MadeFileState::current) return;
    make_folder(file.made_folder, k_made_remedy);
    try {
      lines.push_back("made " + kind + recipe.path + write(recipe, recipe.path));
    } catch (const std::runtime_error& failure) {
      throw std::runtime_error(failure.what() + std::string(k_made_remedy));
    }
  });
  return lines;
}

std::vector<std::string> write_files_to_take_along(const ModelFile& file, const std::string& folder) {
  std::vector<std::string> lines;
  for_each_recipe(file, [&](const std::string& kind, const auto& recipe) {
    const fs::path name = fs::path(recipe.file).lexically_normal(), path = folder / name;
    if (name.is_absolute() || *name.begin() == "..")
      throw std::runtime_error(kind + "'" + recipe.file + "': the name leads out of the folder " + folder);
    make_folder(path.parent_path(), "");
    lines.push_back("made " + kind + path.string() + write(recipe, path.string()));
  });
  return lines;
}

}  // namespace qvslv
