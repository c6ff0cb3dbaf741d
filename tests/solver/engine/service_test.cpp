#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "qvbrisk/services.h"
#include "solver/engine/service_host.h"
#include "tests/solver/test_hook.h"
#include "tests/solver/test_model.h"

namespace {

using namespace qvslv;

/// An arm that turns about the ground's z axis as prescribed, a block that drifts and spins freely about its z axis,
/// and fixed axes askew. The motion of every marker is known in closed form.
struct Scene {
  static constexpr double k_rate = 1.7, k_swing = 0.2, k_beat = 3.0, k_start = 0.3;
  static constexpr double k_block_spin = -0.8;
  const Vec3 arm_point = {0.7, 0.2, -0.1};
  const Rotation arm_axes = product(turn(0, 0.5), turn(2, -0.4));
  const Vec3 block_start = {0.4, -1.0, 0.3};
  const Vec3 block_velocity = {0.2, 0.1, -0.3};
  const Vec3 block_point = {0.05, -0.2, 0.4};
  const Rotation block_axes = turn(1, 0.9);
  const Rotation fixed_axes = product(turn(0, 0.4), turn(1, -1.1));

  TestModel built;
  int on_arm, on_block, fixed;

  explicit Scene(double end_time, double output_step) : built(end_time, output_step) {
    const int arm = built.add_body("arm", 2.0, {0.3, 0.4, 0.5});
    const int block = built.add_body("block", 3.0, {0.2, 0.2, 0.1});
    built.body(block).position = block_start;
    built.body(block).velocity = block_velocity;
    built.body(block).angular_velocity = {0, 0, k_block_spin};
    const int hinge = built.add_marker(arm, {0, 0, 0});
    on_arm = built.add_marker(arm, arm_point, arm_axes);
    on_block = built.add_marker(block, block_point, block_axes);
    fixed = built.add_marker(k_ground, {5, 6, 7}, fixed_axes);
    Joint& joint = built.add_joint(JointType::revolute, 0, hinge);
    joint.motions.push_back({0, MotionLevel::position, expression("0.3 + 1.7*t + 0.2*sin(3*t)")});
  }

  struct Place {
    Vec3 position, velocity, spin;
    Rotation axes;
  };

  Place arm_at(double t) const {
    const double angle = k_start + k_rate * t + k_swing * std::sin(k_beat * t);
    const Vec3 spin = {0, 0, k_rate + k_swing * k_beat * std::cos(k_beat * t)};
    const Vec3 position = rotate(turn(2, angle), arm_point);
    return {position, cross(spin, position), spin, product(turn(2, angle), arm_axes)};
  }
  Place block_at(double t) const {
    const Vec3 spin = {0, 0, k_block_spin};
    const Vec3 offset = rotate(turn(2, k_block_spin * t), block_point);
    return {block_start + t * block_velocity + offset, block_velocity + cross(spin, offset), spin,
            product(turn(2, k_block_spin * t), block_axes)};
  }

