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
  /// @param mirrored  whether the axes of body and water markers are those of mirror images, now and then
  /// @param level     of the sphere that every part is, if it is not negative
  explicit RandomScene(unsigned seed, bool mirrored = false, int level = -1)
      : m_random(seed),
        m_mirrored(mirrored),
        m_wave(random_wave(m_random)),
        m_currents{random_table(m_random), random_table(m_random)},
        m_scene(plate_hull(1, 1), m_wave, m_currents),
        m_reference(qvref::read_wave(narrow(k_wave_string)), qvref::read_current(narrow(k_current_string)), units()) {
    m_scene.host.unit_scale = m_units;
    const int parts = whole(m_random, 1, 3);
    const int id = m_scene.parameters.id;
    for (int i = 0; i < parts; ++i) {
      m_parts.emplace_back();
      randomise(m_parts.back(), m_random);
      if (level >= 0) m_parts.back().shape = sphere_hull(uniform(m_random, 0.5, 3.0), level);
      m_parts.back().sub = i;
      m_parts.back().subs = parts;
      m_parts.back().id = id;
    }
    for (int marker = 60; marker < 60 + whole(m_random, 0, 3); ++marker) {
      m_scene.points.push_back(marker);
      m_scene.host.markers[marker].position = random_vector(m_random, 30.0);
    }
    m_scene.water().position = random_vector(m_random, 10.0);
    m_scene.water().axes = random_rotation(m_random, 3.0);
  }

  /// Returns false if the results differ, and has then reported the failure.
  bool run() {
    double time = uniform(m_random, -1.0, 1.0);
    for (int step = 0; step < 30; ++step) {
      move();
      time += uniform(m_random, -0.3, 0.9);
      const int iflag = whole(m_random, 0, 3);
      for (const hydro_parameters& part : m_parts) {
        m_scene.parameters = part;
        if (!compare_call(time, iflag)) return false;
      }
      if (whole(m_random, 0, 2) == 0 && !compare_report()) return false;
    }
    return true;
  }

  const qvref::hull_census& census() const { return m_reference.census(); }
  long reports = 0, massless = 0, not_numbers = 0;

private:
  std::string narrow(int id) {
    const std::wstring& text = m_scene.host.strings[id];
    return {text.begin(), text.end()};
  }
  const std::array<double, 5>& units() {
    m_units = {1, 1, 1, 1, 1};
    if (whole(m_random, 0, 1) == 0) {
      for (double& u : m_units) u = uniform(m_random, 0.01, 20.0);
    }
    return m_units;
  }

  /// Turns one axis of the marker round, so that its matrix has the determinant -1.
  void mirror(marker_state& marker) {
    const int axis = whole(m_random, 0, 3);  // 3: none
    for (int c = 0; axis < 3 && c < 3; ++c) {
      double& entry = marker.axes[static_cast<std::size_t>(3 * axis + c)];
      entry = -entry;
    }
  }

  void move() {
    const double reach = m_wave.x.back() + 2.0;
    const vec3 in_water = {uniform(m_random, -1.5, std::max(reach, 0.0)), uniform(m_random, -6, 6),
                           uniform(m_random, -2.0, 1.0)};
    const vec3 way = times(m_scene.water().axes, in_water);
    vec3 place;
    for (std::size_t k = 0; k < 3; ++k) place[k] = m_scene.water().position[k] + way[k];
    m_scene.place(place, random_rotation(m_random, 3.0));
    if (m_mirrored) mirror(m_scene.body()), mirror(m_scene.water());
    m_scene.force_marker().position = random_vector(m_random, 20.0);
    m_scene.move(random_vector(m_random, 4.0), random_vector(m_random, 4.0));
    m_scene.water().velocity = random_vector(m_random, 0.5);
    m_scene.host.forces[m_scene.force_of_report] = random_vector(m_random, 100.0);
  }

  bool compare_call(double time, int iflag) {
    const std::vector<double> expected =
        m_reference.call(m_scene.host.handle(), time, m_scene.parameters.list(), iflag);
    const std::vector<double> result = m_scene.call(time, iflag);
    for (const double value : result) not_numbers += std::isnan(value) ? 1 : 0;
    return compare("force", result, expected) && compare_rows();
  }

  bool compare_report() {
    ++reports;
    bool nothing = false;
    const int iflag = whole(m_random, 0, 2);
    const std::vector<double> expected =
        m_reference.report(m_scene.host.handle(), m_scene.report_list(), iflag, nothing);
    const std::vector<double> result = m_scene.call_report(iflag);
    massless += nothing ? 1 : 0;
    EXPECT_EQ(m_scene.take_report(), nothing ? "HYDRO FORCE REPORT ERROR : THE MASS EQUALS ZERO" : "");
    return compare("report", result, expected);
  }

  bool compare(const char* what, const std::vector<double>& result, const std::vector<double>& expected) {
    const int difference = first_difference(result, expected);
    const std::string said = m_scene.take_report();
    if (difference < 0 && said.empty()) return true;
    const auto slot = static_cast<std::size_t>(std::max(difference, 0));
    ADD_FAILURE() << what << ", slot " << difference << ": " << result[slot] << ", reference " << expected[slot]
                  << ", apart by " << result[slot] - expected[slot] << "; said \"" << said << "\"";
    return false;
  }

  /// Compares the intervals that the searches found, which are kept patch by patch.
  bool compare_rows() {
    const auto& part = element_of(m_scene.parameters.id).subs[static_cast<std::size_t>(m_scene.parameters.sub)];
    const auto& expected = m_reference.part(m_scene.parameters.sub);
    EXPECT_EQ(element_of(m_scene.parameters.id).time_index, m_reference.time_index());
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

  random_source m_random;
  bool m_mirrored;
  qvref::wave_file m_wave;
  qvref::current_file m_currents;
  std::array<double, 5> m_units{};
  HydroScene m_scene;
  qvref::hull_element m_reference;
  std::vector<hydro_parameters> m_parts;
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

TEST(LargeHulls, GiveTheResultsOfTheLiteralReferenceBitForBit) {
  qvref::hull_census seen;
  for (unsigned seed = 1; seed <= 8; ++seed) {
    RandomScene scene(seed, false, 3);
    ASSERT_TRUE(scene.run()) << "seed " << seed;
    const qvref::hull_census& c = scene.census();
    seen.dry += c.dry, seen.wet += c.wet, seen.cut_patches += c.cut_patches;
  }
  EXPECT_GT(seen.dry, 100000);
  EXPECT_GT(seen.wet, 100000);
  EXPECT_GT(seen.cut_patches, 5000);
}

TEST(MirroredHullMarkers, GiveTheResultsOfTheLiteralReferenceBitForBit) {
  long wet = 0;
  for (unsigned seed = 1; seed <= 100; ++seed) {
    RandomScene scene(seed, true);
    ASSERT_TRUE(scene.run()) << "seed " << seed;
    wet += scene.census().wet;
  }
  EXPECT_GT(wet, 10000);
}

}  // namespace
}  // namespace qvtest
