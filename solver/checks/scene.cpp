#include "solver/checks/scene.h"

#include <algorithm>

#include "qvbrisk/layouts.h"
#include "solver/data_files/find_data_file.h"
#include "solver/data_files/road_check.h"
#include "solver/data_files/table_tokens.h"
#include "solver/data_files/water_check.h"

namespace qvslv {

namespace {

/// The recipe that describes the file with this name; null if none does.
template <class Recipe>
const Recipe* recipe_of(const std::vector<Recipe>& recipes, const std::string& name, const ModelFile& file) {
  const std::string path = path_beside(file.model.path, name);
  for (const Recipe& recipe : recipes)
    if (path_beside(file.model.path, recipe.file) == path) return &recipe;
  return nullptr;
}

Road find_road(const ModelFile& file, const std::string& name) {
  Road road;
  if (const RoadRecipe* recipe = recipe_of(file.roads, name, file)) {
    road.ground.emplace(recipe->settings);
    return road;
  }
  const std::string path = find_data_file(name, file.model.path);
  if (path.empty()) return road;
  RoadCheck check = check_road_file(path, &file.model.units);
  if (!any_error(check.found) && !check.mesh.triangles.empty()) road.ground.emplace(std::move(check.mesh));
  road.found = std::move(check.found);
  return road;
}

bool any_motion(const WaveFile& wave) {
  const auto moves = [](const std::vector<double>& row) {
    return std::any_of(row.begin(), row.end(), [](double value) { return value != 0; });
  };
  return std::any_of(wave.elevation.begin(), wave.elevation.end(), moves) ||
         std::any_of(wave.velocity.begin(), wave.velocity.end(), moves);
}

Sea find_sea(const ModelFile& file, const std::string& name) {
  Sea sea;
  if (const WaveRecipe* recipe = recipe_of(file.waves, name, file)) {
    const WaveSettings& wave = recipe->settings;
    sea.table = Sea::Table{0, wave.extent, wave.duration, wave.kind != WaveKind::still};
    sea.made = true;
    return sea;
  }
  const std::string path = find_data_file(name, file.model.path);
  std::string text;
  if (path.empty() || !read_whole_file(path, text)) return sea;
  WaveCheck check = check_wave_text(text, path);
  if (check.wave && !check.wave->x.empty() && !check.wave->time.empty())
    sea.table =
        Sea::Table{check.wave->x.front(), check.wave->x.back(), check.wave->time.back(), any_motion(*check.wave)};
  sea.found = std::move(check.found);
  return sea;
}

bool flows(const CurrentFile& current) {
  const auto any = [](const CurrentTable& table) {
    return std::any_of(table.value.begin(), table.value.end(), [](double speed) { return speed != 0; });
  };
  return any(current.along_x) || any(current.along_y);
}

Stream find_stream(const ModelFile& file, const std::string& name) {
  if (const CurrentRecipe* recipe = recipe_of(file.currents, name, file))
    return {flows(current_tables(recipe->settings)), {}};
  const std::string path = find_data_file(name, file.model.path);
  std::string text;
  if (path.empty() || !read_whole_file(path, text)) return {};
  CurrentCheck check = check_current_text(text, path);
  return {flows(check.current), std::move(check.found)};
}

}  // namespace

Scene::Scene(const ModelFile& model_file)
    : file(model_file), model(model_file.model), course(model_file.model), hulls(hulls_of(model_file.model)) {
  const auto sea = [&](double id) {
    if (seas.count(whole(id)) == 0) seas[whole(id)] = find_sea(file, text(whole(id)));
  };
  for (const Element& element : model.elements) {
    const int road = element.road_string;
    if (road != 0 && roads.count(road) == 0) roads[road] = find_road(file, text(road));
    if (element.subroutine == "qvhydro_force") {
      sea(element.par[QV_HULL_WAVE_STRING]);
      const int current = whole(element.par[QV_HULL_CURRENT_STRING]);
      if (currents.count(current) == 0) currents[current] = find_stream(file, text(current));
    }
    if (element.subroutine == "qvsoil_thrustforce" && whole(element.par[QV_THRUST_WAVE_SWITCH]) == 1)
      sea(element.par[QV_THRUST_WAVE_STRING]);
  }
}

const Ground* Scene::ground_of(const Element& element) const {
  const auto road = roads.find(element.road_string);
  return road == roads.end() || !road->second.ground ? nullptr : &*road->second.ground;
}

const std::string& Scene::text(int string_id) const {
  static const std::string none;
  for (const StringEntity& entity : model.strings)
    if (entity.id == string_id) return entity.text;
  return none;
}

void warn(Findings& findings, const char* id, const Element& element, const std::string& what,
          const std::string& text) {
  findings.push_back({Level::warning, id, element.at,
                      "element '" + element.name + "'" + (what.empty() ? "" : ", " + what) + ": " + text});
}

}  // namespace qvslv
