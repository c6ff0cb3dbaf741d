#include "bench/soil_scene.h"

#include <cmath>
#include <map>
#include <stdexcept>

namespace qvbench {
namespace {

constexpr int k_roads = 8;
constexpr int k_elements = 8;

/// Index of a road in the library: roads are numbered in the order of their first use.
int road_index(int triangles) {
  static std::map<int, int> indices;
  return indices.emplace(triangles, static_cast<int>(indices.size())).first->second;
}

int element_index(const body& what) { return what.wheel ? (what.nx == 36 ? 0 : 1) : 2; }

}  // namespace

SoilScene::SoilScene(const body& what, int triangles) : m_body(what), m_road(make_road(triangles)) {
  m_host.road_file.assign(m_road.path.begin(), m_road.path.end());
  m_par = {double(element_index(what)),
           1,
           0,
           double(road_index(triangles)),
           1,
           2,
           0,
           k_elements,
           k_roads,
           what.wheel ? 2.0 : 1.0,
           what.size(),
           what.width(),
           double(what.nx),
           double(what.ny),
           3};
  m_result.resize(7 + 8 * static_cast<std::size_t>(what.points()));
  place(0.5 * m_road.length, 0.5 * m_road.length);
  call(1);
  if (!m_host.complaint.empty()) throw std::runtime_error(m_host.complaint);
  check_lift();
  m_host.velocity[0] = 1.0;
  m_host.velocity[2] = -0.05;
  if (what.wheel) m_host.angular_velocity[1] = 2.4;
}

void SoilScene::check_lift() {
  m_host.position[2] += 100.0;
  call(2);  // out of contact: the points forget what an earlier scene left
  m_host.position[2] -= 100.0;
  call(0);
  const double expected = expected_lift();
  constexpr double k_mesh_and_slope = 0.03;  // share: triangles replace the formula, and normals are not vertical
  if (!(std::fabs(m_result[2] - expected) < k_mesh_and_slope * expected)) {
    throw std::runtime_error("lift " + std::to_string(m_result[2]) + " instead of " + std::to_string(expected));
  }
}

double SoilScene::expected_lift() const {
  const double stiffness = 5270.0 / m_body.width() + 1515040.0;  // kc/b + kphi of the roads that road_maker writes
  const double area = (m_body.wheel ? 2.0 * 3.141592653589793 * m_body.size() : m_body.size()) * m_body.width();
  double lift = 0.0;
  for (int i = 0; i < m_body.nx; ++i) {
    for (int j = 0; j < m_body.ny; ++j) {
      const double angle = 6.283185307179586 * i / m_body.nx;
      const double along =
          m_body.wheel ? m_body.size() * std::cos(angle) : m_body.size() * (double(i) / (m_body.nx - 1) - 0.5);
      const double across = m_body.width() * (double(j) / (m_body.ny - 1) - 0.5);
      const double up = m_body.wheel ? m_body.size() * std::sin(angle) : 0.0;
      const double depth =
          terrain_height(m_host.position[0] + along, m_host.position[1] + across) - (m_host.position[2] + up);
      if (depth <= 0.0) continue;
      lift +=
          stiffness * std::pow(depth, 0.7) * (m_body.wheel ? std::fabs(std::sin(angle)) : 1.0) * area / m_body.points();
    }
  }
  return lift;
}

void SoilScene::place(double x, double y) {
  m_host.position[0] = x;
  m_host.position[1] = y;
  m_host.position[2] = terrain_height(x, y) + m_body.height();
}

int SoilScene::points_in_contact() const {
  int count = 0;
  for (std::size_t k = 0; k < static_cast<std::size_t>(m_body.points()); ++k) count += m_result[13 + 8 * k] < 0.0;
  return count;
}

}  // namespace qvbench
