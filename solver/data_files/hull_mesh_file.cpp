#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "solver/data_files/hull_mesh.h"
#include "solver/data_files/mesh_formats.h"

namespace qvslv {

namespace {

std::string ending_of(const std::string& path) {
  std::string ending = std::filesystem::path(path).extension().string();
  std::transform(ending.begin(), ending.end(), ending.begin(),
                 [](char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); });
  return ending;
}

/// The bytes of a file. A pipe or a device is refused: reading it might never end.
std::string bytes_of(const std::string& path) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) throw MeshError("it is no regular file");
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  if (!error && size > k_most_mesh_bytes)
    throw MeshError("it has " + std::to_string(size >> 20U) + " MB; a hull's mesh of up to " +
                    std::to_string(k_most_mesh_bytes >> 20U) + " MB is expected");
  std::ifstream stream(path, std::ios::binary);
  std::string bytes(error ? 0 : static_cast<std::size_t>(size), '\0');
  stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (error || !stream) throw MeshError("it cannot be opened or read");
  return bytes;
}

}  // namespace

TriangleMesh read_mesh_bytes(std::string_view bytes, const std::string& ending) {
  const PolygonMesh polygons = ending == ".stl"   ? read_stl(bytes)
                               : ending == ".obj" ? read_obj(bytes)
                                                  : read_ply(bytes);
  if (polygons.ends.empty()) throw MeshError("it holds no triangles");
  return welded(triangulated(polygons));
}

TriangleMesh read_mesh_file(const std::string& path) {
  const std::string ending = ending_of(path);
  if (ending != ".stl" && ending != ".obj" && ending != ".ply")
    throw MeshError("'" + path + "' is no mesh file known here; known: .stl, .obj, .ply");
  try {
    return read_mesh_bytes(bytes_of(path), ending);
  } catch (const MeshError& error) {
    throw MeshError("'" + path + "' cannot be read: " + error.what());
  }
}

}  // namespace qvslv
