#pragma once

#include "solver/model/triangle_mesh.h"
#include "solver/model_file/reading.h"

namespace qvslv {

/// The mesh of a hull as the keys `mesh`, `mesh_scale` and `flip` describe it: a file or a shape, in its own frame,
/// closed and facing outwards. Throws ModelError at the key if the mesh cannot be read or cannot be a hull.
TriangleMesh read_hull_mesh(const TableReader& table, Reading& reading);

}  // namespace qvslv
