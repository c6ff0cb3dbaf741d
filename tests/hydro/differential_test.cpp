#include <gtest/gtest.h>

#include "tests/hydro/hydro_scene.h"
#include "tests/hydro/module_state.h"

// Compares the exported subroutines with the literal reference: random hulls, waves, currents, units, motions and call
// sequences, reports among them. Both form the same products and sums in the same order, so results are equal bit for
// bit (zeros of either sign count as equal, and a not-a-number equals another).

namespace qvtest {
namespace {

vec3 random_vector(random_source& random, double size) {
  return {uniform(random, -size, size), uniform(random, -size, size), uniform(random, -size, size)};
}

mat3 random_rotation(random_source& random, double angle) {
  vec3 axis = random_vector(random, 1.0);
  axis[2] += 1.1;
  return rotation(axis, uniform(random, -angle, angle));
}

/// An axis that starts near 0. If `may_turn`, it may decrease in places.
qvref::axis random_axis(random_source& random, int count, double step, bool may_turn) {
  qvref::axis axis;
  double at = whole(random, 0, 2) == 0 ? 0.0 : uniform(random, -0.5, 1.0) * step;
  for (int i = 0; i < count; ++i) {
    axis.push_back(at);
    at += uniform(random, may_turn && whole(random, 0, 3) == 0 ? -0.6 : 0.05, 1.0) * step;
  }
  return axis;
}

qvref::wave_file random_wave(random_source& random) {
  qvref::wave_file wave;
  wave.rows = whole(random, 1, 6);
  wave.cols = whole(random, 1, 3) == 1 ? whole(random, 1, 3) : whole(random, 4, 12);
  const bool may_turn = whole(random, 0, 5) == 0;
  wave.time = random_axis(random, wave.rows, 2.0, may_turn);
  wave.x = random_axis(random, wave.cols, 4.0, may_turn);
  for (auto* table : {&wave.elevation, &wave.velocity}) {
    table->assign(static_cast<std::size_t>(wave.rows), std::vector<double>(static_cast<std::size_t>(wave.cols)));
    for (auto& row : *table)
      for (double& value : row) value = uniform(random, -0.8, 0.8);
  }
  return wave;
}

qvref::current_table random_table(random_source& random) {
  qvref::current_table table;
  table.count = whole(random, 1, 7);
  table.mode = whole(random, 0, 2);
  table.key = random_axis(random, table.count, table.mode == 1 ? 5.0 : 2.0, whole(random, 0, 5) == 0);
  for (int i = 0; i < table.count; ++i) table.value.push_back(uniform(random, -2, 2));
  return table;
}

/// Shape of a mesh: a closed hull, or loose patches on nodes of a coarse lattice, with the spare node among them.
hull random_shape(random_source& random) {
  if (whole(random, 0, 2) > 0) return random_hull(random);
  hull h;
  for (int i = whole(random, 3, 9); i > 0; --i) {
    h.nodes.push_back({0.5 * whole(random, -3, 3), 0.5 * whole(random, -3, 3), 0.5 * whole(random, -3, 3)});
  }
  const int n = static_cast<int>(h.nodes.size());
  h.nodes.push_back({0, 0, 0});
  const auto node = [&](int i) { return h.nodes[static_cast<std::size_t>(i)]; };
  for (int tries = 0; tries < 40 && h.patches.size() < 8; ++tries) {
    const std::array<int, 3> p = {whole(random, 0, n), whole(random, 0, n), whole(random, 0, n)};
    const vec3 normal =
        qvref::cross(qvref::operator-(node(p[1]), node(p[0])), qvref::operator-(node(p[2]), node(p[0])));
    if (length(normal) > 0.0) h.patches.push_back(p);
  }
  h.nodes.pop_back();
  return h;
}

void randomise(hydro_parameters& p, random_source& random) {
  p.shape = random_shape(random);
  p.mass = whole(random, 0, 5) == 0 ? 0.0 : uniform(random, 0.1, 900.0);
  p.scale = whole(random, 0, 9) == 0 ? 0.0 : uniform(random, -0.5, 2.0);
  p.t_start = uniform(random, -1, 3);
  p.t_end = whole(random, 0, 3) == 0 ? uniform(random, 0, 12) : -5.0;
  p.density = uniform(random, 0.5, 1100);
  p.gravity = uniform(random, 1, 10);
  p.tangential_coef = uniform(random, 0, 2);
  p.tangential_exp = whole(random, 0, 4) == 0 ? uniform(random, -1, 0.5) : uniform(random, 0.5, 2.5);
  p.drag_scale = uniform(random, 0.1, 2.0);
}

class RandomScene {
public:
  explicit RandomScene(unsigned seed)
      : random_(seed),
        wave_(random_wave(random_)),
        currents_{random_table(random_), random_table(random_)},
        scene_(plate_hull(1, 1), wave_, currents_),
        reference_(qvref::read_wave(narrow(k_wave_string)), qvref::read_current(narrow(k_current_string)), units()) {
    scene_.host.unit_scale = units_;
    const int parts = whole(random_, 1, 3);
    const int id = scene_.parameters.id;
    for (int i = 0; i < parts; ++i) {
      parts_.emplace_back();
      randomise(parts_.back(), random_);
      parts_.back().sub = i;
      parts_.back().subs = parts;
      parts_.back().id = id;
    }
    for (int marker = 60; marker < 60 + whole(random_, 0, 3); ++marker) {
      scene_.points.push_back(marker);
      scene_.host.markers[marker].position = random_vector(random_, 30.0);
    }
    scene_.water().position = random_vector(random_, 10.0);
    scene_.water().axes = random_rotation(random_, 3.0);
  }

