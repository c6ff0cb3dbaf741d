// Bytes as the mesh of a hull: the first one says which kind of file the others are. They must be read or refused, and
// what was read must be a mesh.
#include <cmath>
#include <cstdint>
#include <new>
#include <string_view>

#include "fuzz/memory_file.h"
#include "solver/data_files/mesh_formats.h"

namespace {

void check(const qvslv::TriangleMesh& mesh) {
  for (const qvslv::Vec3& point : mesh.points)
    for (const double coordinate : point) QV_PROMISE(std::isfinite(coordinate));
  for (const auto& triangle : mesh.triangles)
    for (const int corner : triangle) QV_PROMISE(corner >= 0 && static_cast<std::size_t>(corner) < mesh.points.size());
  const qvslv::MeshMeasures measures = qvslv::calc_measures(mesh);
  QV_PROMISE(measures.area >= 0);
  qvslv::check_hull_mesh(mesh);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const char* endings[] = {".stl", ".obj", ".ply"};
  const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
  try {
    check(qvslv::read_mesh_bytes(bytes, endings[data[0] % 3]));
  } catch (const qvslv::MeshError& error) {
    QV_PROMISE(*error.what() != '\0');
  } catch (const std::bad_alloc&) {  // refused by frugal_memory.cpp
  }
  return 0;
}
