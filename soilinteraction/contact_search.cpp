#include "soilinteraction/contact_search.h"

#include <algorithm>
#include <cmath>

#include "common/messages.h"
#include "common/parameters.h"
#include "qvbrisk/constants.h"
#include "qvbrisk/services.h"

namespace qvsoilinteraction {
namespace {

using qvsoilrdf::CElement;
using qvsoilrdf::CFacet;
using qvsoilrdf::CNode;
using qvsoilrdf::CRoad;

constexpr double k_first_edge_tolerance = 0.000153;
constexpr double k_edge_tolerance = 0.0001;
constexpr double k_angle_tolerance = 0.0001;  // [deg]
constexpr double k_slip_at_rest = 1e-08;      // a slower slip is none

/// The definition: is the point in the triangle, by the angles under which its edges appear?
bool appears_inside(const CRoad& road, const CElement& element, const double* p, double edge_tolerance) {
  double to_corner[3][3];
  for (int c = 0; c < 3; ++c) {
    const CNode& node = road.nodes[static_cast<std::size_t>(element.node[c] - 1)];
    to_corner[c][0] = node.x - p[0];
    to_corner[c][1] = node.y - p[1];
    to_corner[c][2] = 0.0;
    int on_corner;
    qv::normalization_vec(to_corner[c], on_corner);
    if (on_corner != 0) return true;
  }
  double sum = 0.0;
  for (int c = 0; c < 3; ++c) {
    double cosine;
    qv::vectrvec(to_corner[c], to_corner[(c + 1) % 3], cosine);
    if (-1.0 - edge_tolerance <= cosine && cosine <= -1.0 + edge_tolerance) return true;
    sum += std::acos(cosine) * RTOD;
  }
  return 360.0 - k_angle_tolerance <= sum && sum <= 360.0 + k_angle_tolerance;
}

bool holds(const CRoad& road, std::int32_t number, const double* p, double edge_tolerance) {
  const CFacet& facet = road.facets[static_cast<std::size_t>(number - 1)];
  const double x = p[0] - facet.corner[0];
  const double y = p[1] - facet.corner[1];
  const double l = facet.gradient[0] * x + facet.gradient[1] * y;
  const double m = facet.gradient[2] * x + facet.gradient[3] * y;
  const double least = std::min(std::min(l, m), 1.0 - l - m);
  if (least > static_cast<double>(facet.inside)) return true;
  if (least < -static_cast<double>(facet.outside)) return false;
  return appears_inside(road, road.elements[static_cast<std::size_t>(number - 1)], p, edge_tolerance);
}

const CFacet* find_facet(const CRoad& road, std::size_t cell, const double* p) {
  double edge_tolerance = k_first_edge_tolerance;
  for (const std::int32_t number : road.cells.list(cell)) {
    if (holds(road, number, p, edge_tolerance)) return &road.facets[static_cast<std::size_t>(number - 1)];
    edge_tolerance = k_edge_tolerance;
  }
  return nullptr;
}

/// Kept: the texts "The analysis is stopped because of exceeding the ... value" were never handed on; a point beyond
/// the road is out of contact and nothing stops, so they are not even built here.
bool out_of_extent(const CRoad& road, const double* p) {
  return p[0] > road.x_max || p[0] < road.x_min || p[1] > road.y_max || p[1] < road.y_min;
}

/// The point's cell. The extent is closed: a point on its upper border, or rounded there, is in the last cell.
std::size_t cell_of(const CRoad& road, const double* p) {
  const auto i = static_cast<std::int32_t>((p[0] + road.x_offset) / road.cell_dx);
  const auto j = static_cast<std::int32_t>((p[1] + road.y_offset) / road.cell_dy);
  return road.cells.index(std::min(i, road.nx - 1), std::min(j, road.ny - 1));
}

void store_hole(Croad_contact& rc) {
  rc.facet_normal[0] = rc.facet_normal[1] = rc.facet_normal[2] = 0.0;
  rc.facet_d = std::nan("");  // 0 triangles: a sum of 0 over a count of 0
}

int search_cell(const CRoad& road, std::size_t cell, const double* p, Croad_contact& rc) {
  const CFacet* facet = find_facet(road, cell, p);
  if (facet == nullptr) {
    store_hole(rc);
    return k_in_extent;
  }
  const double* n = facet->normal;
  std::copy(n, n + 3, rc.facet_normal);
  rc.facet_d = facet->d;
  if (n[0] == 0.0 && n[1] == 0.0 && n[2] == 0.0) return k_in_extent;  // a triangle without area
  const double w[3] = {p[0] - facet->corner[0], p[1] - facet->corner[1], p[2] - facet->corner[2]};
  qv::vectrvec(n, w, rc.sinkage);
  double along[3];
  qv::scavec(rc.sinkage, n, along);
  for (int c = 0; c < 3; ++c) rc.facet_point[c] = facet->corner[c] + (w[c] - along[c]);
  return k_in_extent;
}

void normalise(double* v) {
  int zero;  // a zero vector stays one
  qv::normalization_vec(v, zero);
}

/// Height that no triangle of the point's cell reaches, in road axes, so that the point is out of contact whatever
/// the search would find. Not taken for heights that overflow on the way: those become not-a-numbers in contact.
bool clear_above(const CRoad& road, const kinematics& k, std::size_t cell, double height) {
  constexpr double k_far = 1e100;
  return k.road_is_rigidly_placed && height > static_cast<double>(road.cells.top(cell)) && height < k_far;
}

void set_tangents(const kinematics& k, Croad_contact& rc) {
  const double* body_y = k.A1 + 3;
  qv::vectlvec(body_y, rc.normal, rc.tangent_1);
  normalise(rc.tangent_1);
  qv::vectlvec(rc.normal, rc.tangent_1, rc.tangent_2);
  normalise(rc.tangent_2);
}

/// Cosine between the road's normal and the body's: the plate's own, or for a wheel the direction from the point to
/// the wheel's centre in the x-z plane of the road's axes.
double area_ratio(int shape, const kinematics& k, const double* p, const double* normal) {
  double cosine;
  if (shape == 1) {
    qv::vectrvec(normal, k.A1 + 6, cosine);
  } else {
    double to_center[3] = {k.d15[0] - p[0], 0.0, k.d15[2] - p[2]};
    normalise(to_center);
    qv::vectrvec(normal, to_center, cosine);
  }
  return std::fabs(cosine);
}

double at_rest_below_threshold(double slip) { return std::fabs(slip) < k_slip_at_rest ? 0.0 : slip; }

void set_velocities(const kinematics& k, Croad_contact& rc) {
  double by_rotation[3], of_road[3], b[3], u[3];
  qv::matvec(k.AW1, rc.Si_prime, by_rotation);
  qv::matvec(k.AW5, rc.facet_point, of_road);
  for (int c = 0; c < 3; ++c) {
    b[c] = by_rotation[c] + k.V1[c] - k.V5[c];
    u[c] = b[c] - of_road[c];
  }
  // Kept: the normal velocity is taken from the road's material point, the slip from its base marker.
  qv::vectrvec(rc.normal, u, rc.normal_velocity);
  double slip[2];
  qv::vectrvec(rc.tangent_1, b, slip[0]);
  qv::vectrvec(rc.tangent_2, b, slip[1]);
  rc.slip_velocity[0] = at_rest_below_threshold(slip[0]);
  rc.slip_velocity[1] = at_rest_below_threshold(slip[1]);
}

/// Travel since touch-down, along the tangents of touch-down.
void set_shear_displacement(Croad_contact& rc) {
  if (rc.contact_state == 0.0) {
    rc.shear_disp[0] = rc.shear_disp[1] = 0.0;
    return;
  }
  double g[3];
  for (int c = 0; c < 3; ++c) g[c] = rc.relative_position[c] - rc.first_contact_position[c];
  qv::vectrvec(rc.first_contact_tangent_1, g, rc.shear_disp[0]);
  qv::vectrvec(rc.first_contact_tangent_2, g, rc.shear_disp[1]);
}

bool is_rotation(const double* A) {
  constexpr double k_tolerance = 1e-9;
  double product[9];
  qv::mattrmat(A, A, product);
  for (int c = 0; c < 9; ++c) {
    if (!(std::fabs(product[c] - (c % 4 == 0 ? 1.0 : 0.0)) < k_tolerance)) return false;
  }
  double det;
  qv::matdet3(A, det);
  return det > 0.0;
}

}  // namespace

void complete(kinematics& k) {
  double W1t[9], W5t[9];
  qv::mattr(k.A5, k.A5t);
  qv::vectl(k.W1, W1t);
  qv::vectl(k.W5, W5t);
  qv::matmat(k.A1, W1t, k.AW1);
  qv::matmat(k.A5, W5t, k.AW5);
  k.road_is_rigidly_placed = is_rotation(k.A5);
}

int search_contact_facet(const CRoad& road, const double* p, Croad_contact& rc) {
  if (out_of_extent(road, p)) return k_out_of_extent;
  if (road.cells.empty()) {  // a road whose reading broke off before its grid stood
    store_hole(rc);
    return k_in_extent;
  }
  return search_cell(road, cell_of(road, p), p, rc);
}

int get_contact_info(void* handle, const CRoad& road, int shape, const kinematics& k, Croad_contact& rc, int& ierr,
                     char** msg) {
  double r[3], p[3];
  qv::matvec(k.A1, rc.Si_prime, r);
  for (int c = 0; c < 3; ++c) {
    rc.position[c] = r[c] + k.d1[c];
    rc.relative_position[c] = rc.position[c] - k.d5[c];
  }
  qv::matvec(k.A5t, rc.relative_position, p);
  rc.sinkage = 0.0;
  for (int c = 0; c < 2; ++c) {
    if (!std::isnan(p[c])) continue;
    qv::fault("SOIL INTERACTION ERROR : The " + std::string(c == 0 ? "x" : "y") +
                  "-axis value of a contact point on the road is nan; it must be a number, on the road between " +
                  qv::number_text(c == 0 ? road.x_min : road.y_min) + " and " +
                  qv::number_text(c == 0 ? road.x_max : road.y_max) + ".",
              ierr, msg);
  }
  if (out_of_extent(road, p)) return 0;
  if (!road.cells.empty() && clear_above(road, k, cell_of(road, p), p[2])) return 0;
  if (search_contact_facet(road, p, rc) == k_search_failed) {
    int status = 0;
    stop_solver(handle, 1, 0, 1, msg[0], &status);
  }

  double length, facet_point[3];
  int zero;
  qv::normalization_vec(rc.facet_normal, length, zero);
  if (length == 0.0) return 0;
  qv::matvec(k.A5, rc.facet_normal, rc.normal);
  normalise(rc.normal);
  qv::matvec(k.A5, rc.facet_point, facet_point);
  const double e[3] = {rc.relative_position[0] - facet_point[0], rc.relative_position[1] - facet_point[1],
                       rc.relative_position[2] - facet_point[2]};
  qv::vectrvec(rc.normal, e, rc.sinkage);
  if (rc.sinkage >= 0.0) return 0;

  set_tangents(k, rc);
  rc.area_ratio = area_ratio(shape, k, p, rc.normal);
  set_velocities(k, rc);
  set_shear_displacement(rc);
  return 1;
}

}  // namespace qvsoilinteraction
