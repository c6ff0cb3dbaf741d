#pragma once

#include <optional>
#include <string>

#include "solver/recording.h"

namespace qvslv {

/// The mesh of a road file, for pictures: only the node and triangle blocks are looked at, and lines or triangles that
/// make no sense are left out. In the road's own axes. Nothing when the file cannot be read or holds no triangle.
std::optional<TriangleMesh> read_road_mesh(const std::string& path);

/// The file that a string of the model names: as given, else beside the model file. Nothing when neither can be opened.
std::optional<std::string> find_model_data(const std::string& name, const std::string& model_path);

/// Appends a mesh, turned and moved.
void append_mesh(TriangleMesh& mesh, const TriangleMesh& added, const Rotation& rotation, const Vec3& translation);

}  // namespace qvslv
