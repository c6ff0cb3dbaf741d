#pragma once

#include <string>
#include <vector>

#include "hydro/interval.h"
#include "hydro/wave_table.h"

/// State of the hydro force elements: patch meshes fixed to bodies, and the water they float in. Lengths, masses and
/// forces in the model's units.
namespace qvhydro {

/// A node of a patch mesh, body marker frame.
struct Cnode {
  double x, y, z;
};

/// A triangle of the hull, as every evaluation needs it. (P1 - P0) x (P2 - P0) points out of the hull into the water.
struct Cpatch {
  double normal[3] = {};  ///< unit, outward, body marker frame
  double area = 0.0;
  int node_ids[3] = {};
  int wave_col[3] = {};      ///< per corner, the column interval of the wave table found last
  int current1_row[3] = {};  ///< per corner, the interval of the first current table found last
  int current2_row[3] = {};
};

/// The rest of a triangle's geometry, body marker frame. Apart, as no evaluation needs it and hulls are large.
struct patch_outline {
  double centroid[3] = {};
  double edge01[3] = {};  ///< P1 - P0
  double edge12[3] = {};  ///< P2 - P1
  double edge20[3] = {};  ///< P0 - P2
  double edge02[3] = {};  ///< P2 - P0
};

/// What a corner of any patch at this node needs, computed once per call.
struct alignas(32) node_state {
  enum kind : unsigned char {
    off_table,  ///< beyond an end of the wave table: ends a patch's corners, its elevation counts as 0
    dry,        ///< above the surface: ends a patch's corners
    wet
  };
  double position[3] = {};                               ///< water frame
  double elevation = 0.0;                                ///< of the water there
  double velocity[3] = {};                               ///< relative to the water, global axes; wet nodes only
  double lever[3] = {};                                  ///< from the force marker, global axes; wet nodes only
  int wave_col = 0, current1_row = 0, current2_row = 0;  ///< intervals found last
  kind where = off_table;
  bool on_wave_col = false;  ///< an interval was found in this call
  bool on_current1_row = false, on_current2_row = false;
};

/// One patch mesh of a hydro force element.
struct Chydro_force_sub {
  std::vector<Cpatch> patches;          ///< P + 1: the last one is a spare that nothing fills
  std::vector<patch_outline> outlines;  ///< one for each of them
  std::vector<Cnode> nodes;             ///< N + 1: the last one is a spare at the origin, which patches may name
  double mass = 0.0;                    ///< for the report
  double reserve = 0.0;
  double scale = 0.0;  ///< of every load, 0 switches them off
  double buoyancy_magnitude = 0.0;
  double submerged_volume = 0.0;  ///< of the last evaluation
  double max_node_z = 0.0;
  double t_start = 0.0, t_end = 0.0;
  double tangential_coef = 0.0, tangential_exp = 0.0;
  int index = 0, force_id = 0;
  int force_marker = 0, water_marker = 0, body_marker = 0;
  int node_count = 0, patch_count = 0;
  int initialized = 0;
  int spare = 0;
  int option = 0;
  std::vector<node_state> node_states;  ///< N + 1
};

/// Reciprocals of the model's unit factors.
struct inverse_units {
  double mass = 0.0, length = 0.0, force = 0.0, time = 0.0;
};

/// One table of a CURRENT file.
struct current_table {
  interval_axis key;
  std::vector<double> value;  ///< one entry more than the file has: it repeats the last
  int mode = 0;               ///< 1: over x, nothing outside the table; any other: over y, held at the ends
};

/// One hydro force element. Its WAVE table is the base.
struct Chydro_force : wave_table {
  int id = 0;
  int initialized = 0;
  bool files_read = false;             ///< both files; without them an element exerts nothing
  std::vector<Chydro_force_sub> subs;  ///< one more than there are sub-elements
  int subelement_count = 0;
  double density = 0.0, gravity = 0.0;
  double report_buoyancy_sum = 0.0;
  double report_mass_sum = 0.0;
  double report_mass_moment[3] = {};
  double report_buoyancy_moment[3] = {};
  inverse_units inv_unit;
  double wave_x_first = 0.0, wave_x_last = 0.0;
  double drag_scale = 1.0;
  current_table current1, current2;      ///< along the water frame's x and y axis
  std::wstring wave_path, current_path;  ///< where the model's folder was tried, else empty
  int wave_string_id = 0, current_string_id = 0;
};

}  // namespace qvhydro
