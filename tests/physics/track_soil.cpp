#include "tests/physics/track_soil.h"

#include <gmock/gmock.h>

#include <cmath>
#include <locale>
#include <sstream>

namespace qvtest {

namespace {

constexpr double k_degree = M_PI / 180;

std::string wheels_of(const belt& gear, std::string& markers) {
  std::ostringstream table, list;
  table.imbue(std::locale::classic());
  list.imbue(std::locale::classic());
  table.precision(17);
  list.precision(17);
  for (int i = 0; i < gear.wheels; ++i) {
    table << "[[marker]]\nname = \"axle_" << i << "\"\nbody = \"hull\"\nposition = ["
          << gear.spacing * (i - 0.5 * (gear.wheels - 1)) << ", 0, 0]\n";
    list << "{ marker = \"axle_" << i << "\", radius = " << gear.radius + gear.growth * i << " }, ";
  }
  markers = table.str();
  return list.str();
}

/// Integral of f over 0 to 1 by the midpoint rule; its error is a millionth of the tolerance that it serves.
template <class Function>
double integral(Function f) {
  constexpr int k_steps = 20000;
  double sum = 0;
  for (int i = 0; i < k_steps; ++i) sum += f((i + 0.5) / k_steps);
  return sum / k_steps;
}

}  // namespace

const track_soil k_track_soils[5] = {
    {"snow_harrison", 1.60, 2490, 245900, 620, 23.2 * k_degree, 0.03},
    {"dry_sand", 1.10, 990, 1.52843e6, 1040, 28 * k_degree, 0.025},
    {"rubicon_sandy_loam", 0.66, 6900, 752000, 3700, 29.8 * k_degree, 0.01},
    {"clayey_soil_38pct", 0.50, 13190, 692150, 4140, 13 * k_degree, 0.01},
    {"LETE_sand", 0.793, 102000, 5.301e6, 1300, 31.1 * k_degree, 0.01},
};

double track_soil::pressure(double z, double b) const { return z > 0 ? (kc / b + kphi) * std::pow(z, n) : 0; }

double track_soil::strength(double pressure) const { return cohesion + pressure * std::tan(friction_angle); }

double shear_curve(double r, double sensitivity) {
  const double hump = sensitivity / (1 - std::exp(-1.0)) - 1;
  return (hump * std::exp(1 - r) + 1) * (1 - std::exp(-r)) / sensitivity;
}

double belt::cosine() const { return std::sqrt(1 - sine() * sine()); }

double belt::depth(double height, double way) const { return (radius + thickness) * cosine() + sine() * way - height; }

std::string belt_model(const belt& gear, const track_soil& soil, const std::string& simulation, const std::string& road,
                       const std::string& joint, const std::string& drive, const std::string& more) {
  std::string markers;
  const std::string wheels = wheels_of(gear, markers);
  std::ostringstream text;
  text.imbue(std::locale::classic());
  text.precision(17);
  text << "gravity = [0, 0, -10]\n[simulation]\n"
       << simulation << "[[road]]\nname = \"field\"\nfile = \"field.rdf\"\nkind = \"flat\"\nsize = [12, 6]\n"
       << "spacing = 0.5\nsoil = \"" << soil.preset << "\"\n"
       << road << "[[body]]\nname = \"hull\"\nmass = 1000\ninertia = [100, 100, 100]\n"
       << "[[joint]]\nname = \"guide\"\nbody = \"hull\"\n"
       << joint << markers << "[[element]]\nname = \"belt\"\ntype = \"track\"\nhull = \"hull\"\nwheels = [" << wheels
       << "]\nroad = \"field\"\nwidth = " << gear.width << "\nthickness = " << gear.thickness << "\ngrid = ["
       << gear.along << ", " << gear.across << "]\n"
       << drive << "\n"
       << more;
  return text.str();
}

ResultTable run_belt(const std::string& model) {
  const std::filesystem::path folder = fresh_folder();
  write_text(folder / "model.toml", model);
  const CommandResult result = run_command({"run", "model.toml", "--out", "results", "--quiet"}, folder);
  EXPECT_EQ(result.code, 0) << result.out << result.err;
  EXPECT_THAT(file_text(folder / "results/run.json"), testing::HasSubstr("\"messages\": []"));
  return ResultTable(folder / "results/results.csv");
}

span_loads normal_loads(const belt& gear, const track_soil& soil, double height, int span) {
  const double L = gear.span(), rows = gear.along;
  const auto pressure = [&](double part) {
    return soil.pressure(gear.depth(height, (span + part) * L), gear.shorter_side());
  };
  const auto levered = [&](double part) { return pressure(part) * part; };
  const double plan = L * gear.cosine() * gear.width;  // what a span covers of the ground
  const auto rows_of = [&](const auto& f) {
    return plan * ((rows - 1) * integral(f) + 0.5 * (f(0.0) + f(1.0))) / rows;
  };
  span_loads loads;
  loads.total = rows_of(pressure);
  loads.end = rows_of(levered);
  constexpr double k_little = 1e-6;
  const auto slope = [&](double at) { return (levered(at + k_little) - levered(at - k_little)) / (2 * k_little); };
  loads.tolerance = 1e-9 * loads.total + plan * std::fabs(slope(1) - slope(0)) / (12 * (rows - 1) * (rows - 1));
  return loads;
}

}  // namespace qvtest
