#include "solver/checks/course.h"

#include <gtest/gtest.h>

#include "tests/solver/test_model.h"

namespace {

using namespace qvslv;

constexpr double k_end = 2;
constexpr int k_moments = 100;  // as many as a course has besides the start

Pose pose_in(const TestRun& run, const std::string& body, size_t row) {
  return {run.position(body, row), run.orientation(body, row)};
}

/// @param body  index into Model::bodies; its centre is at its frame's origin
void expect_same(const TestModel& model, int body, const TestRun& run, size_t moment, double tolerance) {
  const Body& from = model.model.bodies[static_cast<size_t>(body)];
  const Pose expected = pose_in(run, from.name, moment);
  int marker = 0;  // the body's own
  while (model.model.markers[static_cast<size_t>(marker)].body != body) ++marker;
  const Marker& own = model.model.markers[static_cast<size_t>(marker)];
  const Pose found = Course(model.model).marker(marker, moment);
  expect_near(outwards(expected, own.position), found.place, tolerance, from.name);
  for (size_t axis = 0; axis < 3; ++axis)
    expect_near(turned(expected.axes, axis_of({{0, 0, 0}, own.orientation}, axis)), axis_of(found, axis), tolerance,
                from.name);
}

struct joint_case {
  JointType type;
  std::vector<double> start;
};
const joint_case k_joints[] = {{JointType::revolute, {0.3}},
                               {JointType::slider, {0.7}},
                               {JointType::cylindrical, {0.3, -0.4}},
                               {JointType::universal, {0.5, -0.2}},
                               {JointType::planar, {0.4, 1, -0.5}},
                               {JointType::ball, {0.3, 0.2, -0.6}},
                               {JointType::weld, {}},
                               {JointType::free, {0.1, -0.3, 0.8, 1, 2, 3}}};

/// A body on a joint between two turned markers, on a carrier that stands askew.
TestModel on_joint(const joint_case& row) {
  TestModel model(k_end, k_end / k_moments);
  const int carrier = model.add_body("carrier", 1000, {100, 100, 100}), body = model.add_body("body", 2, {1, 1, 1});
  model.body(carrier).position = {1, -2, 0.5};
  model.body(carrier).orientation = turn(1, 0.4);
  const int parent = model.add_marker(carrier, {0.2, 0.3, -0.1}, product(turn(0, 0.5), turn(2, -0.7)));
  const int child = model.add_marker(body, {-0.4, 0.1, 0.2}, turn(1, 1.1));
  Joint& joint = model.add_joint(row.type, parent, child);
  joint.position = row.start;
  joint.velocity.assign(row.start.size(), 0.0);
  return model;
}

TEST(Course, StartsWhereTheEngineStarts) {
  for (const joint_case& row : k_joints) {
    SCOPED_TRACE(static_cast<int>(row.type));
    const TestModel model = on_joint(row);
    const TestRun done = run_to_end(model);
    expect_same(model, 0, done, 0, 1e-12);
    expect_same(model, 1, done, 0, 1e-12);
    EXPECT_EQ(Course(model.model).moments(), 1u);
  }
}

TEST(Course, FollowsMotionsAsTheEngineDoes) {
  TestModel model(k_end, k_end / k_moments);
  const int sled = model.add_body("sled", 5, {1, 1, 1}), arm = model.add_body("arm", 2, {1, 1, 1});
  Joint& rail = model.add_joint(JointType::slider, model.add_marker(k_ground, {0, 0, 1}, turn(2, 0.3)),
                                model.add_marker(sled, {0, 0, 0.1}));
  rail.position = {0.5};
  rail.velocity = {0};
  rail.motions = {{0, MotionLevel::velocity, expression("0.2 + t^2")}};
  Joint& hinge = model.add_joint(JointType::revolute, model.add_marker(sled, {0.1, 0, 0}, turn(0, 1)),
                                 model.add_marker(arm, {-0.5, 0, 0}));
  hinge.position = {9};  // overridden
  hinge.velocity = {0};
  hinge.motions = {{0, MotionLevel::position, expression("sin(3*t)")}};
  const TestRun done = run_to_end(model);
  const Course course(model.model);
  ASSERT_EQ(course.moments(), k_moments + 1u);
  // The engine integrates the speed with its own accuracy, 1e-4 of a way of about 3.
  for (size_t moment = 0; moment < course.moments(); moment += 10) {
    EXPECT_NEAR(course.time(moment), done.at("time", moment), 1e-12);
    expect_same(model, sled, done, moment, 1e-3);
    expect_same(model, arm, done, moment, 1e-3);
  }
}

TEST(Course, KnowsWhatFloatsTogether) {
  TestModel model(k_end, k_end);
  const int hull = model.add_body("hull", 5, {1, 1, 1}), mast = model.add_body("mast", 2, {1, 1, 1}),
            pile = model.add_body("pile", 1, {1, 1, 1}), buoy = model.add_body("buoy", 1, {1, 1, 1});
  const auto hang = [&](JointType type, int parent, int child) {
    const int on_parent = model.add_marker(parent, {0, 0, 0}), on_child = model.add_marker(child, {0, 0, 0});
    model.add_joint(type, on_parent, on_child).position.assign(6, 0.0);
  };
  hang(JointType::revolute, hull, mast);
  hang(JointType::slider, k_ground, pile);
  hang(JointType::free, hull, buoy);
  const Course course(model.model);
  EXPECT_EQ(course.floating_root(hull), hull);
  EXPECT_EQ(course.floating_root(mast), hull);
  EXPECT_EQ(course.floating_root(pile), k_ground);
  EXPECT_EQ(course.floating_root(buoy), buoy);
  EXPECT_EQ(course.floating_root(k_ground), k_ground);
}

TEST(Course, KnowsWhatCanTravelAlongAPlane) {
  const auto on = [](JointType type, int axis) {
    TestModel model(k_end, k_end);
    const int body = model.add_body("body", 1, {1, 1, 1});
    // Turns the joint's z onto x (axis 1), or leaves it on z (axis 2).
    const Rotation axes = axis == 1 ? turn(1, k_pi / 2) : k_identity;
    const int parent = model.add_marker(k_ground, {0, 0, 0}, axes), child = model.add_marker(body, {0, 0, 0});
    Joint& joint = model.add_joint(type, parent, child);
    joint.position.assign(6, 0.0);
    return model;
  };
  const auto travels = [](const TestModel& model) {
    return Course(model.model).can_travel(static_cast<int>(model.model.markers.size()) - 1, 0);
  };
  EXPECT_TRUE(travels(on(JointType::slider, 2)));
  EXPECT_FALSE(travels(on(JointType::slider, 1)));  // up and down
  EXPECT_FALSE(travels(on(JointType::cylindrical, 2)));
  EXPECT_TRUE(travels(on(JointType::cylindrical, 1)));
  EXPECT_FALSE(travels(on(JointType::revolute, 2)));
  TestModel held = on(JointType::slider, 2);
  held.model.joints[0].motions = {{0, MotionLevel::position, expression("0.5")}};
  EXPECT_FALSE(travels(held));
  held.model.joints[0].motions = {{0, MotionLevel::velocity, expression("0.5")}};
  EXPECT_TRUE(travels(held));
  held.model.joints.clear();
  EXPECT_TRUE(travels(held));
}

}  // namespace
