#pragma once

#include "solver/model/triangle_mesh.h"
#include "solver/model_file/reading.h"

namespace qvslv {

/// Throws ModelError if the subroutine would find the WAVE file and not the CURRENT file: it looks for the CURRENT file
/// beside the model only if the WAVE file is not in the current folder.
void check_water_files(const TableReader& table, const Reading& reading);

/// Warns if the hull's start, as far as the model file tells it, is not within the positions of the WAVE file.
/// @param body          index into Model::bodies, of the hull
/// @param water_marker  index into Model::markers, frame of the water
void warn_about_reach(const TableReader& table, const TriangleMesh& mesh, int body, int water_marker, Reading& reading);

}  // namespace qvslv