  /// Returns false if the results differ, and has then reported the failure.
  bool run() {
    double time = uniform(random_, -1.0, 1.0);
    for (int step = 0; step < 30; ++step) {
      move();
      time += uniform(random_, -0.3, 0.9);
      const int iflag = whole(random_, 0, 3);
      for (const hydro_parameters& part : parts_) {
        scene_.parameters = part;
        if (!compare_call(time, iflag)) return false;
      }
      if (whole(random_, 0, 2) == 0 && !compare_report()) return false;
    }
    return true;
  }

  const qvref::hull_census& census() const { return reference_.census(); }
  long reports = 0, massless = 0, not_numbers = 0;

private:
  std::string narrow(int id) {
    const std::wstring& text = scene_.host.strings[id];
    return {text.begin(), text.end()};
  }
  const std::array<double, 5>& units() {
    units_ = {1, 1, 1, 1, 1};
    if (whole(random_, 0, 1) == 0) {
      for (double& u : units_) u = uniform(random_, 0.01, 20.0);
    }
    return units_;
  }

  void move() {
    const double reach = wave_.x.back() + 2.0;
    const vec3 in_water = {uniform(random_, -1.5, std::max(reach, 0.0)), uniform(random_, -6, 6),
                           uniform(random_, -2.0, 1.0)};
    const vec3 way = times(scene_.water().axes, in_water);
    vec3 place;
    for (std::size_t k = 0; k < 3; ++k) place[k] = scene_.water().position[k] + way[k];
    scene_.place(place, random_rotation(random_, 3.0));
    scene_.force_marker().position = random_vector(random_, 20.0);
    scene_.move(random_vector(random_, 4.0), random_vector(random_, 4.0));
    scene_.water().velocity = random_vector(random_, 0.5);
    scene_.host.forces[scene_.force_of_report] = random_vector(random_, 100.0);
  }

  bool compare_call(double time, int iflag) {
    const std::vector<double> expected = reference_.call(scene_.host.handle(), time, scene_.parameters.list(), iflag);
    const std::vector<double> result = scene_.call(time, iflag);
    for (const double value : result) not_numbers += std::isnan(value) ? 1 : 0;
    return compare("force", result, expected) && compare_rows();
  }

  bool compare_report() {
    ++reports;
    bool nothing = false;
    const int iflag = whole(random_, 0, 2);
    const std::vector<double> expected = reference_.report(scene_.host.handle(), scene_.report_list(), iflag, nothing);
    const std::vector<double> result = scene_.call_report(iflag);
    massless += nothing ? 1 : 0;
    EXPECT_EQ(scene_.take_report(), nothing ? "HYDRO FORCE REPORT ERROR : THE MASS EQUALS ZERO" : "");
    return compare("report", result, expected);
  }

  bool compare(const char* what, const std::vector<double>& result, const std::vector<double>& expected) {
    const int difference = first_difference(result, expected);
    const std::string said = scene_.take_report();
    if (difference < 0 && said.empty()) return true;
    const auto slot = static_cast<std::size_t>(std::max(difference, 0));
    ADD_FAILURE() << what << ", slot " << difference << ": " << result[slot] << ", reference " << expected[slot]
                  << ", apart by " << result[slot] - expected[slot] << "; said \"" << said << "\"";
    return false;
  }

  /// Compares the intervals that the searches found, which are kept patch by patch.
  bool compare_rows() {
    const auto& part = element_of(scene_.parameters.id).subs[static_cast<std::size_t>(scene_.parameters.sub)];
    const auto& expected = reference_.part(scene_.parameters.sub);
    EXPECT_EQ(element_of(scene_.parameters.id).time_index, reference_.time_index());
    for (std::size_t i = 0; i < expected.patches.size(); ++i) {
      for (std::size_t n = 0; n < 3; ++n) {
        if (part.patches[i].wave_col[n] == expected.patches[i].wave_col[n] &&
            part.patches[i].current1_row[n] == expected.patches[i].current1_row[n] &&
            part.patches[i].current2_row[n] == expected.patches[i].current2_row[n]) {
          continue;
        }
        ADD_FAILURE() << "rows of patch " << i << ", corner " << n;
        return false;
      }
    }
    return true;
  }

  random_source random_;
  qvref::wave_file wave_;
  qvref::current_file currents_;
  std::array<double, 5> units_{};
  HydroScene scene_;
  qvref::hull_element reference_;
  std::vector<hydro_parameters> parts_;
};

TEST(RandomHydroScenes, GiveTheResultsOfTheLiteralReferenceBitForBit) {
  qvref::hull_census seen;
  long reports = 0, massless = 0, not_numbers = 0;
  for (unsigned seed = 1; seed <= 400; ++seed) {
    RandomScene scene(seed);
    ASSERT_TRUE(scene.run()) << "seed " << seed;
    const qvref::hull_census& c = scene.census();
    seen.corners += c.corners, seen.off_table += c.off_table, seen.between_columns += c.between_columns;
    seen.dry += c.dry, seen.wet += c.wet, seen.normal_drag += c.normal_drag, seen.cut_patches += c.cut_patches;
    reports += scene.reports, massless += scene.massless, not_numbers += scene.not_numbers;
  }
  const long some = seen.corners / 50;
  EXPECT_GT(seen.off_table, some);
  EXPECT_GT(seen.between_columns, some / 10);
  EXPECT_GT(seen.dry, some);
  EXPECT_GT(seen.wet, some);
  EXPECT_GT(seen.normal_drag, some);
  EXPECT_GT(seen.cut_patches, some);
  EXPECT_GT(reports, 1000);
  EXPECT_GT(massless, 100);
  EXPECT_LT(massless, reports / 2);
  EXPECT_LT(not_numbers, 400 * 30);
}

}  // namespace
}  // namespace qvtest
