#pragma once

#include "soilinteraction/contact_records.h"
#include "soilinteraction/kinematics.h"
#include "soilinteraction/parameters.h"

/// One call of a soil element that is set up: where it is, what its points feel, what the result array gets.
namespace qvsoilinteraction {

/// Asks the host where the body's and the road's markers are and how they move.
kinematics fetch_kinematics(void* handle, const parameters& p);

/// Fixes the grid points on the body and tells them the road's soil type.
void place_on_body(const contact_patch& patch, const qvsoilrdf::CRoad& road, CSoilInteraction& element);

/// Fills the result array, which has been cleared, from the element's points. After a converged step (iflag 2) the
/// points' history moves on.
void evaluate_points(void* handle, const parameters& p, int iflag, const qvsoilrdf::CRoad& road, const kinematics& k,
                     CSoilInteraction& element, double* result, const qv::fault_channel& channel);

}  // namespace qvsoilinteraction
