#pragma once

#include <cstdint>
#include <vector>

#include "soilinteraction/contact_records.h"

/// Records of the contact between a track's belt and a soil road: the records of a body's grid points, extended by what
/// a belt between two nodes adds. Marker R is the reference of all positions, velocities and forces.
namespace qvsoilinteractionmtl {

/// Geometry and history of one belt point. On a hard road each of its shear forces equals the normal force
/// (`concrete_friction` 1).
class Croad_contact_mtl : public qvsoilinteraction::Croad_contact {
public:
  double lever_marker[3];  ///< from marker I to the point, axes of marker R [length]
  double lever_node[3];    ///< from the centre of the record's node to the point, axes of marker R [length]; no
                           ///< computation reads it (kept)

  Croad_contact_mtl() { Initialize(); }

  void Initialize() {
    Croad_contact::Initialize();
    for (int c = 0; c < 3; ++c) lever_marker[c] = lever_node[c] = 0.0;
    concrete_friction = 1.0;
  }
};

/// Loads of one belt point, and the share of them that the record's node takes.
class Csoil_contact_mtl : public qvsoilinteraction::Csoil_contact {
public:
  double shear_share[6];   ///< share of the first shear force, axes of marker R, then three zeros
  double normal_share[6];  ///< share of the normal and of the second shear force, axes of marker R, then three zeros
  double node_weight;      ///< fraction of the point's force that the node takes [-]

  double shear_work[3];  ///< copy of shear_share[0..2]; written, never read (kept: part of the documented record)

  Csoil_contact_mtl() { Initialize(); }

  void Initialize() {
    Csoil_contact::Initialize();
    for (int c = 0; c < 6; ++c) shear_share[c] = normal_share[c] = 0.0;
    for (double& value : shear_work) value = 0.0;
    node_weight = 0.0;
  }
};

/// One end of a belt span: the record of (node, side). Two records hold the span from node i to node i + 1: (i, side
/// 1), where it starts, and (i + 1, side 0), where it ends. The points of the start record are evaluated; the grid of
/// the end record takes node i + 1's share of each point's force.
class CSoilInteractionMTL {
public:
  std::vector<std::vector<Croad_contact_mtl>> road_contacts;  ///< nLong rows of nLat points
  std::vector<std::vector<Csoil_contact_mtl>> soil_contacts;
  std::int32_t nLong;     ///< points along the span; -1 at first
  std::int32_t nLat;      ///< points across the belt; -1 at first
  std::int32_t track_id;  ///< the track's index once the record is set up
  double span_length;     ///< distance of the two points below [length]
  std::int32_t side;      ///< 0: a span ends at this node, 1: a span starts there
  double frame[9];   ///< u along the span, a along the axle, w normal of the belt (away from the ground if the chain
                     ///< is listed along x), one behind the other; axes of marker R
  double points[6];  ///< where the span starts and where it ends, from marker R in its axes [length]

  CSoilInteractionMTL() { Initialize(); }

  void Initialize() {
    nLong = nLat = -1;
    track_id = qvsoilrdf::k_not_set;
    span_length = 0.0;
    side = 0;
    for (double& value : frame) value = 0.0;
    for (double& value : points) value = 0.0;
  }

  /// Places the record's grid on the span, rows from its start P0 to its end and columns across the belt, and gives
  /// each point its levers and its weight. Point (j, k), both from 0, is
  ///
  ///   position = P0 + frame (j dx, k dy - b/2, 0)     dx = span length/(nLong - 1), dy = b/(nLat - 1)
  ///
  /// A single row or column would divide by 0; parameter lists with one are refused.
  /// @param b  belt width [length]
  /// @param pI, pNode  positions of marker I and of the record's node, from marker R in its axes [length]
  void Calculation_Node_Position(double b, const double* pI, const double* pNode);

  /// Sets the weights alone, which no motion changes (node_weight).
  void set_node_weights();
};

/// Fraction of the force of a point in row j that a node takes: 1 - j/(nLong - 1) on side 1, where the span starts,
/// j/(nLong - 1) on side 0, where it ends. The weights of a span's two records add up to 1.
inline double node_weight(std::int32_t side, int j, int nLong) {
  const double ds = 1.0 / (nLong - 1);
  return side == 1 ? 1.0 - j * ds : j * ds;
}

/// The records of one track: [node][side].
using track_records = std::vector<std::vector<CSoilInteractionMTL>>;

}  // namespace qvsoilinteractionmtl
