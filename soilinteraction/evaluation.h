#pragma once

#include "soilinteraction/contact_records.h"
#include "soilinteraction/kinematics.h"
#include "soilinteraction/parameters.h"

/// One call of a soil element that is set up.
namespace qvsoilinteraction {

/// Asks the host where the body and the road are and how they move.
kinematics fetch_kinematics(void* handle, const parameters& p);

/// Fixes the grid points on the body.
void place_on_body(const contact_patch& patch, const qvsoilrdf::CRoad& road, CSoilInteraction& element);

/// Fills the result array, cleared before, from the element's points; after a converged step (iflag 2) their history
/// moves on.
void evaluate_points(void* handle, const parameters& p, int iflag, const qvsoilrdf::CRoad& road, const kinematics& k,
                     CSoilInteraction& element, double* result, const qv::fault_channel& channel);

}  // namespace qvsoilinteraction
