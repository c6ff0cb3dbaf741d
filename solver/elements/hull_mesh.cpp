#include "solver/elements/hull_mesh.h"

#include <algorithm>
#include <cmath>

#include "solver/data_files/find_data_file.h"
#include "solver/data_files/hull_mesh.h"

namespace qvslv {

namespace {

const std::vector<std::string> k_shapes = {"box", "wedge_barge", "cylinder", "sphere"};
const std::vector<std::string> k_shape_keys = {"shape",  "size", "bow",       "stern", "radius",
                                               "length", "axis", "divisions", "center"};

/// Keys that a shape has besides `shape`, `divisions` and `center`.
std::vector<std::string> keys_of_shape(const std::string& shape) {
  if (shape == "box") return {"size"};
  if (shape == "wedge_barge") return {"size", "bow", "stern"};
  if (shape == "cylinder") return {"radius", "length", "axis"};
  return {"radius"};
}

void check_shape_keys(const TableReader& table, const std::string& shape) {
  const std::vector<std::string> own = keys_of_shape(shape);
  for (const char* key : {"size", "bow", "stern", "radius", "length", "axis"}) {
    bool belongs = false;
    for (const std::string& candidate : own) belongs = belongs || candidate == key;
    if (!belongs && table.has(key)) table.fail(key, "a " + shape + " has no such key");
  }
}

int whole(double value, double least, double most, const TableReader& table) {
  if (value >= least && value <= most && value == std::floor(value)) return static_cast<int>(value);
  table.fail("divisions", "whole numbers from " + number_text(least) + " to " + number_text(most) +
                              " are expected, not " + number_text(value));
}

constexpr double k_most_divisions = 1000;

/// Numbers of cells along x, y and z: as given, otherwise ten along the longest edge and cells as cubic as possible.
std::array<int, 3> block_divisions(const TableReader& table, const Vec3& size) {
  constexpr double k_along_longest = 10;
  std::array<int, 3> divisions{};
  if (table.has("divisions")) {
    const std::vector<double> given = table.numbers("divisions", 3);
    for (size_t k = 0; k < 3; ++k) divisions[k] = whole(given[k], 1, k_most_divisions, table);
    return divisions;
  }
  const double cell = std::max({size[0], size[1], size[2]}) / k_along_longest;
  for (size_t k = 0; k < 3; ++k) divisions[k] = std::max(1, static_cast<int>(std::lround(size[k] / cell)));
  return divisions;
}

TriangleMesh block(const TableReader& table) {
  const Vec3 size = table.vector3("size");
  for (const double edge : size)
    if (!(edge > 0)) table.fail("size", "the edge lengths must be greater than 0");
  double rake[2] = {0, 0};
  const char* keys[2] = {"bow", "stern"};
  for (size_t i = 0; i < 2; ++i) {
    rake[i] = table.number(keys[i], 0);
    if (rake[i] < 0) table.fail(keys[i], "must not be negative, is " + number_text(rake[i]));
  }
  if (!(rake[0] + rake[1] < size[0]))
    table.fail("size", "the rakes of bow and stern leave nothing of the bottom's length");
  const std::array<int, 3> cells = block_divisions(table, size);
  constexpr double k_most_triangles = 2e6;
  const double triangles = 4.0 * cells[0] * cells[1] + 4.0 * cells[1] * cells[2] + 4.0 * cells[2] * cells[0];
  if (triangles > k_most_triangles)
    table.fail("divisions", "these make " + number_text(triangles) + " triangles; at most " +
                                number_text(k_most_triangles) + " are expected");
  return barge_mesh(size, rake[0], rake[1], cells);
}

TriangleMesh cylinder(const TableReader& table) {
  constexpr int k_around = 32;
  constexpr double k_pi = 3.141592653589793;
  const double radius = table.positive("radius"), length = table.positive("length");
  const int axis = table.has("axis") ? table.choice("axis", {"x", "y", "z"})[0] - 'x' : 1;
  int around = k_around, along = 0;
  if (table.has("divisions")) {
    const std::vector<double> given = table.numbers("divisions", 2);
    around = whole(given[0], 3, k_most_divisions, table);
    along = whole(given[1], 1, k_most_divisions, table);
  } else {
    const double side = 2 * k_pi * radius / around;
    along = static_cast<int>(std::min(k_most_divisions, std::max(1.0, std::round(length / side))));
  }
  return round_mesh(radius, length, axis, around, along);
}

TriangleMesh sphere(const TableReader& table) {
  constexpr int k_level = 3;          // 1280 triangles
  constexpr double k_most_level = 7;  // 327680
  const double radius = table.positive("radius");
  if (!table.has("divisions")) return icosphere_mesh(radius, k_level);
  return icosphere_mesh(radius, whole(table.number("divisions"), 0, k_most_level, table));
}

TriangleMesh read_shape_mesh(const TableReader& hull) {
  const TableReader table = hull.table("mesh", k_shape_keys);
  const std::string shape = table.choice("shape", k_shapes);
  check_shape_keys(table, shape);
  if (hull.has("mesh_scale")) hull.fail("mesh_scale", "belongs to a mesh file; a shape has its size");
  TriangleMesh mesh = shape == "cylinder" ? cylinder(table) : shape == "sphere" ? sphere(table) : block(table);
  const Vec3 center = table.vector3("center", {0, 0, 0});
  for (Vec3& point : mesh.points)
    for (size_t k = 0; k < 3; ++k) point[k] += center[k];
  return mesh;
}

TriangleMesh read_file_mesh(const TableReader& hull, Reading& reading) {
  const std::string name = hull.text("mesh"), path = find_data_file(name, reading.file.model.path);
  if (path.empty())
    hull.fail("mesh", "there is no file '" + name + "' beside the model in " + folder_of(reading.file.model) +
                          where_else(name) +
                          " (an STL, OBJ or PLY file is expected, or mesh = { shape = \"box\", size = [..] })");
  reading.file.inputs.push_back({"mesh", name, path});
  TriangleMesh mesh = read_mesh_file(path);
  const double scale = hull.positive("mesh_scale", 1);
  for (Vec3& point : mesh.points)
    for (double& coordinate : point) coordinate *= scale;
  return mesh;
}

}  // namespace

TriangleMesh read_hull_mesh(const TableReader& table, Reading& reading) {
  const Value::Kind kind = table.value("mesh").kind;
  if (kind != Value::Kind::text && kind != Value::Kind::table)
    table.fail("mesh", "the name of a file or a shape, { shape = \"box\", size = [..] }, is expected, not " +
                           described(table.value("mesh")));
  try {
    TriangleMesh mesh = kind == Value::Kind::text ? read_file_mesh(table, reading) : read_shape_mesh(table);
    if (table.flag("flip", false)) {
      if (calc_measures(mesh).volume > 0) table.fail("flip", "the mesh faces outwards as it is; take this out");
      flip(mesh);
    }
    check_hull_mesh(mesh);
    return mesh;
  } catch (const MeshError& error) {
    table.fail("mesh", error.what());
  }
}

}  // namespace qvslv
