#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "soilrdf/cell_grid.h"

/// Records of a soil road: a triangulated terrain with one set of soil parameters, read once from an RDF file and
/// consulted on every call. Plain values in the file's units; a copy of a road is independent of its source.
namespace qvsoilrdf {

/// The road_id of a road that is not read yet. Element and track records carry the same mark before their set-up.
constexpr std::int32_t k_not_set = -16394;

/// A terrain vertex.
class CNode {
public:
  double x = 0.0;       ///< plan coordinate along the longitudinal axis [file length]
  double y = 0.0;       ///< plan coordinate along the lateral axis
  double z = 0.0;       ///< height [file length]
  std::int32_t id = 0;  ///< running number in reading order, from 1 (not the number written in the file)
};

/// A terrain triangle.
class CElement {
public:
  double normal[3] = {0.0, 0.0, 0.0};  ///< unit normal, z not negative; 0, 0, 0 for a triangle without area
  double d = 0.0;                      ///< plane constant: normal . p + d = 0 on the triangle's plane
  std::int32_t node[3] = {0, 0, 0};    ///< node numbers of the corners K, L, M, from 1
  std::int32_t id = 0;                 ///< running number in reading order, from 1
  double center[3] = {0.0, 0.0, 0.0};  ///< centroid
  double value = 0.0;                  ///< fourth number of the element's line (kept: nothing reads it)

  /// Sets d = -normal . center. Precondition: `normal` and `center` are set.
  void equation_plane() { d = -(normal[0] * center[0] + normal[1] * center[1] + normal[2] * center[2]); }
};

/// Dynamic sinkage law (get_dynamic_sinkage). The comments give the keys of the RDF file.
class CDynamicSinkage {
public:
  double coefficient_ds = 0.0;     ///< COEFFICIENT_DS, scale of the law
  double critical_pressure = 0.0;  ///< CRITICAL_PRESSUR; 0 switches the law off
  double exponent_pr = 0.0;        ///< EXPONENT_PR, of the pressure ratio
  double exponent_sd = 0.0;        ///< EXPONENT_SD, of the squared shear displacement
};

/// Pressure-sinkage law of Bekker, p = (kc / b + kphi) z^n.
class CBekker {
public:
  double cohesive_coeff = 0.0;    ///< kc [force / length^(n+1)]
  double frictional_coeff = 0.0;  ///< kphi [force / length^(n+2)]
  double sinkage_exponent = 0.0;  ///< n [-]
  double width = 0.0;             ///< WIDTH of the file (kept: the force modules use their element's width instead)
  double damp_ratio = 0.01;       ///< zeta, damping per unit of stiffness [time]
  double boundary_sinkage = 1.0;  ///< zb, depth from which the damping is full [length]
};

/// Shear law of Wong (get_wong_shear_pressure).
class CWong {
public:
  double cohesion = 0.0;        ///< c [force / length^2]
  double sensitivity = 0.0;     ///< S, strength over residual strength [-]
  double max_shear_disp = 0.0;  ///< K, shear displacement at which the soil has its full strength [length]
  double friction_angle = 0.0;  ///< phi [rad] (degrees in the file)
};

/// The corners of a terrain triangle, which is all that a road keeps of it from the beginning: whole records of 10^6
/// triangles would be 80 MB, and most of the pages of a road are never driven on.
struct corner_numbers {
  std::int32_t node[3];  ///< node numbers of the corners K, L, M, from 1
};

/// What the point search needs of a triangle, in one cache line. Derived from its corners when a tile of the grid that
/// it meets is made.
struct alignas(64) CFacet {
  double corner[3];  ///< K [file length]
  double normal[3];  ///< the element's normal, without negative zeros
  float
      gradient[4];  ///< gradients of the barycentric coordinates l of L and m of M in the plan: (dl/dx, dl/dy, dm/dx,
                    ///< dm/dy) [1/length]; NaN for a thin triangle, in which only the angles tell if a point is inside
};

/// A soil road. The units are the file's, which must be the model's.
class CRoad {
public:
  cell_grid cells;  ///< plan grid: column i = 0 .. nx-1 along x, row j = 0 .. ny-1 along y
  qv::large_vector<CNode> nodes;
  qv::large_vector<corner_numbers> elements;  ///< in the order of the file; whole records: element()
  qv::large_vector<double> element_values;    ///< fourth numbers of the elements' lines; empty if all are 0
  mutable qv::large_vector<CFacet> facets;    ///< one per element; set for the elements of the tiles that are made
  double facet_reach = 0.0;                   ///< a point with a barycentric coordinate below -facet_reach is outside
  std::string soil_type;                      ///< "CONCRETE" is a hard road
  std::string normal_pressure = "BEKKER";     ///< name of the pressure law; the only one that a file may give
  std::string shear_pressure = "WONG";        ///< name of the shear law, likewise
  std::string file_type = "RDF";              ///< likewise
  std::string method = "3D_SOIL";             ///< likewise
  CDynamicSinkage dynamic_sinkage;
  CBekker bekker;
  CWong wong;
  double scale_factor_1 = 1.0;  ///< first pressure scale factor of the damping; the reader leaves it at 1
  double scale_factor_2 = 1.0;  ///< second pressure scale factor, likewise
  double cell_dx = 1.0;         ///< length of a cell along x
  double cell_dy = 1.0;         ///< length of a cell along y
  double x_min = 0.0;           ///< plan extent of the nodes
  double y_min = 0.0;
  double x_max = 0.0;
  double y_max = 0.0;
  double max_dx = 0.0;               ///< largest cyclic difference of corner x over all triangles; a cell is half of it
  double max_dy = 0.0;               ///< likewise of corner y
  double x_offset = 0.0;             ///< -x_min
  double y_offset = 0.0;             ///< -y_min
  std::int32_t nx = 1;               ///< number of grid columns
  std::int32_t ny = 1;               ///< number of grid rows
  std::int32_t road_id = k_not_set;  ///< the road's index once it has been read

