#pragma once

#include "tests/reference/soil_laws_reference.h"

/// The whole 3D soil call for one element, slow and literal: everything is done per point, and the road is copied
/// wherever it is passed on.
namespace qvref {

/// What an element asks its host for. Matrices marker -> ground, column by column.
struct marker_kinematics {
  m33 A1{}, A5{};
  v3 d1{}, d5{}, V1{}, W1{}, V5{}, W5{}, d15{};
};

/// Asks the host behind `handle` through the services.
marker_kinematics fetch_kinematics(void* handle, int body_marker, int road_marker, int ground_marker);

class soil_element {
public:
  soil_element(const road& road, const body& body);

  /// One call: fills 7 + 8 nx ny results. iflag 1 places the points, 2 advances their history.
  void call(const marker_kinematics& k, int iflag, std::vector<double>& result);

  /// Force and area over the points, of the last call.
  const std::array<double, 4>& sums() const { return m_sums; }
  int points_in_contact() const { return m_points_in_contact; }
  const contact_point& point(int i, int j) const {
    return m_points[static_cast<std::size_t>(i)][static_cast<std::size_t>(j)];
  }

private:
  road m_road;
  body m_body;
  std::vector<std::vector<contact_point>> m_points;
  std::array<double, 4> m_sums{};
  int m_points_in_contact = 0;
};

/// Measures the geometry of one point; true if it is in contact. The road is a copy, so the caller's cannot change.
bool measure_contact(road road, const body& body, const marker_kinematics& k, contact_point& point);

void advance_history(bool in_contact, contact_point& point);

}  // namespace qvref
