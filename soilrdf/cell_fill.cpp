#include "soilrdf/cell_fill.h"

#include <cmath>

#include "qvbrisk/constants.h"

namespace qvsoilrdf {
namespace {

bool in_rectangle(const CCell& cell, const CNode& node) {
  return cell.x_lo <= node.x && node.x <= cell.x_hi && cell.y_lo <= node.y && node.y <= cell.y_hi;
}

bool crosses(double x1, double y1, double x2, double y2, const CNode& K, const CNode& L, const CNode& M) {
  return FindInterSectionPoint(x1, y1, x2, y2, K.x, K.y, L.x, L.y) ||
         FindInterSectionPoint(x1, y1, x2, y2, L.x, L.y, M.x, M.y) ||
         FindInterSectionPoint(x1, y1, x2, y2, K.x, K.y, M.x, M.y);
}

}  // namespace

void FindElementsBelongtoCell(CCell& cell, const qv::large_vector<CNode>& nodes,
                              const qv::large_vector<corner_numbers>& elements) {
  std::int32_t k = 1;
  for (const corner_numbers& element : elements) {
    const CNode& K = nodes[static_cast<size_t>(element.node[0] - 1)];
    const CNode& L = nodes[static_cast<size_t>(element.node[1] - 1)];
    const CNode& M = nodes[static_cast<size_t>(element.node[2] - 1)];
    if (in_rectangle(cell, K) || in_rectangle(cell, L) || in_rectangle(cell, M) || CrossCheck_Element(cell, K, L, M)) {
      cell.elements.push_back(k);
    }
    ++k;
  }
}

bool CrossCheck_Element(const CCell& cell, const CNode& K, const CNode& L, const CNode& M) {
  return crosses(cell.x_lo, cell.y_lo, cell.x_hi, cell.y_lo, K, L, M) ||
         crosses(cell.x_hi, cell.y_lo, cell.x_hi, cell.y_hi, K, L, M) ||
         crosses(cell.x_lo, cell.y_hi, cell.x_hi, cell.y_hi, K, L, M) ||
         crosses(cell.x_lo, cell.y_lo, cell.x_lo, cell.y_hi, K, L, M);
}

bool FindInterSectionPoint(double x1, double y1, double x2, double y2, double x3, double y3, double x4, double y4) {
  const double dx = x2 - x1;
  const double dy = y2 - y1;
  const double den = dx * (y4 - y3) - dy * (x4 - x3);
  if (den == 0.0) return false;
  const double na = (y1 - y3) * (x4 - x3) - (x1 - x3) * (y4 - y3);
  const double nb = (y1 - y3) * dx - (x1 - x3) * dy;
  const double ua = na / den;
  const double ub = nb / den;
  if (ua < 0.0 || ua > 1.0 || ub < 0.0 || ub > 1.0) return false;
  return !(na == 0.0 && nb == 0.0);
}

bool FindInTriangle(double px, double py, double x1, double y1, double x2, double y2, double x3, double y3) {
  const double det = (y1 - y3) * (x3 - x2) + (x1 - x3) * (y2 - y3);
  const double a = (x3 - x2) * (py - y3) + (y2 - y3) * (px - x3);
  const double b = (x1 - x3) * (py - y3) + (y3 - y1) * (px - x3);
  const double s = a + b;
  if (det < 0.0) return a <= 0.0 && b <= 0.0 && s >= det;
  return a >= 0.0 && b >= 0.0 && s <= det;
}

bool CheckThePointInsideTriangle(double x1, double y1, double x2, double y2, double x3, double y3, double px,
                                 double py) {
  const double d[3][2] = {{x1 - px, y1 - py}, {x2 - px, y2 - py}, {x3 - px, y3 - py}};
  double length[3];
  for (int k = 0; k < 3; ++k) {
    if (d[k][0] == 0.0 && d[k][1] == 0.0) return true;
    length[k] = std::sqrt(d[k][0] * d[k][0] + d[k][1] * d[k][1]);
  }
  const auto angle = [&](int k, int l) {
    const double product = length[k] * length[l];
    const double cosine = product == 0.0 ? 0.0 : (d[k][0] * d[l][0] + d[k][1] * d[l][1]) / product;
    return std::acos(cosine);
  };
  const double sum = (angle(0, 2) + angle(0, 1) + angle(1, 2)) * RTOD;
  return 359.9999 <= sum && sum <= 360.0001;
}

}  // namespace qvsoilrdf
