#include <algorithm>

#include "qvbrisk/constants.h"
#include "solver/model/nearest_name.h"
#include "solver/model_file/reading.h"

namespace qvslv {

namespace {

const std::vector<std::string> k_joint_keys = {"name",          "type",  "body",           "parent",     "position",
                                               "body_position", "axis",  "angles",         "angles_deg", "marker",
                                               "parent_marker", "start", "start_velocity", "motion",     "motions"};

/// One coordinate of a joint under the name that files use.
struct Coordinate {
  const char* name;
  bool angle;
};

enum class Axis { none, x, z };  // which axis of the joint frames the key `axis` gives

struct JointKind {
  const char* name;
  JointType type;
  Axis axis;
  std::vector<Coordinate> coordinates;
};

const std::vector<JointKind>& joint_kinds() {
  static const std::vector<JointKind> kinds = {
      {"free", JointType::free, Axis::none, {}},
      {"planar", JointType::planar, Axis::z, {{"angle", true}, {"x", false}, {"y", false}}},
      {"slider", JointType::slider, Axis::x, {{"travel", false}}},
      {"revolute", JointType::revolute, Axis::z, {{"angle", true}}},
      {"cylindrical", JointType::cylindrical, Axis::z, {{"angle", true}, {"travel", false}}},
      {"universal", JointType::universal, Axis::x, {{"angle_x", true}, {"angle_y", true}}},
      {"ball", JointType::ball, Axis::none, {}},
      {"weld", JointType::weld, Axis::none, {}}};
  return kinds;
}

const JointKind& read_kind(const TableReader& table) {
  std::vector<std::string> names;
  for (const JointKind& kind : joint_kinds()) names.emplace_back(kind.name);
  const std::string type = table.choice("type", names);
  return *std::find_if(joint_kinds().begin(), joint_kinds().end(), [&](const JointKind& k) { return type == k.name; });
}

Vec3 read_axis(const TableReader& table) {
  const Value& value = table.value("axis");
  if (value.kind == Value::Kind::text) {
    const std::string word = table.choice("axis", {"x", "y", "z", "-x", "-y", "-z"});
    Vec3 axis = {0, 0, 0};
    axis[static_cast<size_t>(word.back() - 'x')] = word[0] == '-' ? -1.0 : 1.0;
    return axis;
  }
  const Vec3 axis = table.vector3("axis");
  if (!(dot(axis, axis) > 0) || !std::isfinite(dot(axis, axis)))
    table.fail("axis",
               "has length " + number_text(length(axis)) + "; give the direction, for instance \"z\" or [0, 0, 1]");
  return unit(axis);
}

/// Part of `wish` at right angles to a unit axis, made a unit vector; of `otherwise` when the two are parallel.
Vec3 square_to(const Vec3& axis, const Vec3& wish, const Vec3& otherwise) {
  const auto rest = [&](const Vec3& v) {
    const double along = dot(axis, v);
    return Vec3{v[0] - along * axis[0], v[1] - along * axis[1], v[2] - along * axis[2]};
  };
  constexpr double k_parallel = 1e-12;
  const Vec3 first = rest(wish);
  return unit(dot(first, first) > k_parallel ? first : rest(otherwise));
}

Rotation columns(const Vec3& x, const Vec3& y, const Vec3& z) {
  return {x[0], x[1], x[2], y[0], y[1], y[2], z[0], z[1], z[2]};
}

/// Joint axes in the parent's axes. If `axis` gives z, then x is the parent's x made square to it (the parent's y if z
/// is the parent's x). If `axis` gives x, then z is the parent's z made square to it (the parent's y if x is the
/// parent's z).
Rotation joint_axes(const TableReader& table, const JointKind& kind) {
  if (!table.has("axis")) return table.rotation();
  if (kind.axis == Axis::none) table.fail("axis", std::string("a ") + kind.name + " joint has no axis");
  if (table.has("angles") || table.has("angles_deg")) table.fail("axis", "give either axis or angles, not both");
  const Vec3 axis = read_axis(table);
  if (kind.axis == Axis::z) {
    const Vec3 x = square_to(axis, {1, 0, 0}, {0, 1, 0});
    return columns(x, cross(axis, x), axis);
  }
  const Vec3 z = square_to(axis, {0, 0, 1}, {0, 1, 0});
  return columns(axis, cross(z, axis), z);
}

/// The axis of rotation is the first thing that gets forgotten, and the default is rarely meant.
void warn_about_axis(const TableReader& table, const JointKind& kind, Reading& reading) {
  if (kind.type != JointType::revolute || table.has("axis") || table.has("angles") || table.has("angles_deg")) return;
  reading.file.findings.push_back({Level::warning, "joint-axis", table.at(),
                                   table.what() +
                                       ": without 'axis' the body turns about the z axis of its parent; write "
                                       "axis = \"z\" if that is meant"});
}

void read_markers_of(const TableReader& table, const JointKind& kind, Reading& reading, Joint& joint) {
  const bool by_markers = table.has("marker") || table.has("parent_marker");
  if (by_markers) {
    for (const char* key : {"body", "parent", "position", "body_position", "axis", "angles", "angles_deg"})
      if (table.has(key)) table.fail(key, "the joint's two markers say this already");
    joint.child_marker = reading.marker(table, "marker");
    joint.parent_marker = reading.marker(table, "parent_marker");
    if (reading.model().markers[static_cast<size_t>(joint.child_marker)].body == k_ground)
      table.fail("marker", "this is the marker of the moving body, it cannot be on the ground");
    return;
  }
  const int body = reading.bodies.find(table.text("body"), table.what() + ", body", table.position("body"));
  const std::string parent_name = table.text("parent", "ground");
  const int parent = parent_name == "ground"
                         ? k_ground
                         : reading.bodies.find(parent_name, table.what() + ", parent", table.position("parent"));
  const Rotation axes = joint_axes(table, kind);
  warn_about_axis(table, kind, reading);
  joint.parent_marker =
      reading.add_internal_marker(joint.name + ".parent", parent, table.vector3("position", {0, 0, 0}), axes, joint.at);
  joint.child_marker = reading.add_internal_marker(joint.name + ".child", body,
                                                   table.vector3("body_position", {0, 0, 0}), axes, joint.at);
}

std::vector<std::string> coordinate_names(const JointKind& kind) {
  std::vector<std::string> names;
  for (const Coordinate& coordinate : kind.coordinates) names.emplace_back(coordinate.name);
  return names;
}

/// Keys of `start` and `start_velocity`: the names of the coordinates; for an angle also its name with _deg, in
/// degrees.
std::vector<std::string> start_keys(const JointKind& kind) {
  std::vector<std::string> keys;
  for (const Coordinate& coordinate : kind.coordinates) {
    keys.emplace_back(coordinate.name);
    if (coordinate.angle) keys.push_back(std::string(coordinate.name) + "_deg");
  }
  return keys;
}

std::vector<double> read_coordinates(const TableReader& joint, const char* key, const JointKind& kind) {
  std::vector<double> values(kind.coordinates.size(), 0.0);
  if (!joint.has(key)) return values;
  if (values.empty()) joint.fail(key, "a weld has no coordinates");
  const TableReader table = joint.table(key, start_keys(kind));
  for (size_t i = 0; i < values.size(); ++i) {
    const std::string name = kind.coordinates[i].name;
    const std::string degrees = name + "_deg";
    if (table.has(name) && table.has(degrees))
      table.fail(degrees, "give the angle once, either in radians or in degrees");
    values[i] = table.has(degrees) ? table.number(degrees) * DTOR : table.number(name, 0);
  }
  return values;
}

void append(std::vector<double>& values, const Vec3& more) { values.insert(values.end(), more.begin(), more.end()); }

/// Start of a ball or free joint: angles and angular velocity; of a free joint also its position and velocity.
void read_spatial_start(const TableReader& joint, bool free, Joint& result) {
  std::vector<std::string> keys = {"angles", "angles_deg"}, velocity_keys = {"angular_velocity"};
  if (free) {
    keys.emplace_back("position");
    velocity_keys.emplace_back("velocity");
  }
  Vec3 angles = {0, 0, 0}, position = angles, spin = angles, velocity = angles;
  if (joint.has("start")) {
    const TableReader start = joint.table("start", keys);
    start.rotation();  // throws if both kinds of angles are given
    angles = start.vector3("angles", {0, 0, 0});
    if (start.has("angles_deg"))
      for (size_t i = 0; i < 3; ++i) angles[i] = start.vector3("angles_deg")[i] * DTOR;
    position = start.vector3("position", {0, 0, 0});
  }
  if (joint.has("start_velocity")) {
    const TableReader start = joint.table("start_velocity", velocity_keys);
    spin = start.vector3("angular_velocity", {0, 0, 0});
    velocity = start.vector3("velocity", {0, 0, 0});
  }
  append(result.position, angles);
  append(result.velocity, spin);
  if (!free) return;
  append(result.position, position);
  append(result.velocity, velocity);
}

const std::vector<std::string> k_motion_levels = {"position", "position_deg", "velocity", "velocity_deg"};

Motion read_motion(const TableReader& table, const JointKind& kind, int coordinate) {
  Motion motion;
  motion.coordinate = coordinate;
  std::string given;
  for (const std::string& key : k_motion_levels) {
    if (!table.has(key)) continue;
    if (!given.empty()) table.fail(key, "give one of " + listed(k_motion_levels) + ", not two");
    given = key;
  }
  if (given.empty()) table.fail("one of " + listed(k_motion_levels) + " is missing");
  motion.level = given.rfind("position", 0) == 0 ? MotionLevel::position : MotionLevel::velocity;
  motion.value = table.expression(given);
  if (given.size() > 4 && given.substr(given.size() - 4) == "_deg") {
    if (!kind.coordinates[static_cast<size_t>(coordinate)].angle)
      table.fail(given, std::string("the coordinate '") + kind.coordinates[static_cast<size_t>(coordinate)].name +
                            "' is a length, not an angle");
    motion.value.text = "(" + motion.value.text + ")*(pi/180)";
  }
  return motion;
}

int coordinate_index(const TableReader& table, const JointKind& kind) {
  const std::vector<std::string> names = coordinate_names(kind);
  if (!table.has("coordinate") && names.size() == 1) return 0;
  const std::string name = table.choice("coordinate", names);
  return static_cast<int>(std::find(names.begin(), names.end(), name) - names.begin());
}

void read_motions(const TableReader& table, const JointKind& kind, Joint& joint) {
  if (!table.has("motion") && !table.has("motions")) return;
  const char* given = table.has("motion") ? "motion" : "motions";
  if (kind.coordinates.empty())
    table.fail(given, std::string("a ") + kind.name + " joint cannot be given a motion; use one with an axis");
  std::vector<std::string> keys = k_motion_levels;
  keys.emplace_back("coordinate");
  if (table.has("motion") && table.value("motion").kind != Value::Kind::table) {
    Motion motion;
    motion.value = table.expression("motion");
    if (kind.coordinates.size() != 1)
      table.fail("motion", "which coordinate? write motion = { coordinate = \"" +
                               std::string(kind.coordinates[0].name) + "\", position = \"...\" }");
    joint.motions.push_back(motion);
  } else if (table.has("motion")) {
    const TableReader motion = table.table("motion", keys);
    joint.motions.push_back(read_motion(motion, kind, coordinate_index(motion, kind)));
  }
  if (!table.has("motions")) return;
  for (const TableReader& motion : table.tables("motions", keys)) {
    const int coordinate = coordinate_index(motion, kind);
    for (const Motion& other : joint.motions)
      if (other.coordinate == coordinate) motion.fail("the coordinate has a motion already");
    joint.motions.push_back(read_motion(motion, kind, coordinate));
  }
}

int body_of(const Model& model, int marker) { return model.markers[static_cast<size_t>(marker)].body; }

const std::string& body_name(const Model& model, int body) {
  static const std::string ground = "ground";
  return body == k_ground ? ground : model.bodies[static_cast<size_t>(body)].name;
}

/// Puts joints after the joint that carries their parent. Throws when a body hangs on two joints or on itself.
void order_joints(Model& model) {
  std::vector<const Joint*> carrier(model.bodies.size(), nullptr);
  for (const Joint& joint : model.joints) {
    const int body = body_of(model, joint.child_marker);
    const Joint*& its = carrier[static_cast<size_t>(body)];
    if (its != nullptr)
      throw ModelError(joint.at, "joint '" + joint.name + "': the body '" + body_name(model, body) +
                                     "' hangs on joint '" + its->name +
                                     "' already; joints form a tree, a body hangs on one joint at most");
    its = &joint;
  }
  std::vector<Joint> ordered;
  std::vector<bool> placed(model.bodies.size(), false);
  for (size_t i = 0; i < placed.size(); ++i) placed[i] = carrier[i] == nullptr;
  std::vector<bool> taken(model.joints.size(), false);
  while (ordered.size() < model.joints.size()) {
    const size_t before = ordered.size();
    for (size_t i = 0; i < model.joints.size(); ++i) {
      const int parent = body_of(model, model.joints[i].parent_marker);
      if (taken[i] || (parent != k_ground && !placed[static_cast<size_t>(parent)])) continue;
      taken[i] = true;
      placed[static_cast<size_t>(body_of(model, model.joints[i].child_marker))] = true;
      ordered.push_back(model.joints[i]);
    }
    if (ordered.size() > before) continue;
    const size_t stuck = static_cast<size_t>(std::find(taken.begin(), taken.end(), false) - taken.begin());
    throw ModelError(model.joints[stuck].at,
                     "joint '" + model.joints[stuck].name +
                         "' is part of a circle: its parent hangs, joint by joint, on its own body");
  }
  model.joints = std::move(ordered);
}

/// The place of a jointed body follows from the joint; a place of its own would be silently ignored.
void check_no_place(const TableReader& root, const Joint& joint, const Model& model) {
  const std::string& name = body_name(model, body_of(model, joint.child_marker));
  for (const Value& body : root.value("body").list) {
    const Value* its_name = body.find("name");
    if (its_name == nullptr || its_name->text != name) continue;
    for (const char* key : {"position", "angles", "angles_deg", "velocity", "angular_velocity"})
      if (const Value* value = body.find(key))
        throw ModelError(value->at, "body '" + name + "', " + key + ": the body hangs on joint '" + joint.name +
                                        "', whose position, start and start_velocity say where it starts");
  }
}

}  // namespace

void read_joints(const TableReader& root, Reading& reading) {
  Model& model = reading.model();
  for (const TableReader& table : tables_of(root, "joint", k_joint_keys)) {
    Joint joint;
    joint.name = table.text("name");
    joint.at = table.at();
    reading.joints.add(joint.name, static_cast<int>(model.joints.size()), table.position("name"));
    const JointKind& kind = read_kind(table);
    joint.type = kind.type;
    read_markers_of(table, kind, reading, joint);
    if (kind.type == JointType::ball || kind.type == JointType::free) {
      read_spatial_start(table, kind.type == JointType::free, joint);
    } else {
      joint.position = read_coordinates(table, "start", kind);
      joint.velocity = read_coordinates(table, "start_velocity", kind);
    }
    read_motions(table, kind, joint);
    model.joints.push_back(std::move(joint));
  }
  order_joints(model);
  for (const Joint& joint : model.joints) check_no_place(root, joint, model);
}

}  // namespace qvslv
