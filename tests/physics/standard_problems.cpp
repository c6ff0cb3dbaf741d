#include "tests/physics/standard_problems.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <nlohmann/json.hpp>
#include <sstream>
#include <stdexcept>

#include "tests/physics/soil_model.h"
#include "tests/support/exact_text.h"

namespace qvtest {

const unit_choice k_si = {1, 1, 1, ""};
// Force is then in kilonewtons.
const unit_choice k_millimetres_and_milliseconds = {
    1e-3, 1e-3, 1, "[units]\nlength = \"MM\"\ntime = \"MSEC\"\nmass = \"KG\"\nforce = \"KILONEWTON\"\n"};

namespace {

constexpr double k_gravity = 9.81;

/// Classic Runge-Kutta steps of one length from the first time to the next; the error is that of its fourth power.
template <size_t n, class Rate>
std::array<double, n> advanced(std::array<double, n> y, double from, double to, double longest, Rate&& rate) {
  const int count = std::max(1, static_cast<int>(std::ceil((to - from) / longest)));
  const double h = (to - from) / count;
  const auto moved = [](std::array<double, n> a, double s, const std::array<double, n>& b) {
    for (size_t k = 0; k < n; ++k) a[k] += s * b[k];
    return a;
  };
  for (int i = 0; i < count; ++i) {
    const auto k1 = rate(y), k2 = rate(moved(y, h / 2, k1)), k3 = rate(moved(y, h / 2, k2)), k4 = rate(moved(y, h, k3));
    for (size_t k = 0; k < n; ++k) y[k] += h / 6 * (k1[k] + 2 * k2[k] + 2 * k3[k] + k4[k]);
  }
  return y;
}

std::string column_with_unit(const std::string& name, const std::string& kind, const unit_choice& units) {
  const std::string length = units.length == 1 ? "m" : "mm", time = units.time == 1 ? "s" : "ms";
  if (kind == "length") return name + " [" + length + "]";
  if (kind == "time") return name + " [" + time + "]";
  if (kind == "spin") return name + " [rad/" + time + "]";
  return name + " [rad]";
}

const std::vector<double>& values_of(const ResultTable& table, const std::string& name, const std::string& kind,
                                     const unit_choice& units) {
  return table[column_with_unit(name, kind, units)];
}

std::vector<double> times_of(const ResultTable& table, const unit_choice& units) {
  std::vector<double> times = values_of(table, "time", "time", units);
  for (double& t : times) t *= units.time;
  return times;
}

/// Jacobi's sn by the descending Landen transformation (Abramowitz and Stegun, 16.4).
double jacobi_sn(double u, double k) {
  std::vector<double> a = {1}, c = {k};
  for (double b = std::sqrt(1 - k * k); std::abs(c.back()) > 1e-17 && a.size() < 30;) {
    const double mean = (a.back() + b) / 2;
    c.push_back((a.back() - b) / 2);
    b = std::sqrt(a.back() * b);
    a.push_back(mean);
  }
  double phi = std::ldexp(a.back() * u, static_cast<int>(a.size()) - 1);
  for (size_t n = a.size() - 1; n > 0; --n) phi = (phi + std::asin(c[n] / a[n] * std::sin(phi))) / 2;
  return std::sin(phi);
}

// A bob of 1 kg and 0.01 kg m^2 swings 1 m below its hinge, from 2 rad: sin(angle/2) = k sn(K - w t), k = sin(1).
double pendulum_error(const ResultTable& table, const unit_choice& units) {
  const std::vector<double> times = times_of(table, units), &angle = values_of(table, "hinge.angle", "angle", units);
  const double w = std::sqrt(k_gravity / 1.01), k = std::sin(1.0);
  double worst = 0;
  for (size_t i = 0; i < times.size(); ++i) {
    const double exact = 2 * std::asin(k * jacobi_sn(std::comp_ellint_1(k) - w * times[i], k));
    worst = std::max(worst, std::abs(angle[i] - exact));
  }
  return worst;
}

/// Lagrange's equations of two such bobs in their angles against the vertical, a and b, and rates.
std::array<double, 4> double_pendulum_rate(const std::array<double, 4>& y) {
  const double c = std::cos(y[0] - y[1]), s = std::sin(y[0] - y[1]);
  const double right_a = -2 * k_gravity * std::sin(y[0]) - s * y[3] * y[3];
  const double right_b = -k_gravity * std::sin(y[1]) + s * y[2] * y[2];
  constexpr double m_aa = 2.01, m_bb = 1.01;
  const double det = m_aa * m_bb - c * c;
  return {y[2], y[3], (m_bb * right_a - c * right_b) / det, (m_aa * right_b - c * right_a) / det};
}

double double_pendulum_error(const ResultTable& table, const unit_choice& units) {
  const std::vector<double> times = times_of(table, units);
  const std::vector<double>&upper = values_of(table, "hinge.angle", "angle", units),
        &lower = values_of(table, "elbow.angle", "angle", units);
  std::array<double, 4> y = {1.5, 2.0, 0, 0};
  double worst = 0;
  for (size_t i = 1; i < times.size(); ++i) {
    y = advanced(y, times[i - 1], times[i], 1e-4, double_pendulum_rate);
    worst = std::max({worst, std::abs(upper[i] - y[0]), std::abs(upper[i] + lower[i] - y[1])});
  }
  return worst;
}

constexpr double k_arm = 0.5, k_spin = 200, k_top_axial = 0.02, k_top_across = 0.011 + k_arm * k_arm;

/// A heavy top of 1 kg by its axis e and its angular momentum about the pivot: e' = L x e / I, L' = -m g arm e x z.
std::array<double, 6> top_rate(const std::array<double, 6>& y) {
  const double i = k_top_across, torque = k_gravity * k_arm;
  return {(y[4] * y[2] - y[5] * y[1]) / i,
          (y[5] * y[0] - y[3] * y[2]) / i,
          (y[3] * y[1] - y[4] * y[0]) / i,
          -torque * y[1],
          torque * y[0],
          0};
}

double top_error(const ResultTable& table, const unit_choice& units) {
  const std::vector<double> times = times_of(table, units);
  const double s = std::sin(0.5), c = std::cos(0.5), momentum = k_top_axial * k_spin;
  std::array<double, 6> y = {0, -s, c, 0, -s * momentum, c * momentum};
  double worst = 0;
  for (size_t i = 1; i < times.size(); ++i) {
    y = advanced(y, times[i - 1], times[i], 1e-4, top_rate);
    double away = 0;
    for (size_t k = 0; k < 3; ++k) {
      const char* names[] = {"top.x", "top.y", "top.z"};
      away += std::pow(values_of(table, names[k], "length", units)[i] * units.length - k_arm * y[k], 2);
    }
    worst = std::max(worst, std::sqrt(away));
  }
  return worst / k_arm;
}

/// Euler's equations of moments 1, 2, 3 with the body's quaternion: w x y z, then the spin in the body's axes.
std::array<double, 7> tumbling_rate(const std::array<double, 7>& y) {
  const double w = y[0], x = y[1], v = y[2], z = y[3], p = y[4], q = y[5], r = y[6];
  return {(-x * p - v * q - z * r) / 2,
          (w * p + v * r - z * q) / 2,
          (w * q + z * p - x * r) / 2,
          (w * r + x * q - v * p) / 2,
          -q * r,
          r * p,
          -p * q / 3};
}

/// Of the axes [rad]: twice the difference of the quaternions.
double tumbling_error(const ResultTable& table, const unit_choice& units) {
  const std::vector<double> times = times_of(table, units);
  std::array<double, 7> y = {1, 0, 0, 0, 1, 4, 1.5};
  double worst = 0;
  for (size_t i = 1; i < times.size(); ++i) {
    y = advanced(y, times[i - 1], times[i], 1e-4, tumbling_rate);
    const char* names[] = {"stone.qw", "stone.qx", "stone.qy", "stone.qz"};
    double away = 0, opposite = 0;
    for (size_t k = 0; k < 4; ++k) {
      away += std::pow(table[names[k]][i] - y[k], 2);
      opposite += std::pow(table[names[k]][i] + y[k], 2);
    }
    worst = std::max(worst, 2 * std::sqrt(std::min(away, opposite)));
  }
  return worst;
}

double oscillator_error(const ResultTable& table, const unit_choice& units) {
  const std::vector<double> times = times_of(table, units), &travel = values_of(table, "rail.travel", "length", units);
  double worst = 0;
  for (size_t i = 0; i < times.size(); ++i)
    worst = std::max(worst, std::abs(travel[i] * units.length / 1e-3 - std::cos(4 * M_PI * times[i])));
  return worst;
}

constexpr double k_radius = 0.5, k_width = 0.3, k_wheel_mass = 600, k_damp_ratio = 0.1, k_boundary = 0.01;
constexpr int k_around = 72;

/// A wheel that falls on level soil: each of its points presses by K z^n and damps by K zeta z^(n-1) v min(1, z/zb),
/// and never pulls. docs/soil-contact.md.
std::array<double, 2> wheel_rate(const std::array<double, 2>& y) {
  const soil& ground = k_soils[0];
  const double stiffness = ground.stiffness(k_width);
  double force = 0;
  for (int i = 0; i < k_around; ++i) {
    const double sine = std::sin(2 * M_PI * i / k_around), depth = -(y[0] + k_radius * sine);
    if (!(depth > 0)) continue;
    const double damping =
        -k_damp_ratio * stiffness * std::pow(depth, ground.n - 1) * std::min(1.0, depth / k_boundary) * y[1];
    const double area = std::abs(sine) * 2 * M_PI * k_radius * k_width / k_around;
    force += area * std::max(0.0, stiffness * std::pow(depth, ground.n) + damping);
  }
  return {y[1], force / k_wheel_mass - k_gravity};
}

/// As a share of the 0.1 m that the wheel falls at first.
double wheel_error(const ResultTable& table, const unit_choice& units) {
  const std::vector<double> times = times_of(table, units), &height = values_of(table, "wheel.z", "length", units);
  std::array<double, 2> y = {k_radius + 0.1, 0};
  double worst = 0;
  for (size_t i = 1; i < times.size(); ++i) {
    y = advanced(y, times[i - 1], times[i], 2e-5, wheel_rate);
    worst = std::max(worst, std::abs(height[i] * units.length - y[0]) / 0.1);
  }
  return worst;
}

std::string bob(const std::string& name, const std::string& parent, const std::string& joint, double angle) {
  return "[[body]]\nname = \"" + name +
         "\"\nmass = \"M\"\ninertia = [\"0.01*M*L^2\", \"0.01*M*L^2\", \"0.01*M*L^2\"]\n" + "[[joint]]\nname = \"" +
         joint + "\"\ntype = \"revolute\"\naxis = \"y\"\nbody = \"" + name + "\"\nparent = \"" + parent +
         "\"\nbody_position = [0, 0, \"L\"]\nstart = { angle = " + qvtest::exact_text(angle) + " }\n";
}

const std::string k_down = "gravity = [0, 0, \"-9.81*L/T^2\"]\n", k_weightless = "gravity = [0, 0, 0]\n";

std::string sections(const unit_choice& units) {
  std::ostringstream text;
  text.imbue(std::locale::classic());
  text.precision(17);
  text << units.table << "[parameters]\nL = " << 1 / units.length << "\nT = " << 1 / units.time
       << "\nM = " << 1 / units.mass << "\n";
  return text.str();
}

}  // namespace

const std::vector<standard_problem>& standard_problems() {
  static const std::vector<standard_problem> problems = {
      {"pendulum", k_down + bob("bob", "ground", "hinge", 2), 10, 0.1, pendulum_error, "hinge.angle", "angle"},
      {"double pendulum", k_down + bob("upper", "ground", "hinge", 1.5) + bob("lower", "upper", "elbow", 0.5), 5, 0.1,
       double_pendulum_error, "hinge.angle", "angle"},
      {"top",
       k_down + "[[body]]\nname = \"top\"\nmass = \"M\"\n"
                "inertia = [\"0.011*M*L^2\", \"0.011*M*L^2\", \"0.02*M*L^2\"]\n"
                "[[joint]]\nname = \"tip\"\ntype = \"ball\"\nbody = \"top\"\nbody_position = [0, 0, \"-0.5*L\"]\n"
                "start = { angles = [0.5, 0, 0] }\n"
                "start_velocity = { angular_velocity = [0, \"-200*sin(0.5)/T\", \"200*cos(0.5)/T\"] }\n",
       5, 0.1, top_error, "top.x", "length"},
      {"free asymmetric body",
       k_weightless + "[[body]]\nname = \"stone\"\nmass = \"M\"\ninertia = [\"M*L^2\", \"2*M*L^2\", \"3*M*L^2\"]\n"
                      "angular_velocity = [\"1/T\", \"4/T\", \"1.5/T\"]\n",
       10, 0.1, tumbling_error, "stone.qw", ""},
      {"1 mm oscillator",
       k_weightless + "[[body]]\nname = \"mass\"\nmass = \"M\"\nshape = { sphere = { radius = \"0.1*L\" } }\n"
                      "[[joint]]\nname = \"rail\"\ntype = \"slider\"\nbody = \"mass\"\naxis = \"x\"\n"
                      "start = { travel = \"0.001*L\" }\n[[force]]\nname = \"spring\"\nmarker = \"mass\"\n"
                      "force = [\"-(4*pi/T)^2*M*dx(mass)\", 0, 0]\n",
       10, 2.5, oscillator_error, "rail.travel", "length"},
      {"wheel on soil",
       k_down + "[[body]]\nname = \"wheel\"\nmass = 600\ninertia = [1, 1, 1]\n"
                "[[joint]]\nname = \"guide\"\ntype = \"slider\"\nbody = \"wheel\"\naxis = \"z\"\n"
                "start = { travel = 0.6 }\n[[element]]\nname = \"soil\"\ntype = \"soil_contact\"\nshape = \"wheel\"\n"
                "marker = \"wheel\"\nroad = \"level.rdf\"\nradius = 0.5\nwidth = 0.3\ngrid = [72, 3]\n",
       2, 0.1, wheel_error, "wheel.z", "length"},
  };
  return problems;
}

problem_run run_problem(const standard_problem& problem, const std::string& settings, double output_step,
                        const unit_choice& units, const std::filesystem::path& folder) {
  std::ostringstream simulation;
  simulation.imbue(std::locale::classic());
  simulation.precision(17);
  simulation << "[simulation]\nend_time = " << problem.end_time / units.time
             << "\noutput_step = " << output_step / units.time << "\nframe_step = " << problem.end_time / units.time
             << "\n"
             << settings;
  // Tables come behind the keys of the top level.
  const size_t tables = problem.model.find("[[");
  write_text(folder / "model.toml",
             problem.model.substr(0, tables) + simulation.str() + sections(units) + problem.model.substr(tables));
  write_level_road(folder / "level.rdf", k_soils[0], 2.0, k_damp_ratio, k_boundary);
  const CommandResult result = run_command({"run", "model.toml", "--out", "results", "--quiet"}, folder);
  if (result.code != 0) throw std::runtime_error(problem.name + ": " + result.out + result.err);
  const ResultTable table(folder / "results/results.csv");
  const auto record = nlohmann::json::parse(file_text(folder / "results/run.json"));
  problem_run run;
  run.error = problem.error(table, units);
  run.steps = record["steps"].get<long>();
  run.values = problem.column_kind.empty() ? table[problem.column]
                                           : values_of(table, problem.column, problem.column_kind, units);
  if (problem.column_kind == "length")
    for (double& value : run.values) value *= units.length;
  return run;
}

}  // namespace qvtest
