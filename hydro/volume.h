#pragma once

#include "hydro/records.h"

/// Kept: the documented calls for the water under one patch. An evaluation takes its patches in blocks instead
/// (hydro/column_block.h); both put their columns together from hydro/water_column.h. The tests hold the geometry
/// against exact integration by these two calls, patch by patch. Their names and their many arguments are part of what
/// is documented, so they do not change.
namespace qvhydro {

/// Area of the triangle that the x and y components of a, b, c form [length^2], by Heron's formula.
/// It is 0 if the sides form no triangle, and if a component is NaN.
void Calculation_Area(const double* a, const double* b, const double* c, double& area);

/// Signed volume and centroid of the water column between the submerged part of one patch and a level plane: positive
/// under a patch that faces down, negative under one that faces up, 0 for an upright one, for one out of the water and
/// for one wholly beyond an end of the wave table.
/// @param x_first, x_last  first and last position of the wave table [length], water frame x
/// @param R, d        rotation from the body marker's frame to the water frame; the body marker's position there
/// @param p5, A5      global position of the water marker; rotation from the water frame to global axes
/// @param h           water level for this patch [length], water frame z
/// @param volume      of this patch [length^3]
/// @param centre      global position of the column's centroid; written only if the volume is not 0
/// @param volume_sum, moment_sum  this patch's volume and volume times centroid are added; water frame
void Calculation_VolumeAndVolumeCenter(double x_first, double x_last, const Chydro_force_sub* sub, const Cpatch* patch,
                                       const double* R, const double* d, const double* p5, const double* A5, double h,
                                       double& volume, double* centre, double& volume_sum, double* moment_sum);

}  // namespace qvhydro
