#include "solver/model_file/reading.h"

namespace qvslv {

namespace {

constexpr double k_pi = 3.141592653589793;

const std::vector<std::string> k_body_keys = {"name",       "mass",     "density",         "center",
                                              "inertia",    "shape",    "position",        "angles",
                                              "angles_deg", "velocity", "angular_velocity"};

int axis_index(const TableReader& table, const std::string& key, int otherwise) {
  if (!table.has(key)) return otherwise;
  return table.choice(key, {"x", "y", "z"})[0] - 'x';
}

Shape read_shape(const TableReader& body) {
  Shape shape;
  const TableReader table = body.table("shape", {"box", "cylinder", "sphere"});
  if (table.has("box") + table.has("cylinder") + table.has("sphere") != 1)
    body.fail("shape", "give exactly one of box, cylinder and sphere");
  if (table.has("box")) {
    shape.kind = ShapeKind::box;
    shape.size = table.vector3("box");
    for (const double edge : shape.size)
      if (!(edge > 0)) table.fail("box", "the edge lengths must be greater than 0");
  } else if (table.has("cylinder")) {
    const TableReader cylinder = table.table("cylinder", {"radius", "length", "axis"});
    shape.kind = ShapeKind::cylinder;
    shape.radius = cylinder.positive("radius");
    shape.length = cylinder.positive("length");
    shape.axis = axis_index(cylinder, "axis", 1);
  } else {
    shape.kind = ShapeKind::sphere;
    shape.radius = table.table("sphere", {"radius"}).positive("radius");
  }
  return shape;
}

double volume(const Shape& shape) {
  if (shape.kind == ShapeKind::box) return shape.size[0] * shape.size[1] * shape.size[2];
  if (shape.kind == ShapeKind::cylinder) return k_pi * shape.radius * shape.radius * shape.length;
  return 4.0 / 3.0 * k_pi * shape.radius * shape.radius * shape.radius;
}

/// Inertia of a homogeneous solid about its centre, in the axes of its shape.
Inertia solid_inertia(const Shape& shape, double mass) {
  Inertia inertia;
  if (shape.kind == ShapeKind::box) {
    const Vec3& e = shape.size;
    inertia.xx = mass / 12.0 * (e[1] * e[1] + e[2] * e[2]);
    inertia.yy = mass / 12.0 * (e[0] * e[0] + e[2] * e[2]);
    inertia.zz = mass / 12.0 * (e[0] * e[0] + e[1] * e[1]);
  } else if (shape.kind == ShapeKind::cylinder) {
    const double along = 0.5 * mass * shape.radius * shape.radius;
    const double across = mass / 12.0 * (3.0 * shape.radius * shape.radius + shape.length * shape.length);
    inertia.xx = shape.axis == 0 ? along : across;
    inertia.yy = shape.axis == 1 ? along : across;
    inertia.zz = shape.axis == 2 ? along : across;
  } else {
    inertia.xx = inertia.yy = inertia.zz = 0.4 * mass * shape.radius * shape.radius;
  }
  return inertia;
}

/// Whether a body can have this inertia: its second moments, trace(I)/2 E - I, must not be negative in any direction.
bool physical(const Inertia& inertia) {
  const double half = 0.5 * (inertia.xx + inertia.yy + inertia.zz);
  const double a = half - inertia.xx, b = half - inertia.yy, c = half - inertia.zz;
  const double d = -inertia.xy, e = -inertia.xz, f = -inertia.yz;
  const double slack = 1e-9 * half;  // allows for numbers that are rounded to a few digits
  const bool diagonal = a >= -slack && b >= -slack && c >= -slack;
  const bool minors =
      a * b - d * d >= -slack * half && a * c - e * e >= -slack * half && b * c - f * f >= -slack * half;
  const double determinant = a * (b * c - f * f) - d * (d * c - f * e) + e * (d * f - b * e);
  return half > 0 && diagonal && minors && determinant >= -slack * half * half;
}

Inertia read_inertia(const TableReader& table) {
  const std::vector<double> values = table.numbers("inertia");
  if (values.size() != 3 && values.size() != 6)
    table.fail("inertia", "[xx, yy, zz] or [xx, yy, zz, xy, xz, yz] is expected, not " + std::to_string(values.size()) +
                              (values.size() == 1 ? " number" : " numbers"));
  Inertia inertia{values[0], values[1], values[2]};
  if (values.size() == 6) {
    inertia.xy = values[3];
    inertia.xz = values[4];
    inertia.yz = values[5];
  }
  if (!physical(inertia))
    table.fail("inertia",
               "no body has these: moments must be positive and each at most the sum of the other two, "
               "and products not larger than the moments allow");
  return inertia;
}

void read_mass(const TableReader& table, Body& body) {
  const bool by_density = table.has("density");
  if (by_density && table.has("mass")) table.fail("density", "give either mass or density, not both");
  if (by_density && body.shape.kind == ShapeKind::none) table.fail("density", "a density needs a shape to fill");
  body.mass = by_density ? table.positive("density") * volume(body.shape) : table.positive("mass");
  if (table.has("inertia")) {
    body.inertia = read_inertia(table);
  } else if (body.shape.kind != ShapeKind::none) {
    body.inertia = solid_inertia(body.shape, body.mass);
  } else {
    table.fail("the key 'inertia' is missing (or a 'shape' to compute it from)");
  }
}

void add_ground(Reading& reading) {
  Marker ground;
  ground.id = reading.next_id();
  ground.name = "ground";
  reading.model().ground_id = ground.id;
  reading.model().markers.push_back(ground);
  reading.markers.add_internal("ground", 0);
}

}  // namespace

void read_bodies(const TableReader& root, Reading& reading) {
  add_ground(reading);
  for (const TableReader& table : tables_of(root, "body", k_body_keys)) {
    Body body;
    body.name = table.text("name");
    body.at = table.at();
    body.id = reading.next_id();
    if (body.name == "ground") table.fail("name", "the ground is there already; a body needs another name");
    if (table.has("shape")) body.shape = read_shape(table);
    read_mass(table, body);
    body.center = table.vector3("center", {0, 0, 0});
    body.position = table.vector3("position", {0, 0, 0});
    body.orientation = table.rotation();
    body.velocity = table.vector3("velocity", {0, 0, 0});
    body.angular_velocity = table.vector3("angular_velocity", {0, 0, 0});
    const int index = static_cast<int>(reading.model().bodies.size());
    reading.bodies.add(body.name, index, table.position("name"));
    reading.markers.add(body.name, static_cast<int>(reading.model().markers.size()), table.position("name"));
    reading.model().markers.push_back({body.id, body.name, index, body.center, k_identity, body.at});
    reading.model().bodies.push_back(std::move(body));
  }
}

void read_markers(const TableReader& root, Reading& reading) {
  const std::vector<std::string> keys = {"name", "body", "position", "angles", "angles_deg"};
  for (const TableReader& table : tables_of(root, "marker", keys)) {
    Marker marker;
    marker.name = table.text("name");
    marker.at = table.at();
    marker.id = reading.next_id();
    if (marker.name == "ground") table.fail("name", "the marker 'ground' is there already, at the ground's origin");
    const std::string body = table.text("body");
    if (body != "ground") marker.body = reading.bodies.find(body, table.what() + ", body", table.position("body"));
    marker.position = table.vector3("position", {0, 0, 0});
    marker.orientation = table.rotation();
    reading.markers.add(marker.name, static_cast<int>(reading.model().markers.size()), table.position("name"));
    reading.model().markers.push_back(std::move(marker));
  }
}

}  // namespace qvslv
