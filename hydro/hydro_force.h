#pragma once

#include <array>
#include <vector>

#include "hydro/records.h"

/// Forces of waves, current and gravity's displaced water on hulls of triangular patches.
namespace qvhydro {

constexpr const char* k_prefix = "HYDRO FORCE ERROR : ";
constexpr const char* k_report_prefix = "HYDRO FORCE REPORT ERROR : ";
constexpr int k_results = 34;

// Module state, indexed by hydro force id; it lives from load to unload and is sized once.
extern std::vector<Chydro_force> gp_hydro_force;
extern std::vector<std::array<double, 2>> s_HydroForce_Report;

/// Set-up of an element: units, parameters and both files.
void ini_hydro_force(void* handle, Chydro_force* element, const double* par, int& ierr, char** msg);

/// Set-up of a patch mesh. `force_id` is named in messages.
void ini_hydro_force_sub(Chydro_force_sub* sub, const double* par, int& ierr, char** msg, int force_id);

void qvhydro_force(void* handle, double time, double* par, int npar, int difflag, int iflag, double* result, int& ierr,
                   char** msg);
void qvhydro_report(void* handle, double time, double* par, int npar, int difflag, int iflag, double* result, int& ierr,
                    char** msg);

}  // namespace qvhydro
