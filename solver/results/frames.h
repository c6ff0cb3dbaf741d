#pragma once

#include "solver/engine/engine.h"
#include "solver/results/contact_axes.h"
#include "solver/results/recording.h"

namespace qvslv {

/// Place of a body's centre of mass and its axes at the engine's present state, in ground axes. Of the two quaternions
/// of an orientation it is the one whose real part is not negative.
/// @param body  index into Model::bodies
BodyPose calc_body_pose(const Engine& engine, size_t body);

/// Whether the points of an element are a belt's: their forces come in the axes of its reference marker, not along
/// shear 1, shear 2 and the normal.
bool is_belt(const Element& element);

/// What a frame shows of the present state. With `axes` the forces on a belt's points are along shear 1, shear 2 and
/// the normal as those of other points are; without, they stay in ground axes.
Frame calc_frame(const Engine& engine, const ContactAxes* axes = nullptr);

}  // namespace qvslv
