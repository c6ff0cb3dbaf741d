#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "soilrdf/cell_grid.h"

/// Records of a soil road: a triangulated terrain with one set of soil parameters, read once from an RDF file and
/// consulted on every call. Plain values in the file's units; a copy of a road is independent of its source.
namespace qvsoilrdf {

/// road_id of a road that is not read yet; element and track records carry the same mark before their set-up.
constexpr std::int32_t k_not_set = -16394;

/// A terrain vertex.
class CNode {
public:
  double x = 0.0;       ///< plan coordinate along the longitudinal axis [file length]
  double y = 0.0;       ///< plan coordinate along the lateral axis
  double z = 0.0;       ///< height
  std::int32_t id = 0;  ///< running number in reading order, from 1 (not the number written in the file)
};

/// A terrain triangle.
class CElement {
public:
  double normal[3] = {0.0, 0.0, 0.0};  ///< unit normal, z not negative
  double d = 0.0;                      ///< plane constant: normal . p + d = 0 on the triangle's plane
  std::int32_t node[3] = {0, 0, 0};    ///< node numbers of the corners K, L, M, from 1
  std::int32_t id = 0;                 ///< running number in reading order, from 1
  double center[3] = {0.0, 0.0, 0.0};  ///< centroid
  double value = 0.0;                  ///< fourth number of the element's line, kept as read

  /// Sets `d` from `normal` and `center`, which must stand already.
  void equation_plane() { d = -(normal[0] * center[0] + normal[1] * center[1] + normal[2] * center[2]); }
};

/// Dynamic sinkage law.
class CDynamicSinkage {
public:
  double coefficient_ds = 0.0;     ///< COEFFICIENT_DS
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
  double width = 0.0;             ///< WIDTH of the file; the force modules use their element's width instead
  double damp_ratio = 0.01;       ///< damping per unit of stiffness [time]
  double boundary_sinkage = 1.0;  ///< depth from which the damping is full [length]
};

/// Shear law of Wong.
class CWong {
public:
  double cohesion = 0.0;        ///< c [force / length^2]
  double sensitivity = 0.0;     ///< S, strength over residual strength [-]
  double max_shear_disp = 0.0;  ///< K, shear displacement at the strength [length]
  double friction_angle = 0.0;  ///< phi [rad] (degrees in the file)
};

/// What the point search needs of a triangle, in one cache line. Derived from the element and its nodes after reading.
struct alignas(64) CFacet {
  double corner[3];   ///< K
  double normal[3];   ///< of the element, with zeros that have no sign
  float gradient[4];  ///< of the barycentric coordinates of L and of M in the plan: (dL/dx, dL/dy, dM/dx, dM/dy); not
                      ///< a number for a thin triangle, which only its angles can judge
};

class CRoad {
public:
  cell_grid cells;  ///< plan grid: column i = 0 .. nx-1 along x, row j = 0 .. ny-1 along y
  qv::large_vector<CNode> nodes;
  qv::large_vector<CElement> elements;
  qv::large_vector<CFacet> facets;  ///< one per element
  double facet_reach = 0.0;         ///< a point with a coordinate below minus this is certainly not in its triangle
  std::string soil_type;            ///< "CONCRETE" is a hard road
  std::string normal_pressure = "BEKKER";
  std::string shear_pressure = "WONG";
  std::string file_type = "RDF";
  std::string method = "3D_SOIL";
  std::string angle_unit = "RADIAN";
  CDynamicSinkage dynamic_sinkage;
  CBekker bekker;
  CWong wong;
  // SI value of one file unit. Declared and validated only: nothing is scaled, the file is in the model's units.
  double length_factor = 1.0;
  double mass_factor = 1.0;
  double time_factor = 1.0;
  double angle_factor = 0.0;
  double force_factor = 1.0;
  double scale_factor_1 = 1.0;  ///< pressure scale factors of the Bekker parameters; the reader leaves them at 1
  double scale_factor_2 = 1.0;
  double file_version = 0.0;
  double version = 0.0;
  double cell_dx = 1.0;  ///< cell lengths
  double cell_dy = 1.0;
  double x_min = 0.0;  ///< plan extent of the nodes
  double y_min = 0.0;
  double x_max = 0.0;
  double y_max = 0.0;
  double max_dx = 0.0;  ///< largest cyclic corner difference over all triangles; half of it sizes the cells
  double max_dy = 0.0;
  double x_offset = 0.0;                ///< -x_min
  double y_offset = 0.0;                ///< -y_min
  std::int32_t nx = 1;                  ///< number of grid columns
  std::int32_t ny = 1;                  ///< number of grid rows
  std::int32_t number_of_nodes = 0;     ///< as declared by the file
  std::int32_t number_of_elements = 0;  ///< as declared by the file
  std::int32_t road_id = k_not_set;     ///< the road's index once it has been read
  std::int32_t spare_int_1 = 0;
  std::int32_t spare_int_2 = 0;

  /// 0 for "BEKKER" exactly (case counts), 1 for anything else.
  std::int32_t get_type_of_normal_pressure() const { return normal_pressure == "BEKKER" ? 0 : 1; }

  /// Bounds of the cell in column i, row j (list left empty).
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

  /// The whole record of a cell. Precondition: the grid is built, 0 <= i < nx, 0 <= j < ny.
  CCell cell(std::int32_t i, std::int32_t j) const {
    CCell record = cell_bounds(i, j);
    const element_list list = cells.list(cells.index(i, j));
    record.elements.assign(list.begin(), list.end());
    return record;
  }
};

}  // namespace qvsoilrdf
