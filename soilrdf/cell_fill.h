#pragma once

#include <vector>

#include "soilrdf/road.h"

/// Which triangles belong to a cell of the plan grid, and plan point-in-triangle tests. All of it works on x and y
/// only. FindElementsBelongtoCell is the definition of a cell's list; build_cell_grid makes the same lists faster.
namespace qvsoilrdf {

/// Appends to the cell's `elements` the numbers (from 1) of the elements that have a corner in the closed cell
/// rectangle or an edge that crosses one of its edges. A triangle that holds the whole cell is not listed: cells
/// are about half a triangle wide, which keeps that rare.
void FindElementsBelongtoCell(CCell& cell, const qv::large_vector<CNode>& nodes,
                              const qv::large_vector<CElement>& elements);

/// Some edge of the cell crosses some edge of the triangle K, L, M.
bool CrossCheck_Element(const CCell& cell, const CNode& K, const CNode& L, const CNode& M);

/// Segment P1 P2 meets segment P3 P4, ends included. Parallel segments never meet, nor do two that start in the
/// same point (both numerators 0).
bool FindInterSectionPoint(double x1, double y1, double x2, double y2, double x3, double y3, double x4, double y4);

/// P lies in the triangle P1 P2 P3, boundary included, by signs.
bool FindInTriangle(double px, double py, double x1, double y1, double x2, double y2, double x3, double y3);

/// P lies in the triangle, by the sum of the angles under which its edges appear from P. Note: P comes last here.
bool CheckThePointInsideTriangle(double x1, double y1, double x2, double y2, double x3, double y3, double px,
                                 double py);

}  // namespace qvsoilrdf
