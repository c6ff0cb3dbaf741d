#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "cli/commands.h"
#include "cli/terminal.h"
#include "solver/data_files/make_road.h"
#include "solver/data_files/soil_presets.h"
#include "solver/model/model.h"
#include "solver/model/nearest_name.h"
#include "solver/model/units.h"

namespace qvcli {

namespace {

const std::map<std::string, qvslv::RoadKind> k_kinds = {{"flat", qvslv::RoadKind::flat},
                                                        {"slope", qvslv::RoadKind::slope},
                                                        {"sine", qvslv::RoadKind::sine},
                                                        {"rolling", qvslv::RoadKind::rolling}};

struct RoadRequest {
  qvslv::RoadSettings settings;
  std::string kind = "flat", out, length_unit = "METER", force_unit = "NEWTON", mass_unit = "KILOGRAM",
              time_unit = "SECOND";
  std::vector<double> size = {10, 10}, corner;
  bool list_soils = false;
  // Soil values given on the command line replace those of the preset; an empty list is one that was not given.
  std::string soil = "dry_sand";
  std::vector<double> n, kc, kphi, cohesion, friction_angle, shear_displacement, sensitivity, damp_ratio,
      boundary_sinkage;
  std::vector<double> shear_modulus;  ///< former name of shear_displacement
};

void take_unit(qvslv::UnitQuantity quantity, const std::string& text, std::string& name, double& factor) {
  const qvslv::UnitName* unit = qvslv::find_unit(quantity, text);
  if (unit == nullptr)
    throw UsageError("'" + text + "' is no unit known here; " +
                     qvslv::name_hint(text, qvslv::all_unit_names(quantity)));
  name = unit->name;
  factor = unit->factor;
}

void replace(const std::vector<double>& given, double& value) {
  if (!given.empty()) value = given.back();
}

void take_soil(const RoadRequest& request, qvslv::RoadSettings& settings) {
  const qvslv::SoilPreset* preset = qvslv::find_soil_preset(request.soil);
  if (preset == nullptr)
    throw UsageError("--soil: there is no preset '" + request.soil + "'; " +
                     qvslv::name_hint(request.soil, qvslv::soil_preset_names()));
  qvslv::RoadSoil& soil = settings.soil = qvslv::soil_in_units(*preset, settings.units);
  settings.soil_name = request.soil;
  replace(request.n, soil.sinkage_exponent);
  replace(request.kc, soil.cohesive_coeff);
  replace(request.kphi, soil.frictional_coeff);
  replace(request.cohesion, soil.cohesion);
  replace(request.friction_angle, soil.friction_angle);
  if (!request.shear_displacement.empty() && !request.shear_modulus.empty())
    throw UsageError("give either --shear-displacement or --shear-modulus, its former name, not both");
  replace(request.shear_modulus, soil.shear_displacement);
  replace(request.shear_displacement, soil.shear_displacement);
  replace(request.sensitivity, soil.sensitivity);
  replace(request.damp_ratio, soil.damp_ratio);
  replace(request.boundary_sinkage, soil.boundary_sinkage);
}

qvslv::RoadSettings settings_of(const RoadRequest& request) {
  qvslv::RoadSettings settings = request.settings;
  const auto kind = k_kinds.find(request.kind);
  if (kind == k_kinds.end())
    throw UsageError("--kind: '" + request.kind + "' is not known; " +
                     qvslv::name_hint(request.kind, {"flat", "slope", "sine", "rolling"}));
  settings.kind = kind->second;
  qvslv::Units& units = settings.units;
  take_unit(qvslv::UnitQuantity::length, request.length_unit, units.length, units.length_factor);
  take_unit(qvslv::UnitQuantity::force, request.force_unit, units.force, units.force_factor);
  take_unit(qvslv::UnitQuantity::mass, request.mass_unit, units.mass, units.mass_factor);
  take_unit(qvslv::UnitQuantity::time, request.time_unit, units.time, units.time_factor);
  settings.size_x = request.size[0];
  settings.size_y = request.size[1];
  settings.corner_x = request.corner.empty() ? -0.5 * settings.size_x : request.corner[0];
  settings.corner_y = request.corner.empty() ? -0.5 * settings.size_y : request.corner[1];
  take_soil(request, settings);
  return settings;
}

int make_road(const RoadRequest& request) {
  if (request.list_soils) {
    print(stdout, "%s", qvslv::soil_preset_table().c_str());
    return k_done;
  }
  if (request.out.empty()) throw UsageError("--out is required: the road file to write");
  const qvslv::RoadSettings settings = settings_of(request);
  const std::string mistake = qvslv::mistake_in(settings);
  if (!mistake.empty()) throw UsageError(mistake);
  qvslv::write_road_file(settings, request.out);
  print(stdout, "made road %s: %s, %lld triangles, soil %s\n", request.out.c_str(), request.kind.c_str(),
        static_cast<long long>(qvslv::triangle_count(settings)), request.soil.c_str());
  return k_done;
}

void add_geometry_options(CLI::App* road, RoadRequest& request) {
  qvslv::RoadSettings& settings = request.settings;
  road->add_option("--kind", request.kind, "flat, slope, sine or rolling")->capture_default_str();
  road->add_option("--size", request.size, "Extent along x and y")->expected(2)->capture_default_str();
  road->add_option("--corner", request.corner, "Least x and y; centred on 0, 0 when not given")->expected(2);
  road->add_option("--spacing", settings.spacing, "Edge of a square of two triangles")->capture_default_str();
  road->add_option("--height", settings.height, "Height added everywhere")->capture_default_str();
  road->add_option("--amplitude", settings.amplitude, "sine: of the wave; rolling: root 2 times the rms height");
  road->add_option("--wavelength", settings.wavelength, "sine: of the wave; rolling: the middle of the waves' lengths");
  road->add_option("--grade", settings.grade, "slope: rise over run along x (0.1 is 10 %)");
  road->add_option("--seed", settings.seed, "rolling: same seed, same ground")->capture_default_str();
  road->add_option("--length-unit", request.length_unit, "Unit of every length here and in the file")
      ->capture_default_str();
  road->add_option("--force-unit", request.force_unit, "Unit of force")->capture_default_str();
  road->add_option("--mass-unit", request.mass_unit, "Unit of mass, only declared in the file")->capture_default_str();
  road->add_option("--time-unit", request.time_unit, "Unit of time")->capture_default_str();
}

void add_soil_options(CLI::App* road, RoadRequest& request) {
  road->add_option("--soil", request.soil, "Preset, see --list-soils")->capture_default_str();
  road->add_flag("--list-soils", request.list_soils, "Print the presets with their values and sources");
  const auto value = [&](const char* name, std::vector<double>& target, const char* help) {
    return road->add_option(name, target, std::string(help) + ", in place of the preset's")->expected(1);
  };
  value("--n", request.n, "Sinkage exponent [-]");
  value("--kc", request.kc, "Cohesive modulus [force/length^(n+1)]");
  value("--kphi", request.kphi, "Frictional modulus [force/length^(n+2)]");
  value("--cohesion", request.cohesion, "Cohesion [force/length^2]");
  value("--friction-angle", request.friction_angle, "Friction angle [degrees]");
  value("--shear-displacement", request.shear_displacement, "Shear displacement at full strength, K [length]");
  // The option's former name is still read, but the help leaves it out because K is no modulus.
  value("--shear-modulus", request.shear_modulus, "As --shear-displacement")->group("");
  value("--sensitivity", request.sensitivity, "Full strength over the strength after long slip [-]");
  value("--damp-ratio", request.damp_ratio, "Damping per unit of stiffness [time]");
  value("--boundary-sinkage", request.boundary_sinkage, "Depth from which the damping is full [length]");
}

}  // namespace

void add_make_command(CLI::App& app, Action& action) {
  auto request = std::make_shared<RoadRequest>();
  CLI::App* make = app.add_subcommand("make", "Make input files");
  make->require_subcommand(1);
  CLI::App* road = make->add_subcommand("road", "Make a road file (RDF) with a soil");
  road->add_option("-o,--out", request->out, "Road file to write");
  add_geometry_options(road, *request);
  add_soil_options(road, *request);
  road->callback([request, &action] { action = [request] { return make_road(*request); }; });
  add_make_wave(*make, action);
  add_make_current(*make, action);
}

}  // namespace qvcli
