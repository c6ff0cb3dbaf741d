#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "solver/model/nearest_name.h"
#include "solver/model/units.h"
#include "solver/model_file/reading.h"

/// The tables [units] and [simulation].
namespace qvslv {

namespace {

void read_unit(const TableReader& table, const char* key, UnitQuantity quantity, std::string& name, double& factor) {
  if (!table.has(key)) return;
  const UnitName* unit = find_unit(quantity, table.text(key));
  if (unit == nullptr)
    table.fail(key, "'" + table.text(key) + "' is no unit known here; " +
                        name_hint(table.text(key), all_unit_names(quantity)));
  name = unit->name;
  factor = unit->factor;
}

/// The equations of motion have no room for conversion factors: force must be mass times length over time squared.
void check_units_consistent(const TableReader& root, const Units& units) {
  const double needed = units.mass_factor * units.length_factor / (units.time_factor * units.time_factor);
  constexpr double k_relative = 1e-3;  // the tables give some factors to four digits
  if (std::abs(units.force_factor / needed - 1.0) <= k_relative) return;
  std::string fitting;
  for (const UnitName& mass : unit_names(UnitQuantity::mass)) {
    const double unit_force = mass.factor * units.length_factor / (units.time_factor * units.time_factor);
    if (std::abs(units.force_factor / unit_force - 1.0) <= k_relative) fitting = mass.name;
  }
  const std::string text = "units: the force unit " + units.force + " is not the one that belongs to " + units.mass +
                           ", " + units.length + " and " + units.time + " (force = mass length / time^2)" +
                           (fitting.empty() ? "" : "; with these a mass in " + fitting + " would fit");
  throw ModelError(root.has("units") ? root.position("units") : root.at(), text);
}

/// The entries of a list with commas, without the spaces around them.
std::vector<std::string> listed_entries(const std::string& list) {
  constexpr const char* k_spaces = " \t";
  std::vector<std::string> entries;
  for (size_t begin = 0; begin <= list.size();) {
    const size_t end = std::min(list.find(',', begin), list.size());
    const std::string entry = list.substr(begin, end - begin);
    const size_t first = entry.find_first_not_of(k_spaces), last = entry.find_last_not_of(k_spaces);
    entries.push_back(first == std::string::npos ? "" : entry.substr(first, last - first + 1));
    begin = end + 1;
  }
  return entries;
}

ResultKinds read_results(const TableReader& table) {
  if (!table.has("results")) return {};
  ResultKinds kinds{false, false, false};
  for (const std::string& entry : listed_entries(table.text("results"))) {
    const bool all = entry == "all";
    if (!all && entry != "table" && entry != "frames" && entry != "page")
      table.fail("results",
                 "'" + entry + "' is no kind of results; " + name_hint(entry, {"table", "frames", "page", "all"}));
    kinds.table = kinds.table || all || entry == "table";
    kinds.frames = kinds.frames || all || entry == "frames";
    kinds.page = kinds.page || all || entry == "page";
  }
  return kinds;
}

}  // namespace

void read_units(const TableReader& root, Reading& reading) {
  Units& units = reading.model().units;
  if (root.has("units")) {
    const TableReader table = root.table("units", {"length", "mass", "time", "force", "angle"});
    read_unit(table, "length", UnitQuantity::length, units.length, units.length_factor);
    read_unit(table, "mass", UnitQuantity::mass, units.mass, units.mass_factor);
    read_unit(table, "time", UnitQuantity::time, units.time, units.time_factor);
    read_unit(table, "force", UnitQuantity::force, units.force, units.force_factor);
    read_unit(table, "angle", UnitQuantity::angle, units.angle, units.angle_factor);
  }
  check_units_consistent(root, units);
}

void read_simulation(const TableReader& root, Reading& reading) {
  const TableReader table = root.table("simulation", {"end_time", "output_step", "frame_step", "results", "integrator",
                                                      "accuracy", "smallest_motion", "step", "max_step"});
  constexpr double k_default_rows = 200;
  Simulation& simulation = reading.model().simulation;
  simulation.end_time = table.positive("end_time");
  simulation.output_step = table.positive("output_step", simulation.end_time / k_default_rows);
  simulation.frame_step = table.positive("frame_step", 0);
  simulation.results = read_results(table);
  // Forces of elements jump, as friction does when a body comes to rest: there ten times the accuracy is ten times the
  // steps.
  constexpr double k_accuracy_with_elements = 1e-4;
  simulation.accuracy =
      table.positive("accuracy", root.has("element") ? k_accuracy_with_elements : simulation.accuracy);
  simulation.smallest_motion = table.positive("smallest_motion", 0);
  simulation.step = table.positive("step", 0);
  simulation.max_step = table.positive("max_step", 0);
  if (simulation.accuracy >= 1) table.fail("accuracy", "must be less than 1 (1e-5 is a good start)");
  const std::string integrator =
      table.has("integrator") ? table.choice("integrator", {"runge-kutta-merson", "runge-kutta-fixed", "semi-explicit"})
                              : "runge-kutta-merson";
  if (integrator == "semi-explicit") simulation.integrator = Integrator::semi_explicit_euler;
  if (integrator == "runge-kutta-fixed") simulation.integrator = Integrator::runge_kutta_fixed;
  const bool fixed = simulation.integrator != Integrator::runge_kutta_merson;
  if (fixed && !table.has("step")) table.fail("integrator", "the " + integrator + " integrator needs a 'step' as well");
}

}  // namespace qvslv
