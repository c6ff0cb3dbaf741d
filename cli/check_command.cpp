#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "cli/check_other.h"
#include "cli/check_water.h"
#include "cli/commands.h"
#include "cli/default_paths.h"
#include "cli/tell_findings.h"
#include "cli/terminal.h"
#include "solver/data_files/make_road.h"
#include "solver/data_files/road_check.h"
#include "solver/engine_library.h"
#include "solver/model/model.h"
#include "solver/model_file/contents.h"
#include "solver/model_file/expand.h"
#include "solver/model_file/recipes.h"
#include "solver/read_model.h"

namespace qvcli {

namespace {

struct FileRequest {
  std::string file, plugin_path;
  std::string made = qvslv::default_made_folder();
  std::string files;  ///< of expand: folder for the files to take along
  bool strict = false, json = false;
  std::vector<std::string> overrides;
};

void tell_road(const qvslv::RoadCheck& road) {
  print(stdout, "%s: %ld nodes, %ld triangles, x %g to %g, y %g to %g, z %g to %g\n", road.path.c_str(), road.nodes,
        road.elements, road.x_min, road.x_max, road.y_min, road.y_max, road.z_min, road.z_max);
  if (!road.soil_type.empty()) print(stdout, "  SOIL_TYPE '%s'\n", road.soil_type.c_str());
  for (const auto& [key, value] : road.values) print(stdout, "  %-17s %g\n", key.c_str(), value);
}

qvslv::Findings check_road(const std::string& file, bool describe) {
  if (!std::filesystem::is_regular_file(file)) throw UsageError("there is no road file " + file);
  const qvslv::RoadCheck road = qvslv::check_road_file(file);
  if (describe) tell_road(road);
  return road.found;
}

const char* plural(size_t count) { return count == 1 ? "" : "s"; }

void tell_model(const qvslv::ModelFile& file) {
  const qvslv::Model& model = file.model;
  const auto count = [](size_t number, const char* what) {
    print(stdout, "  %zu %s%s\n", number, what, plural(number));
  };
  print(stdout, "%s: %s\n", model.path.c_str(), model.title.c_str());
  print(stdout, "  0 to %g %s, output every %g; units %s, %s, %s, %s\n", model.simulation.end_time,
        model.units.time.c_str(), model.simulation.output_step, model.units.length.c_str(), model.units.mass.c_str(),
        model.units.time.c_str(), model.units.force.c_str());
  count(model.markers.size() - 1 - model.bodies.size(), "marker");
  for (const qvslv::Body& body : model.bodies) print(stdout, "  body %s: mass %g\n", body.name.c_str(), body.mass);
  count(model.joints.size(), "joint");
  count(model.forces.size(), "force");
  if (!model.variables.empty()) count(model.variables.size(), "variable");
  if (!model.equations.empty()) count(model.equations.size(), "equation");
  if (!model.splines.empty()) count(model.splines.size(), "spline");
  for (const qvslv::Element& element : model.elements)
    print(stdout, "  element %s: %s, %zu parameters, %d results\n", element.name.c_str(), element.subroutine.c_str(),
          element.par.size(), element.result_length);
  for (const qvslv::HullSummary& hull : file.hulls)
    print(stdout, "  hull %s: %zu nodes, %zu triangles, volume %.6g, area %.6g, centre of volume (%.4g, %.4g, %.4g)\n",
          hull.name.c_str(), hull.nodes, hull.patches, hull.volume, hull.area, hull.center[0], hull.center[1],
          hull.center[2]);
}

/// Tells about the files that the model uses and that exist; files that a run makes are only announced.
void tell_files_of(const qvslv::ModelFile& file) {
  tell_water_of(file);
  for (const qvslv::RoadRecipe& recipe : file.roads)
    if (qvslv::made_file_state(recipe.path, recipe.settings) != qvslv::MadeFileState::current)
      print(stdout, "  road %s: a run makes it first (%lld triangles)\n", recipe.file.c_str(),
            static_cast<long long>(qvslv::triangle_count(recipe.settings)));
  for (const qvslv::InputFile& input : file.inputs) {
    if (input.role != "road" || !std::filesystem::is_regular_file(input.path)) continue;
    print(stdout, "  road ");
    tell_road(qvslv::check_road_file(input.path));
  }
}

/// A mistake that ends the reading of the model is one more finding, so that `--json` can list it.
qvslv::Findings check_model(const FileRequest& request, bool describe) {
  qvslv::EngineLibrary engine;
  try {
    const qvslv::ModelFile file = qvslv::read_model_file(request.file, request.overrides, request.made);
    engine.doors().check_before_run(file.model, request.plugin_path.empty() ? default_library() : request.plugin_path);
    if (describe) tell_model(file);
    if (describe) tell_files_of(file);
    return file.findings;
  } catch (const qvslv::ModelError& mistake) {
    if (!request.json) throw;
    return {{qvslv::Level::error, "model", mistake.at, mistake.text}};
  }
}

int check(const FileRequest& request) {
  const std::string ending = ending_of(request.file);
  const bool describe = !request.json;
  if (is_other_file(request.file)) return check_other(request.file, request.json);
  qvslv::Findings findings = ending == ".rdf"       ? check_road(request.file, describe)
                             : ending == ".wave"    ? check_wave(request.file, describe)
                             : ending == ".current" ? check_current(request.file, describe)
                                                    : check_model(request, describe);
  if (request.strict) make_strict(findings);
  if (describe) return conclude(findings, "can be used; see the warnings");
  print(stdout, "%s", json_text(findings).c_str());
  return any_error(findings) ? k_bad_input : k_done;
}

void add_overrides(CLI::App* command, FileRequest& request) {
  command
      ->add_option("--set", request.overrides, "Change a value of the model file, e.g. body.wheel.mass=12; repeatable")
      ->type_name("KEY=VALUE")
      ->allow_extra_args(false);
  add_made_option(command, request.made);
}

}  // namespace

void add_check_command(CLI::App& app, Action& action) {
  auto request = std::make_shared<FileRequest>();
  CLI::App* command = app.add_subcommand("check", "Read a model or data file and tell what is in it");
  command->add_option("file", request->file, "Model file (TOML), road (.rdf), WAVE (.wave) or CURRENT file (.current)")
      ->required();
  command
      ->add_option(
          "--library", request->plugin_path,
          "Shared library of user subroutines that a run will be given; the libqvbrisk.so that belongs to this "
          "command when not given")
      ->check(CLI::ExistingFile);
  add_overrides(command, *request);
  command->add_flag("--strict", request->strict, "Take every warning for an error");
  command->add_flag("--json", request->json, "Print all findings as JSON, and nothing else");
  command->callback([request, &action] { action = [request] { return check(*request); }; });
}

void add_expand_command(CLI::App& app, Action& action) {
  auto request = std::make_shared<FileRequest>();
  CLI::App* command =
      app.add_subcommand("expand", "Print the elements of a model file as plain subroutine calls (TOML)");
  command->add_option("model", request->file, "Model file (TOML)")->required();
  command->add_option("--files", request->files,
                      "Also write the files that the model describes into this folder, under the model's names");
  add_overrides(command, *request);
  command->callback([request, &action] {
    action = [request] {
      const qvslv::ModelFile file = qvslv::read_model_file(request->file, request->overrides, request->made);
      tell(file.findings);
      if (!request->files.empty())
        for (const std::string& line : qvslv::write_files_to_take_along(file, request->files))
          print(stderr, "%s\n", line.c_str());
      print(stdout, "%s", qvslv::expanded(file.model).c_str());
      return static_cast<int>(k_done);
    };
  });
}

}  // namespace qvcli
