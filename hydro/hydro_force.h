#pragma once

#include <array>
#include <vector>

#include "common/call/parameters.h"
#include "hydro/records.h"
#include "qvbrisk/layouts.h"

/// Buoyancy and drag on hulls of triangular patches, in water given by a WAVE and a CURRENT file, and the report of a
/// floating body. Equations, frames, parameters and results: docs/floating-bodies.md; the laws: hydro/evaluation.h.
namespace qvhydro {

constexpr const char* k_prefix = "HYDRO FORCE ERROR : ";
constexpr const char* k_report_prefix = "HYDRO FORCE REPORT ERROR : ";

// The entries that more than one place names.
constexpr qv::parameter k_wave_string{QV_HULL_WAVE_STRING, "string of the WAVE file"};
constexpr qv::parameter k_current_string{QV_HULL_CURRENT_STRING, "string of the CURRENT file"};
constexpr qv::parameter k_node_count{QV_HULL_NODE_COUNT, "number of nodes"};

/// The position of the number of patches: behind the nodes.
constexpr int patch_count_at(int node_count) { return QV_HULL_LENGTH + QV_HULL_NODE_LENGTH * node_count; }

/// The hydro force elements by their id. Sized at the first call of the library; lives until the library is unloaded.
extern std::vector<Chydro_force> gp_hydro_force;

// Kept: part of the documented module state. It is sized with the elements and stays at zero.
extern std::vector<std::array<double, 2>> s_HydroForce_Report;

/// Sets up an element: unit factors, parameters and both files. A count or id that no int can hold and a file that does
/// not open or declares nothing are faults: a message in `msg`, `ierr`, and `throw 1`.
void ini_hydro_force(void* handle, Chydro_force* element, const double* par, int& ierr, char** msg);

/// Sets up a patch mesh: parameters, nodes, and area and normal of each patch,
///
///   E1 = P1 - P0, E2 = P2 - P0,  area = sqrt(E1.E1 E2.E2 - (E1.E2)^2) / 2 (Gram determinant),  normal along E1 x E2
///
/// all in the body marker's frame. A count or id that no int can hold, a patch that names no node and one without a
/// normal are faults: a message in `msg`, `ierr`, and `throw 1`. The patches before the faulty one remain; it and those
/// after it stay zero and add nothing.
/// @param force_id  is named in messages
void ini_hydro_force_sub(Chydro_force_sub* sub, const double* par, int& ierr, char** msg, int force_id);

/// Force of one patch mesh: sets up what this call is the first of, then evaluates (hydro/evaluation.h).
/// @param par     QV_HULL_... of qvbrisk/layouts.h, then nodes and patches
/// @param result  QV_HULL_RESULT_LENGTH entries; all 0 after a fault
void qvhydro_force(void* handle, double time, double* par, int npar, int difflag, int iflag, double* result, int& ierr,
                   char** msg);

/// Report of a floating body: consumes what the calls of qvhydro_force with iflag 2 have added up. With the centre of
/// mass G, the centre of buoyancy B, the body marker's axes Ab and the level frame L (z up, x across the body's y
/// axis):
///
///   M = L^T Ab
///   roll = atan2(M[5], M[8]),  pitch = atan2(-M[2], sqrt(M[0]^2 + M[1]^2))    [degree], 0 to 360
///   levers = L^T (B - G)                                                     [length]
///
/// Without buoyancy B is G. A mass sum of exactly 0 is a fault. At iflag 1 the host is asked and all results are 0.
/// Source: as documented in docs/floating-bodies.md, "The report".
/// @param par     QV_HULL_REPORT_... of qvbrisk/layouts.h, then the check points
/// @param result  QV_HULL_REPORT_RESULT_LENGTH entries, then QV_HULL_REPORT_POINT_LENGTH for each check point
void qvhydro_report(void* handle, double time, double* par, int npar, int difflag, int iflag, double* result, int& ierr,
                    char** msg);

}  // namespace qvhydro