  void ask(const std::string& name, std::vector<int> ids, int values) {
    std::vector<double> par(ids.begin(), ids.end());
    built.add_element(name, "scripted", ElementKind::report, par, values).name = name;
  }
};

/// A script for elements that are named "QUANTITY_anything": each asks for the quantity with its parameters as ids.
Script asking_script(const TestModel& built) {
  return Script([&built](const HookCall& call) {
    for (const Element& element : built.model.elements) {
      if (element.par.size() != static_cast<size_t>(call.npar)) continue;
      if (!std::equal(element.par.begin(), element.par.end(), call.par)) continue;
      std::vector<int> ids;
      for (const double p : element.par) ids.push_back(static_cast<int>(p));
      int count = element.result_length;
      int err = 0;
      const std::string quantity = element.name.substr(0, element.name.find('_'));
      if (element.result_length == 1) {
        sysfnc(call.handle, quantity.c_str(), ids.data(), call.npar, call.result, &err);
      } else {
        sysary(call.handle, quantity.c_str(), ids.data(), call.npar, call.result, &count, &err);
      }
      EXPECT_EQ(err, 0) << element.name;
      return;
    }
    ADD_FAILURE() << "a call of no known element";
  });
}

/// Runs the scene with three elements that ask for a quantity with one, two and three ids.
TestRun ask_all(Scene& scene, const std::string& quantity, int values) {
  const int m = scene.built.marker_id(scene.on_arm);
  const int r = scene.built.marker_id(scene.on_block);
  const int a = scene.built.marker_id(scene.fixed);
  scene.ask(quantity + "_one", {m}, values);
  scene.ask(quantity + "_two", {m, r}, values);
  scene.ask(quantity + "_three", {m, r, a}, values);
  const Script script = asking_script(scene.built);
  return run_to_end(scene.built);
}

// The integrator carries the block on straight lines and a steady spin, the arm is prescribed: what is left is the
// integration error of the block's quaternion at accuracy 1e-9 and a few roundings.
constexpr double k_tolerance = 2e-8;
// Prescribed speeds are fourth-order differences: h^4/30 f^(5) = 1e-12/30 * 0.2*3^5 and rounding 1e-16/1e-3.
constexpr double k_speed_tolerance = 2e-8 + 1e-11;

/// A host that overrides no request.
class SilentHost : public ServiceHost {
public:
  void stop(const char*) override {}
  void throw_error(const char*, int, char**) override {}
};

TEST(Services, AHostAnswersNoRequestThatItDoesNotOffer) {
  SilentHost host;
  void* const handle = static_cast<ServiceHost*>(&host);
  const int id = 1;
  const auto is_refused = [](const auto& request) {
    int flag = 0;
    request(&flag);
    return flag != 0;
  };
  double values[5] = {7, 7, 7, 7, 7};
  void* names[5] = {};
  int count = 3, length = 7;
  wchar_t text[QV_TEXT_CAPACITY] = L"kept";
  EXPECT_TRUE(is_refused([&](int* flag) { sysary(handle, "TDISP", &id, 1, values, &count, flag); }));
  EXPECT_TRUE(is_refused([&](int* flag) { sysfnc(handle, "VARVAL", &id, 1, values, flag); }));
  EXPECT_TRUE(is_refused([&](int* flag) { get_string_s(handle, id, &length, text, flag); }));
  EXPECT_TRUE(is_refused([&](int* flag) { GET_QVSPATH_S(handle, &length, text, flag); }));
  EXPECT_TRUE(is_refused([&](int* flag) { AKISPL(handle, 1.0, 0.0, id, 0, values, flag); }));
  EXPECT_TRUE(is_refused([&](int* flag) { GTUNTS(handle, values, names, flag); }));
  EXPECT_TRUE(is_refused([&](int* flag) { get_mass(handle, &id, 1, values, flag); }));
  for (const double value : values) EXPECT_EQ(value, 7);
  EXPECT_EQ(count, 3);
  EXPECT_EQ(length, 7);
  EXPECT_STREQ(text, L"kept");
}

TEST(Services, DisplacementLeadsFromTheReferenceToTheMarker) {
  Scene scene(2.0, 0.25);
  const TestRun out = ask_all(scene, "TDISP", 3);
  for (size_t row = 0; row < out.rows.size(); ++row) {
    const double t = out.at("time", row);
    const Vec3 m = scene.arm_at(t).position;
    const Vec3 way = m - scene.block_at(t).position;
    expect_near(m, out.vector("TDISP_one", "r0", "r1", "r2", row), k_tolerance, "one id");
    expect_near(way, out.vector("TDISP_two", "r0", "r1", "r2", row), k_tolerance, "two ids");
    expect_near(rotate(transposed(scene.fixed_axes), way), out.vector("TDISP_three", "r0", "r1", "r2", row),
                k_tolerance, "three ids");
  }
}

TEST(Services, VelocityIsTheDifferenceOfTwoVelocitiesSeenFromTheGround) {
  Scene scene(2.0, 0.25);
  const TestRun out = ask_all(scene, "TVEL", 3);
  for (size_t row = 0; row < out.rows.size(); ++row) {
    const double t = out.at("time", row);
    const Vec3 m = scene.arm_at(t).velocity;
    const Vec3 relative = m - scene.block_at(t).velocity;
    expect_near(m, out.vector("TVEL_one", "r0", "r1", "r2", row), k_speed_tolerance, "one id");
    expect_near(relative, out.vector("TVEL_two", "r0", "r1", "r2", row), k_speed_tolerance, "two ids");
    expect_near(rotate(transposed(scene.fixed_axes), relative), out.vector("TVEL_three", "r0", "r1", "r2", row),
                k_speed_tolerance, "three ids");
  }
}

TEST(Services, AngularVelocityIsTheDifferenceOfTwo) {
  Scene scene(2.0, 0.25);
  const TestRun out = ask_all(scene, "RVEL", 3);
  for (size_t row = 0; row < out.rows.size(); ++row) {
    const double t = out.at("time", row);
    const Vec3 m = scene.arm_at(t).spin;
    const Vec3 relative = m - scene.block_at(t).spin;
    expect_near(m, out.vector("RVEL_one", "r0", "r1", "r2", row), k_speed_tolerance, "one id");
    expect_near(relative, out.vector("RVEL_two", "r0", "r1", "r2", row), k_speed_tolerance, "two ids");
    expect_near(rotate(transposed(scene.fixed_axes), relative), out.vector("RVEL_three", "r0", "r1", "r2", row),
                k_speed_tolerance, "three ids");
  }
}

TEST(Services, OrientationComesColumnByColumnWithTheMarkersXAxisFirst) {
  Scene scene(2.0, 0.25);
  const TestRun out = ask_all(scene, "AM", 9);
  for (size_t row = 0; row < out.rows.size(); ++row) {
    const double t = out.at("time", row);
    const Rotation m = scene.arm_at(t).axes;
    const Rotation relative = product(transposed(scene.block_at(t).axes), m);
    for (size_t k = 0; k < 9; ++k) {
      const std::string entry = ".r" + std::to_string(k);
      EXPECT_NEAR(out.at("AM_one" + entry, row), m[k], k_tolerance) << entry;
      EXPECT_NEAR(out.at("AM_two" + entry, row), relative[k], k_tolerance) << entry;
      EXPECT_NEAR(out.at("AM_three" + entry, row), relative[k], k_tolerance) << entry;
    }
  }
}

TEST(Services, ResolvedInTurningAxesAVectorKeepsItsLength) {
  Scene scene(1.0, 0.1);
  const int m = scene.built.marker_id(scene.on_arm), r = scene.built.marker_id(scene.on_block);
  scene.ask("TDISP_ground", {m, r, k_ground_id}, 3);
  scene.ask("TDISP_turning", {m, r, m}, 3);
  const Script script = asking_script(scene.built);
  const TestRun out = run_to_end(scene.built);
  for (size_t row = 0; row < out.rows.size(); ++row) {
    const Vec3 in_ground = out.vector("TDISP_ground", "r0", "r1", "r2", row);
    const Rotation axes = scene.arm_at(out.at("time", row)).axes;
    expect_near(rotate(transposed(axes), in_ground), out.vector("TDISP_turning", "r0", "r1", "r2", row), 1e-12);
  }
}

TEST(Services, VelocityIsTheRateOfDisplacementInGroundAxes) {
  constexpr double h = 1e-3;
  Scene scene(0.2, h);
  const int m = scene.built.marker_id(scene.on_arm), r = scene.built.marker_id(scene.on_block);
  scene.ask("TDISP_way", {m, r, k_ground_id}, 3);
  scene.ask("TVEL_rate", {m, r}, 3);
  const Script script = asking_script(scene.built);
  const TestRun out = run_to_end(scene.built);
  for (size_t row = 1; row + 1 < out.rows.size(); ++row) {
    const Vec3 before = out.vector("TDISP_way", "r0", "r1", "r2", row - 1);
    const Vec3 after = out.vector("TDISP_way", "r0", "r1", "r2", row + 1);
    // The third derivative of the arm's circle is at most 2.3^3 * 0.74 + swings: 12; h^2/6 of it.
    expect_near((0.5 / h) * (after - before), out.vector("TVEL_rate", "r0", "r1", "r2", row), 12 * h * h / 6 + 1e-6);
  }
}

TEST(Services, MagnitudesOfVelocityNeedAMarkerOrABody) {
  Scene scene(1.0, 0.5);
  const int m = scene.built.marker_id(scene.on_arm);
  constexpr int k_block_id = 2;
  scene.ask("VM_marker", {m}, 1);
  scene.ask("VM_body", {k_block_id}, 1);
  scene.ask("WM_relative", {m, k_block_id}, 1);
  const Script script([&](const HookCall& call) {
    const int ids[2] = {static_cast<int>(call.par[0]), call.npar > 1 ? static_cast<int>(call.par[1]) : 0};
    int err = 0;
    sysfnc(call.handle, call.npar > 1 ? "WM" : "VM", ids, call.npar, call.result, &err);
    EXPECT_EQ(err, 0);
  });
  const TestRun out = run_to_end(scene.built);
  for (size_t row = 0; row < out.rows.size(); ++row) {
    const double t = out.at("time", row);
    EXPECT_NEAR(out.at("VM_marker.r0", row), norm(scene.arm_at(t).velocity), k_speed_tolerance);
    EXPECT_NEAR(out.at("VM_body.r0", row), norm(scene.block_velocity), k_tolerance);
    EXPECT_NEAR(out.at("WM_relative.r0", row), std::abs(scene.arm_at(t).spin[2] - Scene::k_block_spin),
                k_speed_tolerance);
  }
}

TEST(Services, AllTenAreFoundByAPluginThatWasLoadedAtRunTime) {
  TestModel built(0.1, 0.1);
  built.add_body("ball", 2.5, {1, 1, 1});
  built.model.path = "models/ball.toml";
  built.model.strings.push_back({77, "road", "road.rdf"});
  built.add_element("asks", "all_services", ElementKind::report, {1, 77}, 12);
  const TestRun out = run_to_end(built);
  // The model has no spline; all others are answered.
  const double flags[8] = {0, 0, 0, 0, 1, 0, 0, 0};
  for (int k = 0; k < 8; ++k) EXPECT_EQ(out.last("asks.r" + std::to_string(k)), flags[k]) << "service " << k;
  EXPECT_EQ(out.last("asks.r8"), 8) << "length of road.rdf";
  EXPECT_EQ(out.last("asks.r9"), 16) << "length of the model's path";
  EXPECT_DOUBLE_EQ(out.last("asks.r10"), 0.25 * 0.25 * (3 - 0.5));
  EXPECT_EQ(out.last("asks.r11"), 2.5);
}

TEST(Services, TextsComeBackAsWideCharacters) {
  TestModel built(0.1, 0.1);
  built.add_body("ball", 1, {1, 1, 1});
  built.model.strings.push_back({5, "road",
                                 "Gr\xC3\xB6\xC3\x9F"
                                 "e \xE2\x82\xAC.rdf"});
  built.add_element("asks", "scripted", ElementKind::report, {}, 1);
  std::wstring found;
  const Script script([&](const HookCall& call) {
    wchar_t text[QV_TEXT_CAPACITY] = {0};
    int length = 0, err = 0;
    get_string_s(call.handle, 5, &length, text, &err);
    found.assign(text, static_cast<size_t>(length));
  });
  run_to_end(built);
  EXPECT_EQ(found, L"Gr\u00F6\u00DFe \u20AC.rdf");
}

TEST(Services, AnUnknownIdSetsTheFlagKeepsTheOutputAndIsToldOncePerElement) {
  TestModel built(1.0, 0.1);
  built.add_body("ball", 1, {1, 1, 1});
  built.add_element("lost", "scripted", ElementKind::report, {}, 3);
  const Script script([&](const HookCall& call) {
    const int ids[2] = {1, 4711};
    double values[3] = {-7, -7, -7};
    int count = 3, err = 0;
    sysary(call.handle, "TDISP", ids, 2, values, &count, &err);
    EXPECT_NE(err, 0);
    for (const double value : values) EXPECT_EQ(value, -7);
  });
  const TestRun out = run_to_end(built);
  ASSERT_EQ(out.told.size(), 1u);
  EXPECT_NE(out.told[0].find("lost"), std::string::npos) << out.told[0];
  EXPECT_NE(out.told[0].find("4711"), std::string::npos) << out.told[0];
}

TEST(Services, QuantitiesThatAreNotGivenSetTheFlag) {
  TestModel built(0.1, 0.1);
  built.add_body("ball", 1, {1, 1, 1});
  built.add_element("asks", "scripted", ElementKind::report, {}, 1);
  const Script script([&](const HookCall& call) {
    const int id = 1;
    for (const char* name : {"VARVAL", "DIF20", "DIF21", "DIF22", "NONSENSE"}) {
      double value = -7;
      int err = 0;
      sysfnc(call.handle, name, &id, 1, &value, &err);
      EXPECT_NE(err, 0) << name;
      EXPECT_EQ(value, -7) << name;
    }
    double values[3] = {0, 0, 0};
    int count = 2, err = 0;
    sysary(call.handle, "TDISP", &id, 1, values, &count, &err);
    EXPECT_NE(err, 0) << "no room for three values";
  });
  const TestRun out = run_to_end(built);
  EXPECT_EQ(out.told.size(), 6u) << "each kind of request is told once";
}

TEST(Services, ForceOnAMarkerSumsElementsAndAppliedForcesWithTheirReactions) {
  TestModel built(0.1, 0.1);
  const int ball = built.add_body("ball", 1, {1, 1, 1});
  const int other = built.add_body("other", 1, {1, 1, 1});
  const int on_ball = built.add_marker(ball, {0, 0, 0}), on_other = built.add_marker(other, {0, 0, 0});
  Element& pull = built.add_element("pull", "scripted", ElementKind::force, {0}, 6);
  pull.marker = on_ball;
  pull.reaction = on_other;
  built.add_force(on_ball, {"10", "20", "30"});
  for (const auto& ids : std::vector<std::vector<double>>{{101, 0}, {102, 0}, {101, 102}}) {
    built.add_element("asks" + std::to_string(built.model.elements.size()), "scripted", ElementKind::report, ids, 3);
  }
  const int ball_id = built.marker_id(on_ball), other_id = built.marker_id(on_other);
  for (size_t k = 1; k < 4; ++k) {
    Element& element = built.model.elements[k];
    element.par[0] = k == 2 ? other_id : ball_id;
    element.par[1] = k == 3 ? other_id : 0;
  }
  const Script script([&](const HookCall& call) {
    if (call.npar == 1) {
      call.result[0] = 1;
      call.result[1] = 2;
      return;
    }
    const int ids[2] = {static_cast<int>(call.par[0]), static_cast<int>(call.par[1])};
    int count = 3, err = 0;
    sysary(call.handle, "TFORCE", ids, ids[1] == 0 ? 1 : 2, call.result, &count, &err);
    EXPECT_EQ(err, 0);
  });
  const TestRun out = run_to_end(built);
  const size_t last = out.rows.size() - 1;
  expect_near({11, 22, 30}, out.vector("asks1", "r0", "r1", "r2", last), 1e-14, "on the ball");
  expect_near({-1, -2, 0}, out.vector("asks2", "r0", "r1", "r2", last), 1e-14, "on the other");
  expect_near({1, 2, 0}, out.vector("asks3", "r0", "r1", "r2", last), 1e-14, "on the ball, from the other");
}

}  // namespace
