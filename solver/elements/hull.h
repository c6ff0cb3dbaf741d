#pragma once

#include <optional>
#include <string>
#include <vector>

#include "solver/data_files/hull_mesh.h"
#include "solver/model_file/reading.h"

namespace qvslv {

/// type = "hull": a qvhydro_force for each slice of its mesh, and a qvhydro_report where one is asked for.

/// The report of a hull, made when all elements are there.
struct HullReport {
  std::string force;  ///< name of the force it tells of; empty: the hull's first slice
  FilePosition force_at;
  int force_marker = 0;     ///< index into Model::markers, for the force's axes
  std::vector<int> points;  ///< likewise, whose heights are told
};

struct HullElement {
  std::string name;
  size_t first_element = 0;  ///< index into Model::elements of the first slice; the others follow
  int parts = 1;
  int body = 0;          ///< index into Model::bodies
  int water_marker = 0;  ///< index into Model::markers
  std::optional<HullReport> report;
  FilePosition at;
};

/// The slices of a hull, not yet numbered. `hull` gets what the rest needs.
std::vector<Element> read_hull(const TableReader& table, Reading& reading, HullElement& hull);

/// Hydro force ids and their count need all hulls of the model; makes the reports too.
void number_hulls(const std::vector<HullElement>& hulls, Reading& reading);

/// The mesh of a hull as the keys `mesh`, `mesh_scale` and `flip` have it, checked; in its own frame.
TriangleMesh read_hull_mesh(const TableReader& table, const Reading& reading);

/// CURRENT files are looked for beside the model only when the WAVE file is not in the current folder: throws
/// ModelError when the subroutine would find the one and not the other.
void check_water_files(const TableReader& table, const Reading& reading);

/// Warns when the hull's start, where the model file tells it, is not within the positions of the WAVE file.
void warn_about_reach(const TableReader& table, const TriangleMesh& mesh, const HullElement& hull, Reading& reading);

}  // namespace qvslv
