#include "soilinteraction_mtl/belt_geometry.h"

#include <algorithm>
#include <cmath>

#include "common/kernels/angles.h"
#include "common/kernels/kernels.h"
#include "common/kernels/vectors.h"
#include "qvbrisk/constants.h"

namespace qvsoilinteractionmtl {
namespace {

using qv::k_block;
using qv::vectors;

double distance(const double* from, const double* to) {
  const double d[3] = {to[0] - from[0], to[1] - from[1], to[2] - from[2]};
  double squared;
  qv::vectrvec(d, d, squared);
  return std::sqrt(squared);
}

/// frame = level Q: (u, a, w) turned about a by theta, so that u runs along the tangent of circles of different radii.
void turn_into_tangent(double theta, const double* level, double* frame) {
  const double c = qv::cosine(theta), s = qv::sine(theta);
  const double Q[9] = {c, 0.0, -s, 0.0, 1.0, 0.0, s, 0.0, c};  // column by column
  qv::matmat(level, Q, frame);
}

void subtract(const vectors& a, const double* b, vectors& c, int count) {
  for (int i = 0; i < count; ++i) {
    c.x[i] = a.x[i] - b[0];
    c.y[i] = a.y[i] - b[1];
    c.z[i] = a.z[i] - b[2];
  }
}

}  // namespace

void get_tangent_point_XZ(const double* c1, double r1, const double* c2, double r2, const double* a, double& L,
                          double* frame, double* points) {
  double level[9] = {c2[0] - c1[0], c2[1] - c1[1], c2[2] - c1[2], a[0], a[1], a[2]};
  double D;
  int zero;
  qv::normalization_vec(level, D, zero);
  if (D == 0.0) return;
  const double h = std::sqrt(D * D - (r1 - r2) * (r1 - r2));
  qv::vectlvec(level, level + 3, level + 6);
  qv::normalization_vec(level + 6, zero);
  if (r1 == r2) {
    std::copy_n(level, 9, frame);
  } else {
    const double theta = std::acos(h / D);
    turn_into_tangent(r1 > r2 ? -theta : theta, level, frame);
  }
  const double* w = frame + 6;
  for (int c = 0; c < 3; ++c) {
    points[c] = c1[c] - r1 * w[c];
    points[3 + c] = c2[c] - r2 * w[c];
  }
  L = distance(points, points + 3);
}

void replace_tangent_point(int nNode, track_records& track, const double* radii) {
  const auto last = static_cast<std::size_t>(nNode - 1);
  for (std::size_t i = 1; i < last; ++i) {
    CSoilInteractionMTL& end = track[i][0];
    CSoilInteractionMTL& start = track[i][1];
    const double R = radii[i];
    const double half_wrap = HPI - std::acos(0.5 * distance(end.points + 3, start.points) / R);
    const double to_corner = R / qv::cosine(half_wrap) * qv::sine(half_wrap);
    for (int c = 0; c < 3; ++c) {
      end.points[3 + c] = end.points[3 + c] + to_corner * end.frame[c];
      start.points[c] = end.points[3 + c];
    }
  }
  std::copy_n(track[1][0].points + 3, 3, track[0][1].points + 3);
  std::copy_n(track[last - 1][1].points, 3, track[last][0].points);
}

grid_spacing space_grid(double b, CSoilInteractionMTL& span) {
  span.span_length = distance(span.points, span.points + 3);
  return {span.span_length / (span.nLong - 1), b / (span.nLat - 1), 0.5 * b};
}

QV_WIDE_VECTORS void place_on_span(const CSoilInteractionMTL& span, const double* pI, const double* pNode,
                                   belt_block& at) {
  vectors q;
  for (int i = 0; i < at.count; ++i) {
    q.x[i] = at.along[i];
    q.y[i] = at.across[i];
    q.z[i] = 0.0;
  }
  qv::rotate(span.frame, q, at.position, at.count);
  for (int i = 0; i < at.count; ++i) {
    at.position.x[i] += span.points[0];
    at.position.y[i] += span.points[1];
    at.position.z[i] += span.points[2];
  }
  subtract(at.position, pI, at.lever_marker, at.count);
  subtract(at.position, pNode, at.lever_node, at.count);
}

void CSoilInteractionMTL::Calculation_Node_Position(double b, const double* pI, const double* pNode) {
  const grid_spacing grid = space_grid(b, *this);
  belt_block at;
  Croad_contact_mtl* records[k_block];
  const auto flush = [&] {
    place_on_span(*this, pI, pNode, at);
    for (int i = 0; i < at.count; ++i) at.store(i, *records[i]);
    at.count = 0;
  };
  for (int j = 0; j < nLong; ++j) {
    for (int k = 0; k < nLat; ++k) {
      records[at.count] = &road_contacts[static_cast<std::size_t>(j)][static_cast<std::size_t>(k)];
      at.add(grid, j, k, 1);
      if (at.count == k_block) flush();
    }
  }
  flush();
  set_node_weights();
}

void CSoilInteractionMTL::set_node_weights() {
  for (int j = 0; j < nLong; ++j) {
    const double weight = node_weight(side, j, nLong);
    for (Csoil_contact_mtl& sc : soil_contacts[static_cast<std::size_t>(j)]) sc.node_weight = weight;
  }
}

}  // namespace qvsoilinteractionmtl
