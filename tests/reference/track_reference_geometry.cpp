#include "tests/reference/functions.h"
#include "tests/reference/track_reference.h"

namespace qvref {

void lay_tangent(const v3& c1, double r1, const v3& c2, double r2, const v3& axle, double& L, belt_record& span) {
  v3 u = c2 - c1;
  const double D = std::sqrt(dot(u, u));
  if (D == 0.0) return;
  const double h = std::sqrt(D * D - (r1 - r2) * (r1 - r2));
  double theta = std::acos(h / D);
  normalise(u);
  v3 w = cross(u, axle);
  normalise(w);
  span.along = u;
  span.axle = axle;
  span.normal = w;
  if (r1 != r2) {
    if (r1 > r2) theta = -theta;
    // Nine numbers in this order, read column by column.
    const m33 Q = {cosine(theta), 0.0, -sine(theta), 0.0, 1.0, 0.0, sine(theta), 0.0, cosine(theta)};
    const m33 turned = from_columns(u, axle, w) * Q;
    span.along = column(turned, 0);
    span.axle = column(turned, 1);
    span.normal = column(turned, 2);
  }
  span.P0 = c1 - r1 * span.normal;
  span.P1 = c2 - r2 * span.normal;
  const v3 chord = span.P1 - span.P0;
  L = std::sqrt(dot(chord, chord));
}

void cut_corners(std::vector<std::array<belt_record, 2>>& track, std::vector<double> radii) {
  const std::size_t nodes = radii.size();
  for (std::size_t i = 1; i + 1 < nodes; ++i) {
    belt_record &E = track[i][0], &S = track[i][1];
    const v3 chord = S.P0 - E.P1;
    const double c = std::sqrt(dot(chord, chord)), R = radii[i];
    const double beta = 1.5707963267948966 - std::acos(0.5 * c / R);
    const double t = (R / cosine(beta)) * sine(beta);
    E.P1 = E.P1 + t * E.along;
    S.P0 = E.P1;
  }
  track[0][1].P1 = track[1][0].P1;
  track[nodes - 1][0].P0 = track[nodes - 2][1].P0;
}

void place_grid(double width, const v3& marker, const v3& node, belt_record& span) {
  const std::size_t n_long = span.points.size(), n_lat = span.points[0].size();
  const v3 way = span.P1 - span.P0;
  span.length = std::sqrt(dot(way, way));
  const double dx = span.length / static_cast<double>(n_long - 1);
  const double dy = width / static_cast<double>(n_lat - 1);
  const double ds = 1.0 / static_cast<double>(n_long - 1);
  for (std::size_t j = 0; j < n_long; ++j) {
    for (std::size_t k = 0; k < n_lat; ++k) {
      track_point& point = span.points[j][k];
      const v3 q = {static_cast<double>(j) * dx, static_cast<double>(k) * dy - 0.5 * width, 0.0};
      point.position = span.P0 + from_columns(span.along, span.axle, span.normal) * q;
      point.lever_marker = point.position - marker;
      point.lever_node = point.position - node;
      point.weight = span.side == 1 ? 1.0 - static_cast<double>(j) * ds : static_cast<double>(j) * ds;
    }
  }
}

namespace {

bool is_finite(const v3& v) { return std::isfinite(v[0]) && std::isfinite(v[1]) && std::isfinite(v[2]); }

void set_slip(const track_kinematics& k, const v3& on_road, track_point& point) {
  const v3 vC = k.VI + (k.AI * tilde(k.WI)) * (transpose(k.AI) * point.lever_marker);
  const v3 cI = transpose(k.AI) * vC;
  const v3 vG = k.VJ + (k.AJ * tilde(k.WJ)) * on_road;
  const v3 gI = transpose(k.AI) * vG;
  point.soil.slip_velocity = {cI[0] - (gI[0] + k.belt_speed), cI[1] - gI[1]};
  for (double& slip : point.soil.slip_velocity) {
    if (std::fabs(slip) < 1e-8) slip = 0.0;
  }
}

}  // namespace

bool measure_track_contact(const road& road, const track_kinematics& k, const v3& span_normal, const node_state& node,
                           track_point& point) {
  contact_point& soil = point.soil;
  const v3 r = point.position - k.dJ;
  const v3 on_road = transpose(k.AJ) * r;
  soil.sinkage = 0.0;
  if (!is_finite(on_road)) return false;
  const facet_search search = search_facet(road, on_road);
  if (search.how == found::outside_extent) return false;
  v3 facet_normal = search.normal;
  if (normalise(facet_normal) == 0.0) return false;
  soil.facet_point = search.point;

  soil.normal = k.AJ * facet_normal;
  normalise(soil.normal);
  soil.tangent_1 = cross(column(k.AI, 1), soil.normal);
  normalise(soil.tangent_1);
  soil.tangent_2 = cross(soil.normal, soil.tangent_1);
  normalise(soil.tangent_2);
  soil.sinkage = dot(soil.normal, r - k.AJ * soil.facet_point);
  if (soil.sinkage >= 0.0) return false;

  soil.area_ratio = std::fabs(dot(soil.normal, span_normal));
  const v3 vN = (node.A * tilde(node.angular_velocity)) * (transpose(node.A) * point.lever_node);
  const v3 gJ = (k.AJ * tilde(k.WJ)) * soil.facet_point;
  soil.normal_velocity = dot(soil.normal, vN + node.velocity - k.VJ - gJ);

  if (static_cast<int>(soil.contact_state) == 0) {
    soil.shear_disp = {0.0, 0.0};
    return true;
  }
  set_slip(k, on_road, point);
  const double dt = 0.0 - point.last_update;
  for (std::size_t c = 0; c < 2; ++c) {
    soil.shear_disp[c] = soil.slip_velocity[c] * dt;
    if (k.belt_speed != 0.0) soil.shear_disp[c] = soil.shear_disp[c] + soil.last_shear_disp[c];
  }
  return true;
}

}  // namespace qvref
