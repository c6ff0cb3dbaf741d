#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "tests/cli/process.h"

/// Six problems whose answers are known without the engine, to measure its accuracy by.
namespace qvtest {

/// Units to state a problem in: what the unit of length, time and mass is in metres, seconds and kilograms.
struct unit_choice {
  double length = 1, time = 1, mass = 1;
  std::string table;  ///< "[units]" of a model file
};
extern const unit_choice k_si;
extern const unit_choice k_millimetres_and_milliseconds;

struct standard_problem {
  std::string name;
  std::string model;             ///< without its simulation, units and parameters
  double end_time, output_step;  ///< [s]
  /// Greatest error of all rows as a share of what moves: of the amplitude, of a radian, of the speed.
  std::function<double(const ResultTable&, const unit_choice&)> error;
  std::string column;       ///< one of its columns, without unit
  std::string column_kind;  ///< "length", "angle", or "" without a unit
};

const std::vector<standard_problem>& standard_problems();

struct problem_run {
  double error = 0;
  long steps = 0;
  std::vector<double> values;  ///< of the problem's column [m, rad]
};

/// Runs a problem in an empty folder. Throws std::runtime_error when the run fails.
/// @param settings  lines of [simulation] besides the times; "": the default
problem_run run_problem(const standard_problem& problem, const std::string& settings, double output_step,
                        const unit_choice& units, const std::filesystem::path& folder);

}  // namespace qvtest
