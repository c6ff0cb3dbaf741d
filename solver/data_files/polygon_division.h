#pragma once

#include <string>

#include "solver/data_files/mesh_formats.h"

// The division of polygons into triangles is a module of its own, libqvslv_polygons.so beside libqvslv.so. The import
// library behind it takes 3 ms to load, a third of a short run, and only a mesh with polygons of four and more corners
// needs it.

extern "C" {
/// Appends the triangles of all polygons, in their order; their corners must be points that are there. If that cannot
/// be done, `reason` says why; else it is left as it is. This is what the module exports.
void qvslv_divide_polygons(const qvslv::PolygonMesh& polygons, qvslv::TriangleMesh& mesh, std::string& reason);
}

namespace qvslv {

/// The module's function; loads the module at the first call. Throws MeshError if that fails.
decltype(&qvslv_divide_polygons) polygon_division();

}  // namespace qvslv
