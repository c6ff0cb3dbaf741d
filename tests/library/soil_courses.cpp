#include <cmath>

#include "tests/library/course.h"
#include "tests/soilinteraction_mtl/belt_scene.h"

namespace qvtest {
namespace {

soil_mesh rolling_road(unsigned seed) {
  random_source random(seed);
  soil_mesh mesh = flat_mesh(24, 8, 0.25, -1.0, -1.0);
  make_rolling(mesh, 0.05, random);
  return mesh;
}

qvref::soil slipping_loam() {
  qvref::soil soil = loam();
  soil.coefficient_ds = 0.02;
  soil.critical_pressure = 40000.0;
  soil.exponent_pr = 0.9;
  soil.exponent_sd = 0.4;
  return soil;
}

class BodyCourse final : public Course {
public:
  BodyCourse(const std::string& title, std::unique_ptr<SoilScene> scene, double height)
      : Course(title), m_scene(std::move(scene)), m_height(height) {
    place(0);
    m_scene->call(1);
  }
  const SoilScene& scene() const { return *m_scene; }
  const std::vector<double>& call(int n) override {
    place(n);
    return m_scene->call(flag_of(n));
  }

private:
  void place(int n) {
    marker_state& body = m_scene->body();
    body.position = {1.0 + time_of(n), 0.1, m_height + 0.02 * std::sin(0.3 * n)};
    body.axes = rotation({0.1, 1.0, 0.05}, time_of(n));
    body.velocity = {1.0, 0.1, -0.05};
    body.angular_velocity = {0.0, 1.2, 0.0};
  }

  std::unique_ptr<SoilScene> m_scene;
  double m_height;
};

class TrackCourse final : public Course {
public:
  explicit TrackCourse(const std::string& title, unsigned seed)
      : Course(title),
        m_circles(level_circles(4, 0.5, 0.2, -0.1)),
        m_scene(rolling_road(seed), slipping_loam(), m_circles) {
    m_circles.back().z += 0.1;
    place(0);
    m_scene.call(1);
  }
  const std::vector<double>& call(int n) override {
    place(n);
    return m_scene.call(flag_of(n), time_of(n));
  }

private:
  void place(int n) {
    m_scene.put(m_circles, time_of(n), 0.02 * std::sin(0.3 * n));
    m_scene.vehicle().position = {time_of(n), 0.0, 0.0};
    m_scene.move({1.0, 0.05, -0.02});
    m_scene.belt_speed() = 0.8 + 0.4 * (n % 8 > 3);
  }

  std::vector<circle> m_circles;
  BeltScene m_scene;
};

}  // namespace

courses make_soil_courses() {
  const qvref::body wheel = {2, 0.4, 0.25, 24, 4}, plate = {1, 0.5, 0.3, 9, 9};
  auto first = std::make_unique<SoilScene>(rolling_road(1), slipping_loam(), wheel);
  auto beside = std::make_unique<SoilScene>(*first, 1, plate);
  courses all;
  all.push_back(std::make_unique<BodyCourse>("wheel", std::move(first), 0.3));
  all.push_back(std::make_unique<BodyCourse>("plate on the same road", std::move(beside), -0.05));
  all.push_back(std::make_unique<BodyCourse>(
      "wheel on another road", std::make_unique<SoilScene>(rolling_road(2), slipping_loam(), wheel), 0.3));
  for (unsigned seed : {3U, 4U}) all.push_back(std::make_unique<TrackCourse>("track", seed));
  return all;
}

}  // namespace qvtest
