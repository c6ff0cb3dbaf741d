#pragma once

#include <vector>

#include "soilrdf/road.h"

/// The triangles of a cell of the plan grid, and point-in-triangle tests in the plan. Everything here works on x and y
/// only. FindElementsBelongtoCell is the definition of a cell's list; build_cell_grid makes the same lists faster.
/// Kept: no code of the library calls FindElementsBelongtoCell, FindInTriangle and CheckThePointInsideTriangle. They
/// are documented functions of the road, and tests hold the grid against the first.
namespace qvsoilrdf {

/// Appends to the cell's `elements` the numbers (from 1) of the elements that have a corner in the closed cell
/// rectangle or an edge that crosses one of its edges. A triangle that holds the whole cell is not listed: cells
/// are about half a triangle wide, which keeps that rare.
void FindElementsBelongtoCell(CCell& cell, const qv::large_vector<CNode>& nodes,
                              const qv::large_vector<corner_numbers>& elements);

/// True if an edge of the cell crosses an edge of the triangle K, L, M.
bool CrossCheck_Element(const CCell& cell, const CNode& K, const CNode& L, const CNode& M);

/// True if segment P1 P2 meets segment P3 P4, ends included. Kept: parallel segments never meet, nor do two that start
/// in the same point.
bool FindInterSectionPoint(double x1, double y1, double x2, double y2, double x3, double y3, double x4, double y4);

/// True if P lies in the triangle P1 P2 P3, boundary included; by the signs of its barycentric coordinates.
bool FindInTriangle(double px, double py, double x1, double y1, double x2, double y2, double x3, double y3);

/// True if P lies in the triangle P1 P2 P3; by the sum of the angles under which its edges are seen from P, which is
/// 360 degrees within 0.0001. Note: P comes last here.
bool CheckThePointInsideTriangle(double x1, double y1, double x2, double y2, double x3, double y3, double px,
                                 double py);

}  // namespace qvsoilrdf