  // Kept: no computation reads these fields. They belong to the documented record of a road; what a file declares is
  // stored, but nothing is scaled by its units.
  std::string angle_unit = "RADIAN";
  double length_factor = 1.0;  ///< SI value of one file unit
  double mass_factor = 1.0;
  double time_factor = 1.0;
  double angle_factor = 0.0;
  double force_factor = 1.0;
  double file_version = 0.0;
  double version = 0.0;
  std::int32_t number_of_nodes = 0;     ///< as declared by the file
  std::int32_t number_of_elements = 0;  ///< as declared by the file
  std::int32_t spare_int_1 = 0;         ///< not even stored
  std::int32_t spare_int_2 = 0;         ///< likewise

  /// 0 for "BEKKER" exactly (case counts), 1 for anything else. Kept: nothing calls it, since there is only one law.
  std::int32_t get_type_of_normal_pressure() const { return normal_pressure == "BEKKER" ? 0 : 1; }

  /// The record of the cell in column i, row j, but for its list, which is left empty.
  CCell cell_bounds(std::int32_t i, std::int32_t j) const {
    CCell cell;
    cell.i = i;
    cell.j = j;
    cell.x_lo = x_min + cell_dx * i;
    cell.x_hi = cell.x_lo + cell_dx;
    cell.y_lo = y_min + cell_dy * j;
    cell.y_hi = cell.y_lo + cell_dy;
    return cell;
  }

  /// Makes the lists of the cell's tile and the facets in them, if this is the first time that someone asks for a cell
  /// of the tile. Allocates nothing and may be called by several threads at once. Precondition: the grid is built.
  void make_ready(std::size_t cell) const {
    if (!cells.is_made(cell)) make_tile(*this, cell_grid::tile_of(cell));
  }

  /// The whole record of a cell. Precondition: the grid is built, 0 <= i < nx, 0 <= j < ny.
  CCell cell(std::int32_t i, std::int32_t j) const {
    CCell record = cell_bounds(i, j);
    const std::size_t cell = cells.index(i, j);
    make_ready(cell);
    const element_list list = cells.list(cell);
    record.elements.assign(list.begin(), list.end());
    return record;
  }

  const CNode& corner(const corner_numbers& element, int c) const {
    return nodes[static_cast<std::size_t>(element.node[c] - 1)];
  }

  /// The whole record of an element, counted from 0. Precondition: its node numbers are in range.
  CElement element(std::size_t index) const;
};

}  // namespace qvsoilrdf
