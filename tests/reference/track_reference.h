#pragma once

#include "tests/reference/soil_laws_reference.h"

/// A track on a soil road, slow and literal: every point is evaluated by itself, and every quantity is asked of the
/// host in every call.
namespace qvref {

/// Marker ids, sizes and grid of a track. Radii are without the belt's thickness.
struct track_layout {
  int marker_I = 0, marker_J = 0, marker_R = 0, speed_variable = 0;
  double thickness = 0.0, width = 0.0;
  int n_long = 0, n_lat = 0;
  std::vector<int> markers;
  std::vector<double> radii;
};

/// A point of a span's grid: the contact point of the soil laws and what a belt adds.
struct track_point {
  contact_point soil;
  v3 position{}, lever_marker{}, lever_node{};
  double last_update = 0.0;
  double weight = 0.0;
  std::array<double, 6> shear_share{}, normal_share{};

  track_point() { soil.concrete_friction = 1.0; }
};

/// One end of a span: `along`, `axle` and `normal` are its frame, P0 and P1 where it starts and ends.
struct belt_record {
  int side = 0;
  v3 along{}, axle{}, normal{}, P0{}, P1{};
  double length = 0.0;
  std::vector<std::vector<track_point>> points;  ///< [along][across]
};

/// Lays the span along the common outer tangent of two circles; leaves everything as it is if they have one centre.
void lay_tangent(const v3& c1, double r1, const v3& c2, double r2, const v3& axle, double& L, belt_record& span);
/// Replaces the arcs around the inner nodes by corners. The records are [node][side].
void cut_corners(std::vector<std::array<belt_record, 2>>& track, std::vector<double> radii);
/// Places the grid and gives it its weights.
void place_grid(double width, const v3& marker, const v3& node, belt_record& span);

struct node_state {
  v3 position{}, velocity{}, angular_velocity{};
  m33 A{};
};

/// What a track asks its host for. Matrices marker -> R, column by column.
struct track_kinematics {
  m33 AI{}, AJ{};
  v3 dI{}, dJ{}, VI{}, WI{}, VJ{}, WJ{};
  double belt_speed = 0.0;
  std::vector<node_state> nodes;
};
track_kinematics fetch_track_kinematics(void* handle, const track_layout& layout);

/// Measures the geometry and slip of one point; true if it is in contact.
bool measure_track_contact(const road& road, const track_kinematics& k, const v3& span_normal, const node_state& node,
                           track_point& point);

/// Splits the loads of `first`, the point on the span's start record, between it and `second`, the point on the end
/// record.
void split_to_nodes(track_point& first, track_point& second);

class track {
public:
  track(const road& road, const track_layout& set_up);

  /// One call: fills 4 + 8 ((nodes - 1)(n_long - 1) + 1) n_lat results. Nodes and counts may differ from the set-up's;
  /// the loops keep those of the set-up.
  void call(void* handle, double time, const track_layout& now, int iflag, std::vector<double>& result);

  /// Force and area; first shear; normal and second shear per node: of the last call.
  const std::array<double, 4>& contact_sum() const { return m_contact; }
  const std::array<double, 6>& shear_sum() const { return m_shear; }
  const std::vector<std::array<double, 6>>& normal_sums() const { return m_normal; }
  const belt_record& record(std::size_t node, std::size_t side) const { return m_records[node][side]; }
  int points_in_contact() const { return m_points_in_contact; }
  int stale_points() const { return m_stale_points; }

private:
  void clear_sums();
  void lay_belt(const track_kinematics& k, const track_layout& now, double& L);
  void sum_normals(std::size_t span, std::size_t nodes, const track_point& first, const track_point& second);

  road m_road;
  std::vector<std::array<belt_record, 2>> m_records;
  std::array<double, 4> m_contact{};
  std::array<double, 6> m_shear{};
  std::vector<std::array<double, 6>> m_normal;
  int m_points_in_contact = 0, m_stale_points = 0;
};

}  // namespace qvref
