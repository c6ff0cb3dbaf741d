#include "solver/results/columns.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "solver/model/units.h"
#include "solver/results/frames.h"

namespace qvslv {

namespace {

Vec3 to_array(const SimTK::Vec3& v) { return {v[0], v[1], v[2]}; }

/// Sums and reports of what other elements did have nothing to tell before the first step: their set-up call leaves all
/// results 0. That is no value, and the cell stays empty.
double result_of(const Engine& engine, size_t element, size_t index) {
  const std::vector<double>& result = engine.elements().result(element);
  const bool had_a_step = engine.elements().is_evaluated(element) || engine.steps() > 0;
  const bool tells = had_a_step || std::any_of(result.begin(), result.end(), [](double value) { return value != 0; });
  return tells ? result[index] : std::numeric_limits<double>::quiet_NaN();
}

/// Collects the columns; their order is that of the calls.
class ColumnList {
public:
  explicit ColumnList(const Model& model) : m_model(model), m_units(model.units) {}

  void add_time() {
    add("time", m_units.time, [](const Moment& now) { return now.engine.time(); });
  }

  void add_body(size_t body) {
    const std::string& name = m_model.bodies[body].name;
    const auto motion = [body](const Moment& now) -> const Moment::BodyMotion& { return now.bodies[body]; };
    add_three(name, {"x", "y", "z"}, m_units.length,
              [motion](const Moment& now) -> const Vec3& { return motion(now).pose.position; });
    const char* parts[] = {"qw", "qx", "qy", "qz"};
    for (size_t k = 0; k < 4; ++k)
      add(name + "." + parts[k], "", [motion, k](const Moment& now) { return motion(now).pose.quaternion[k]; });
    add_three(name, {"vx", "vy", "vz"}, m_units.speed,
              [motion](const Moment& now) -> const Vec3& { return motion(now).velocity; });
    add_three(name, {"wx", "wy", "wz"}, m_units.spin,
              [motion](const Moment& now) -> const Vec3& { return motion(now).angular_velocity; });
  }

  void add_joint(size_t joint) {
    const Joint& from = m_model.joints[joint];
    const std::vector<JointCoordinate>& coordinates = joint_coordinates(from.type);
    for (size_t k = 0; k < coordinates.size(); ++k)
      add(from.name + "." + coordinates[k].name, is_angle(coordinates[k]) ? "rad" : m_units.length,
          [joint, k](const Moment& now) { return now.joints[joint].position[k]; });
    for (size_t k = 0; k < coordinates.size(); ++k)
      add(from.name + "." + rate_name(from.type, coordinates[k]),
          is_angle(coordinates[k]) ? m_units.spin : m_units.speed,
          [joint, k](const Moment& now) { return now.joints[joint].velocity[k]; });
  }

  void add_element(size_t element) {
    for (const ResultColumn& column : m_model.elements[element].columns) {
      const auto index = static_cast<size_t>(column.index);
      add(m_model.elements[element].name + "." + column.name, column.unit,
          [element, index](const Moment& now) { return result_of(now.engine, element, index); });
    }
  }

  void add_variable(size_t variable) {
    const int index = static_cast<int>(variable);
    add(m_model.variables[variable].name, "",
        [index](const Moment& now) { return now.engine.readings().variable(index); });
  }

  void add_equation(size_t equation) {
    const std::string& name = m_model.equations[equation].name;
    for (const int derivative : {0, 1})
      add(derivative == 0 ? name : name + ".rate", "", [equation, derivative](const Moment& now) {
        return now.engine.readings().equations().value(now.engine.state(), equation, derivative);
      });
  }

  void add_energies() {
    add("kinetic_energy", m_units.energy,
        [](const Moment& now) { return now.engine.multibody().calc_kinetic_energy(now.engine.state()); });
    add("potential_energy", m_units.energy,
        [](const Moment& now) { return now.engine.multibody().calc_potential_energy(now.engine.state()); });
  }

  std::vector<Column> take() { return std::move(m_columns); }

private:
  void add(const std::string& name, const std::string& unit, std::function<double(const Moment&)> value) {
    m_columns.push_back({unit.empty() ? name : name + " [" + unit + "]", std::move(value)});
  }

  template <class Vector>
  void add_three(const std::string& owner, const std::array<const char*, 3>& names, const std::string& unit,
                 Vector vector) {
    for (size_t k = 0; k < 3; ++k)
      add(owner + "." + names[k], unit, [vector, k](const Moment& now) { return vector(now)[k]; });
  }

  static bool is_angle(const JointCoordinate& coordinate) { return coordinate.kind == CoordinateKind::angle; }

  /// The speeds of ball and free joints are components of an angular velocity, not rates of their angles: "angle_x"
  /// goes with "w_x".
  static std::string rate_name(JointType type, const JointCoordinate& coordinate) {
    const std::string name = coordinate.name, angle = "angle";
    const bool angular_velocity = type == JointType::ball || type == JointType::free;
    if (angular_velocity && is_angle(coordinate)) return "w" + name.substr(angle.size());
    return name + "_rate";
  }

  const Model& m_model;
  UnitSymbols m_units;
  std::vector<Column> m_columns;
};

}  // namespace

Moment::Moment(const Engine& at) : engine(at) {
  const Multibody& multibody = engine.multibody();
  const SimTK::State& state = engine.state();
  const Model& model = multibody.model();
  for (size_t i = 0; i < model.bodies.size(); ++i) {
    const SimTK::MobilizedBody& body = multibody.body(static_cast<int>(i));
    bodies.push_back({calc_body_pose(engine, i),
                      to_array(body.findStationVelocityInGround(state, to_vec3(model.bodies[i].center))),
                      to_array(body.getBodyAngularVelocity(state))});
  }
  for (const BuiltJoint& joint : multibody.joints())
    joints.push_back(find_joint_motion(multibody.matter(), joint, state));
}

std::vector<Column> result_columns(const Model& model) {
  ColumnList list(model);
  list.add_time();
  for (size_t i = 0; i < model.bodies.size(); ++i) list.add_body(i);
  for (size_t i = 0; i < model.joints.size(); ++i) list.add_joint(i);
  for (size_t i = 0; i < model.elements.size(); ++i) list.add_element(i);
  for (size_t i = 0; i < model.variables.size(); ++i) list.add_variable(i);
  for (size_t i = 0; i < model.equations.size(); ++i) list.add_equation(i);
  list.add_energies();
  return list.take();
}

std::vector<std::string> headers_of(const std::vector<Column>& columns) {
  std::vector<std::string> headers;
  headers.reserve(columns.size());
  for (const Column& column : columns) headers.push_back(column.header);
  return headers;
}

std::vector<double> calc_result_row(const std::vector<Column>& columns, const Engine& engine) {
  const Moment now(engine);
  std::vector<double> row;
  row.reserve(columns.size());
  for (const Column& column : columns) row.push_back(column.value(now));
  return row;
}

}  // namespace qvslv
