#include <cmath>

#include "tests/library/course.h"
#include "tests/thrust/thrust_scene.h"

namespace qvtest {
namespace {

qvref::wave_file waves() {
  qvref::wave_file wave = calm_water();
  wave.rows = 40;
  wave.time.clear();
  wave.elevation.clear();
  for (int i = 0; i <= wave.rows; ++i) {
    wave.time.push_back(0.05 * i);
    wave.elevation.push_back({0.1 * std::sin(0.5 * i), 0.1 * std::cos(0.3 * i), 0.0});
  }
  wave.velocity.assign(wave.elevation.size(), {0.1, -0.1, 0.0});
  return wave;
}

class HullCourse final : public Course {
public:
  explicit HullCourse(const std::string& title)
      : Course(title), m_scene(sphere_hull(0.8, 2), waves(), steady_current(0.4, -0.2)) {
    m_scene.parameters.tangential_coef = 0.3;
    place(0);
    m_scene.call(0.0, 1);
  }
  const std::vector<double>& call(int n) override {
    place(n);
    return m_scene.call(time_of(n), flag_of(n));
  }

private:
  void place(int n) {
    m_scene.place({0.3 * std::sin(0.1 * n), 0.0, 0.1 * std::cos(0.2 * n)}, rotation({1.0, 0.2, 0.1}, 0.02 * n));
    m_scene.move({0.5, 0.1, 0.02}, {0.1, 0.0, 0.2});
  }

  HydroScene m_scene;
};

class ThrusterCourse final : public Course {
public:
  explicit ThrusterCourse(const std::string& title) : Course(title), m_scene(waves()) {
    m_scene.parameters.switch_on_waves = 1.0;
    m_scene.set_variable(12.0);
    place(0);
    m_scene.call(0.0, 1);
  }
  const std::vector<double>& call(int n) override {
    place(n);
    return m_scene.call(time_of(n), flag_of(n));
  }

private:
  void place(int n) { m_scene.point().position = {100.0, 0.0, 0.2 * std::sin(0.4 * n)}; }

  ThrustScene m_scene;
};

}  // namespace

courses make_water_courses() {
  courses all;
  for (const char* name : {"hull", "another hull"}) all.push_back(std::make_unique<HullCourse>(name));
  for (const char* name : {"thruster", "another thruster"}) all.push_back(std::make_unique<ThrusterCourse>(name));
  return all;
}

}  // namespace qvtest
