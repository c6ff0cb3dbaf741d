#pragma once

#include <string>
#include <utility>
#include <vector>

#include "tests/cli/process.h"

/// Models in level water, and runs of them.
namespace qvtest {

constexpr double k_gravity = 9.81, k_water_density = 1000;  // [m/s^2] [kg/m^3]

/// Values of a model's [parameters], by name.
using Parameters = std::vector<std::pair<std::string, double>>;

/// Runs a model text that ends where its [parameters] are to follow, in a folder of its own with level water from
/// x = 0 to 1000 m for all time ("calm.wave") that flows evenly along x ("stream.current"). Fails the test when the run
/// does.
/// @param stream  speed of the water along x [m/s]
/// @param record  receives the text of run.json
ResultTable run_afloat(const std::string& model, const Parameters& parameters, double stream = 0.0,
                       std::string* record = nullptr);

/// The head of a model: gravity, a run from 0 to the parameter `end` in rows of `row`, and the water marker 500 m
/// behind the ground's origin.
/// @param control  further lines of [simulation]: error control, or steps that need none
std::string water_head(const std::string& control);

/// Even steps, as long as the parameter `longest`. For models with waves: of a step taken back the library has seen the
/// end, and its water does not run backwards.
std::string steady_steps();

/// A hull called "hull" of the shape `mesh` on the body "boat".
/// @param more  further lines of the element
/// @param wave  its WAVE file, or the name of a [[wave]]
std::string hull_element(const std::string& mesh, const std::string& more = "", const std::string& wave = "calm.wave");

/// Mean period of an oscillation about 0, from its first passage upwards to its last one; 0 when there are not two.
double period_of(const std::vector<double>& time, const std::vector<double>& values);

}  // namespace qvtest
