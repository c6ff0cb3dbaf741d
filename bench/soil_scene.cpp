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

SoilScene::SoilScene(const body& what, int triangles) : body_(what), road_(make_road(triangles)) {
  host_.road_file.assign(road_.path.begin(), road_.path.end());
  par_ = {double(element_index(what)),
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
  result_.resize(7 + 8 * static_cast<std::size_t>(what.points()));
  place(0.5 * road_.length, 0.5 * road_.length);
  call(1);
  if (!host_.complaint.empty()) throw std::runtime_error(host_.complaint);
  check_lift();
  host_.velocity[0] = 1.0;
  host_.velocity[2] = -0.05;
  if (what.wheel) host_.angular_velocity[1] = 2.4;
}

void SoilScene::check_lift() {
  host_.position[2] += 100.0;
  call(2);  // out of contact: the points forget what an earlier scene left
  host_.position[2] -= 100.0;
  call(0);
  const double expected = expected_lift();
  constexpr double k_mesh_and_slope = 0.03;  // triangles instead of the formula, normals off the vertical
  if (!(std::fabs(result_[2] - expected) < k_mesh_and_slope * expected)) {
    throw std::runtime_error("lift " + std::to_string(result_[2]) + " instead of " + std::to_string(expected));
  }
}

double SoilScene::expected_lift() const {
  const double stiffness = 5270.0 / body_.width() + 1515040.0;  // of the roads that road_maker writes
  const double area = (body_.wheel ? 2.0 * 3.141592653589793 * body_.size() : body_.size()) * body_.width();
  double lift = 0.0;
  for (int i = 0; i < body_.nx; ++i) {
    for (int j = 0; j < body_.ny; ++j) {
      const double angle = 6.283185307179586 * i / body_.nx;
      const double along =
          body_.wheel ? body_.size() * std::cos(angle) : body_.size() * (double(i) / (body_.nx - 1) - 0.5);
      const double across = body_.width() * (double(j) / (body_.ny - 1) - 0.5);
      const double up = body_.wheel ? body_.size() * std::sin(angle) : 0.0;
      const double depth =
          terrain_height(host_.position[0] + along, host_.position[1] + across) - (host_.position[2] + up);
      if (depth <= 0.0) continue;
      lift +=
          stiffness * std::pow(depth, 0.7) * (body_.wheel ? std::fabs(std::sin(angle)) : 1.0) * area / body_.points();
    }
  }
  return lift;
}

void SoilScene::place(double x, double y) {
  host_.position[0] = x;
  host_.position[1] = y;
  host_.position[2] = terrain_height(x, y) + body_.height();
}

int SoilScene::points_in_contact() const {
  int count = 0;
  for (std::size_t k = 0; k < static_cast<std::size_t>(body_.points()); ++k) count += result_[13 + 8 * k] < 0.0;
  return count;
}

}  // namespace qvbench
