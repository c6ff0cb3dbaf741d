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
  host_.velocity[0] = 1.0;
  host_.velocity[2] = -0.05;
  if (what.wheel) host_.angular_velocity[1] = 2.4;
  place(0.5 * road_.length, 0.5 * road_.length);
  call(1);
  if (!host_.complaint.empty()) throw std::runtime_error(host_.complaint);
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
