#pragma once

#include <string>
#include <vector>

#include "hydro/interval.h"
#include "hydro/wave_table.h"

/// State of the hydro force elements: patch meshes fixed to bodies, and the water they float in. Lengths, masses, times
/// and forces are in the model's units. Records are filled at set-up and live until the library is unloaded; fields
/// that a call rewrites say so. Fields headed "Kept" are part of the documented shape of the records, so they are
/// filled and tested, though no computation reads them.
namespace qvhydro {

/// A node of a patch mesh, body marker frame.
struct Cnode {
  double x, y, z;
};

/// A triangle P0, P1, P2 of the hull: (P1 - P0) x (P2 - P0) points out of the hull into the water. Evaluations read
/// patch_corners and patch_plane instead, of which more fit into the cache.
struct Cpatch {
  double normal[3] = {};  ///< unit, outward, body marker frame
  double area = 0.0;      ///< [length^2]
  int node_ids[3] = {};   ///< from 0; N, the number of nodes, is the spare node

  // Kept: intervals of the tables that the last call found, by corner. Searches start from those of node_intervals.
  int wave_col[3] = {};      ///< of the wave table's columns
  int current1_row[3] = {};  ///< of the first current table
  int current2_row[3] = {};  ///< of the second current table
};

/// Kept: the rest of a triangle's geometry, body marker frame. Set-up derives area and normal from it.
struct patch_outline {
  double centroid[3] = {};
  double edge01[3] = {};  ///< P1 - P0
  double edge12[3] = {};  ///< P2 - P1
  double edge20[3] = {};  ///< P0 - P2
  double edge02[3] = {};  ///< P2 - P0
};

/// Node numbers of a patch, once more: all that a call reads of a patch out of the water.
struct patch_corners {
  int node[3] = {};
};

/// Normal and area of a patch, once more: what a call reads of a patch in the water besides its corners.
struct patch_plane {
  double normal[3] = {};  ///< unit, outward, body marker frame
  double area = 0.0;      ///< [length^2]
};

/// Where a node is; rewritten by every call.
struct alignas(32) node_place {
  double position[3] = {};  ///< water frame
  double elevation = 0.0;   ///< of the water surface there, water frame z; 0 off the wave table
};

/// How a wet node moves; rewritten by every call in which it is wet.
struct node_flow {
  double velocity[3] = {};  ///< relative to the water, global axes
  double lever[3] = {};     ///< from the force marker, global axes; behind the velocity, as loops read both as one
};

/// Intervals of the tables that were found last at a node: where the next search starts.
struct node_intervals {
  int wave_col = 0, current1_row = 0, current2_row = 0;
  bool on_wave_col = false;  ///< this call found an interval of the wave table
  bool on_current1_row = false, on_current2_row = false, on_both_currents = false;
};

/// What a call has found out about a node: a set of these bits. A node that is neither wet nor off the table is dry:
/// it is above the surface.
enum node_mark : unsigned char {
  k_wet = 1,
  k_off_table = 2,  ///< beyond an end of the wave table: ends its patch's corners, and its elevation counts as 0
  k_changed = 4,    ///< not wet, dry or off the table as at the last call, or not in the same intervals
  k_before = 8,     ///< before the first position of the wave table
  k_behind = 16,    ///< behind its last position
  k_high = 32,      ///< above the water level of every patch
  k_deep = 64       ///< not above the water level of any patch
};

constexpr unsigned char k_never_marked = 255;  ///< in Chydro_force_sub::marks: no call has been there

/// One patch mesh of a hydro force element.
struct Chydro_force_sub {
  std::vector<Cpatch> patches;        ///< P + 1: the last one is a spare that nothing fills
  std::vector<Cnode> nodes;           ///< N + 1: the last one is a spare at the origin, which patches may name
  double mass = 0.0;                  ///< for the report
  double scale = 0.0;                 ///< factor of every load; 0 switches the loads off
  double buoyancy_magnitude = 0.0;    ///< of the last call [force]
  double submerged_volume = 0.0;      ///< of the last call [length^3]
  double t_start = 0.0, t_end = 0.0;  ///< active interval; always active if t_end <= t_start
  double tangential_coef = 0.0, tangential_exp = 0.0;
  int force_marker = 0, water_marker = 0, body_marker = 0;
  int node_count = 0, patch_count = 0;  ///< N, P
  int initialized = 0;                  ///< 1 from the first call on, whatever came of it

  // What evaluations work on: one for each node, spare included, and one for each patch.
  int nodes_in_use = 0;  ///< as many as are worked out: up to the last one that a patch names, at least one
  std::vector<double> node_x, node_y, node_z;  ///< of nodes, once more: rows, padded to whole vectors
  std::vector<node_place> places;
  std::vector<node_flow> flows;
  std::vector<node_intervals> intervals;
  std::vector<unsigned char> marks;  ///< node_mark
  std::vector<patch_corners> corners;
  std::vector<patch_plane> planes;

  // Kept: part of the documented record, read by no computation.
  std::vector<patch_outline> outlines;  ///< one for each patch
  double reserve = 0.0;
  double max_node_z = 0.0;      ///< largest z of a node, body marker frame
  int index = 0, force_id = 0;  ///< of this mesh within its element; of the element
  int option = 0;
  int spare = 0;
};

/// Reciprocals of the unit factors that the host gives: Mr, Lr, Fr, Tr of docs/floating-bodies.md, "Units".
struct inverse_units {
  double mass = 0.0, length = 0.0, force = 0.0, time = 0.0;
};

/// One table of a CURRENT file.
struct current_table {
  interval_axis key;          ///< x or y in the water frame [length]
  std::vector<double> value;  ///< [length / time]; one entry more than the file has, which repeats the last
  int mode = 0;               ///< 1: over x, 0 outside of the table; any other: over y, held at the ends
};

/// One hydro force element. Its WAVE table is the base.
struct Chydro_force : wave_table {
  int id = 0;
  int initialized = 0;                    ///< 1 from the first call on, whatever came of it
  bool files_read = false;                ///< both files; without them an element exerts nothing
  std::vector<Chydro_force_sub> subs;     ///< one more than there are sub-elements
  double density = 0.0, gravity = 0.0;    ///< of the water [mass / length^3]; [length / time^2]
  double report_buoyancy_sum = 0.0;       ///< since the last report: sizes of the meshes' buoyancies [force]
  double report_mass_sum = 0.0;           ///< since the last report: masses
  double report_mass_moment[3] = {};      ///< since the last report: mass times force marker's position, global
  double report_buoyancy_moment[3] = {};  ///< since the last report: size of the buoyancy times its centre, global
  inverse_units inv_unit;
  double wave_x_first = 0.0, wave_x_last = 0.0;  ///< first and last position of the WAVE file; refreshed by every call
  double drag_scale = 1.0;                       ///< factor of all drag
  current_table current1, current2;              ///< along the water frame's x and y axis
  int wave_string_id = 0, current_string_id = 0;

  // Kept: part of the documented record, read by no computation.
  int subelement_count = 0;
  std::wstring wave_path, current_path;  ///< path tried in the model's folder; empty if the name opened as given
};

}  // namespace qvhydro
