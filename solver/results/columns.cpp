#include "solver/results/columns.h"

#include "solver/model/units.h"

namespace qvslv {

namespace {

constexpr size_t k_values_per_point = 8;  // local force, position, sinkage, dynamic sinkage

std::string symbol(UnitQuantity quantity, const std::string& name) {
  const UnitName* unit = find_unit(quantity, name);
  return unit == nullptr ? name : unit->symbol;
}

std::string headed(const std::string& name, const std::string& unit) {
  return unit.empty() ? name : name + " [" + unit + "]";
}

/// Symbols of the units that columns need. Angles are radians in a model, whatever its file was written in.
struct Symbols {
  explicit Symbols(const Units& units)
      : time(symbol(UnitQuantity::time, units.time)),
        length(symbol(UnitQuantity::length, units.length)),
        speed(length + "/" + time),
        spin("rad/" + time) {
    const std::string mass = symbol(UnitQuantity::mass, units.mass);
    energy = mass == "kg" && speed == "m/s" ? "J" : mass + "*" + length + "^2/" + time + "^2";
  }
  std::string time, length, speed, spin, energy;
};

/// The quaternion with the non-negative real part; q and -q are the same orientation.
std::array<double, 4> quaternion_of(const SimTK::Rotation& rotation) {
  const SimTK::Quaternion q = rotation.convertRotationToQuaternion();
  const double sign = q[0] < 0 ? -1 : 1;
  return {sign * q[0], sign * q[1], sign * q[2], sign * q[3]};
}

BodyPose pose_of(const Engine& engine, size_t body) {
  const SimTK::MobilizedBody& mobilizer = engine.multibody().body(static_cast<int>(body));
  const Body& from = engine.multibody().model().bodies[body];
  const SimTK::Vec3 center = mobilizer.findStationLocationInGround(engine.state(), to_vec3(from.center));
  return {{center[0], center[1], center[2]}, quaternion_of(mobilizer.getBodyRotation(engine.state()))};
}

void append(std::vector<double>& row, const SimTK::Vec3& v) { row.insert(row.end(), {v[0], v[1], v[2]}); }

/// The force x of a belt's first point holds the whole contact area besides; the belt's sum tells that area, once a
/// step has been taken.
double area_in_first_force(const Engine& engine, const Element& belt) {
  const Model& model = engine.multibody().model();
  for (size_t i = 0; i < model.elements.size(); ++i) {
    const Element& sum = model.elements[i];
    if (sum.subroutine == "qvsoil_interaction_mtl_sum" && sum.par[0] == belt.par[1])
      return engine.elements().result(i)[3];
  }
  return 0;
}

void turn_belt_forces(const Engine& engine, const Element& belt, const ContactAxes* axes, size_t first, Frame& frame) {
  const SimTK::Rotation reference = engine.multibody().find_axes(engine.state(), belt.axes);
  for (size_t k = first; k < frame.points.size(); ++k) {
    ContactPointSample& point = frame.points[k];
    Vec3& force = point.local_force;
    if (k == first) force[0] -= area_in_first_force(engine, belt);
    if (!point.in_contact()) force = {0, 0, 0};
    const SimTK::Vec3 in_ground = reference * SimTK::Vec3(force[0], force[1], force[2]);
    force = {in_ground[0], in_ground[1], in_ground[2]};
    if (axes != nullptr) force = axes->force_along(point, force, frame);
  }
}

void append_points(const Engine& engine, size_t element, std::vector<ContactPointSample>& points) {
  const Element& from = engine.multibody().model().elements[element];
  const std::vector<double>& result = engine.elements().result(element);
  const SimTK::Transform axes = engine.multibody().find_pose(engine.state(), from.axes);
  for (int k = 0; k < from.points.count; ++k) {
    const size_t at = static_cast<size_t>(from.points.first) + k_values_per_point * static_cast<size_t>(k);
    if (at + k_values_per_point > result.size()) return;
    ContactPointSample point;
    point.element = static_cast<int>(element);
    point.local_force = {result[at], result[at + 1], result[at + 2]};
    const SimTK::Vec3 position = axes * SimTK::Vec3(result[at + 3], result[at + 4], result[at + 5]);
    point.position = {position[0], position[1], position[2]};
    point.sinkage = result[at + 6];
    point.dynamic_sinkage = result[at + 7];
    points.push_back(point);
  }
}

}  // namespace

std::vector<std::string> result_columns(const Model& model) {
  const Symbols units(model.units);
  std::vector<std::string> columns = {headed("time", units.time)};
  const auto add = [&](const std::string& owner, std::initializer_list<const char*> names, const std::string& unit) {
    for (const char* name : names) columns.push_back(headed(owner + "." + name, unit));
  };
  for (const Body& body : model.bodies) {
    add(body.name, {"x", "y", "z"}, units.length);
    add(body.name, {"qw", "qx", "qy", "qz"}, "");
    add(body.name, {"vx", "vy", "vz"}, units.speed);
    add(body.name, {"wx", "wy", "wz"}, units.spin);
  }
  for (const Joint& joint : model.joints) {
    for (const JointCoordinate& coordinate : joint_coordinates(joint.type)) {
      add(joint.name, {coordinate.name}, coordinate.kind == CoordinateKind::angle ? "rad" : units.length);
    }
    const bool angular_velocity = joint.type == JointType::ball || joint.type == JointType::free;
    for (const JointCoordinate& coordinate : joint_coordinates(joint.type)) {
      const bool angle = coordinate.kind == CoordinateKind::angle;
      const std::string name = angular_velocity && angle ? "w" + std::string(coordinate.name + 5)  // "angle_x": "w_x"
                                                         : std::string(coordinate.name) + "_rate";
      columns.push_back(headed(joint.name + "." + name, angle ? units.spin : units.speed));
    }
  }
  for (const Element& element : model.elements) {
    for (const ResultColumn& column : element.columns) {
      columns.push_back(headed(element.name + "." + column.name, column.unit));
    }
  }
  for (const Variable& variable : model.variables) columns.push_back(variable.name);
  for (const Equation& equation : model.equations) {
    columns.push_back(equation.name);
    columns.push_back(equation.name + ".rate");
  }
  columns.push_back(headed("kinetic_energy", units.energy));
  columns.push_back(headed("potential_energy", units.energy));
  return columns;
}

std::vector<double> calc_result_row(const Engine& engine) {
  const Multibody& multibody = engine.multibody();
  const SimTK::State& state = engine.state();
  const Model& model = multibody.model();
  std::vector<double> row = {state.getTime()};
  for (size_t i = 0; i < model.bodies.size(); ++i) {
    const SimTK::MobilizedBody& body = multibody.body(static_cast<int>(i));
    const BodyPose pose = pose_of(engine, i);
    row.insert(row.end(), pose.position.begin(), pose.position.end());
    row.insert(row.end(), pose.quaternion.begin(), pose.quaternion.end());
    append(row, body.findStationVelocityInGround(state, to_vec3(model.bodies[i].center)));
    append(row, body.getBodyAngularVelocity(state));
  }
  for (const BuiltJoint& joint : multibody.joints()) {
    const JointMotion motion = find_joint_motion(multibody.matter(), joint, state);
    row.insert(row.end(), motion.position.begin(), motion.position.end());
    row.insert(row.end(), motion.velocity.begin(), motion.velocity.end());
  }
  for (size_t i = 0; i < model.elements.size(); ++i) {
    for (const ResultColumn& column : model.elements[i].columns) {
      row.push_back(engine.elements().result(i)[static_cast<size_t>(column.index)]);
    }
  }
  const ModelReadings::At here(engine.readings(), state);
  for (size_t i = 0; i < model.variables.size(); ++i) row.push_back(here.variable(static_cast<int>(i)));
  for (size_t i = 0; i < model.equations.size(); ++i) {
    row.push_back(here.equation(static_cast<int>(i), 0));
    row.push_back(here.equation(static_cast<int>(i), 1));
  }
  row.push_back(multibody.calc_kinetic_energy(state));
  row.push_back(multibody.calc_potential_energy(state));
  return row;
}

bool is_belt(const Element& element) { return element.subroutine == "qvsoil_interaction_mtl"; }

Frame calc_frame(const Engine& engine, const ContactAxes* axes) {
  Frame frame;
  frame.time = engine.time();
  const Model& model = engine.multibody().model();
  for (size_t i = 0; i < model.bodies.size(); ++i) frame.body_poses.push_back(pose_of(engine, i));
  for (size_t i = 0; i < model.elements.size(); ++i) {
    const size_t first = frame.points.size();
    append_points(engine, i, frame.points);
    if (is_belt(model.elements[i])) turn_belt_forces(engine, model.elements[i], axes, first, frame);
  }
  return frame;
}

}  // namespace qvslv
