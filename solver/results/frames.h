#pragma once

#include "solver/engine/engine.h"
#include "solver/results/contact_axes.h"
#include "solver/results/recording.h"

namespace qvslv {

/// Position of a body's centre of mass and its orientation at the engine's present state, in ground axes. Two
/// quaternions describe an orientation; the one whose real part is not negative is returned.
/// @param body  index into Model::bodies
BodyPose calc_body_pose(const Engine& engine, size_t body);

/// Whether an element is a belt. The forces on its points come in the axes of its reference marker, not along shear 1,
/// shear 2 and the normal.
bool is_belt(const Element& element);

/// The present state as a frame. With `axes` the forces on a belt's points are taken along shear 1, shear 2 and the
/// normal, as the library gives them for other points; without `axes` they are in ground axes.
Frame calc_frame(const Engine& engine, const ContactAxes* axes = nullptr);

}  // namespace qvslv
