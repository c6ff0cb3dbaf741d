#pragma once

#include <functional>
#include <string>
#include <vector>

#include "solver/engine/engine.h"
#include "solver/results/recording.h"

namespace qvslv {

/// The engine at an output time. Motions that several columns read are computed once.
struct Moment {
  explicit Moment(const Engine& engine);

  struct BodyMotion {
    BodyPose pose;                    ///< of the centre of mass, in ground axes
    Vec3 velocity, angular_velocity;  ///< of the centre of mass and of the body, in ground axes
  };

  const Engine& engine;
  std::vector<BodyMotion> bodies;   ///< one per body of the model
  std::vector<JointMotion> joints;  ///< one per joint
};

/// A column of results.csv: its head, "name [unit]", and where its values come from.
struct Column {
  std::string header;
  std::function<double(const Moment&)> value;
};

/// The columns of results.csv in their order (docs/engine.md, "Files of a run"): time; per body place, quaternion,
/// velocity and angular velocity, all in ground axes; per joint its coordinates and their rates; per element its
/// columns, results of its latest call; variables, and equations (y, and y' as its rate); kinetic and potential energy.
/// The model must outlive the columns.
std::vector<Column> result_columns(const Model& model);

std::vector<std::string> headers_of(const std::vector<Column>& columns);

/// The values of all columns at the engine's present state.
std::vector<double> calc_result_row(const std::vector<Column>& columns, const Engine& engine);

}  // namespace qvslv
