#pragma once

#include <cstdint>
#include <vector>

#include "soilinteraction/contact_records.h"

/// Records of the contact between a track's belt and a soil road: those of a body's grid points, extended by what a
/// belt between two nodes adds.
namespace qvsoilinteractionmtl {

/// Geometry and history of one belt point. On a hard road its shear equals the normal force (`concrete_friction` 1).
class Croad_contact_mtl : public qvsoilinteraction::Croad_contact {
public:
  double lever_marker[3];  ///< of the point from marker I, axes of marker R
  double lever_node[3];    ///< of the point from the centre of the record's node, axes of marker R

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
  double shear_work[3];    ///< the same share before it goes there
  double normal_share[6];  ///< share of the normal and of the second shear force, then three zeros
  double node_weight;      ///< fraction of the point's force that the node takes

  Csoil_contact_mtl() { Initialize(); }

  void Initialize() {
    Csoil_contact::Initialize();
    for (int c = 0; c < 6; ++c) shear_share[c] = normal_share[c] = 0.0;
    for (double& value : shear_work) value = 0.0;
    node_weight = 0.0;
  }
};

/// One end of a belt span: the record of (node, side). The span from node i to node i + 1 is held by (i, side 1),
/// where it starts and whose points are evaluated, and by (i + 1, side 0), where it ends and whose grid takes that
/// node's share of each point's force.
class CSoilInteractionMTL {
public:
  std::vector<std::vector<Croad_contact_mtl>> road_contacts;  ///< nLong rows of nLat points
  std::vector<std::vector<Csoil_contact_mtl>> soil_contacts;
  std::int32_t nLong;
  std::int32_t nLat;
  std::int32_t track_id;  ///< the track's index once the record is set up
  double span_length;
  std::int32_t side;  ///< 0: a span ends at this node, 1: a span starts there
  double frame[9];    ///< along the span, along the axle, normal of the belt (away from the ground); axes of marker R
  double points[6];   ///< where the span starts and where it ends, from marker R in its axes

  CSoilInteractionMTL() { Initialize(); }

  void Initialize() {
    nLong = nLat = -1;
    track_id = qvsoilrdf::k_not_set;
    span_length = 0.0;
    side = 0;
    for (double& value : frame) value = 0.0;
    for (double& value : points) value = 0.0;
  }

  /// Places the record's grid on the span, rows from its start to its end and columns across the belt, and gives each
  /// point its levers and its weight.
  /// @param b  belt width    @param pI, pNode  position of marker I and of the record's node, from marker R in its axes
  void Calculation_Node_Position(double b, const double* pI, const double* pNode);

  /// The weights alone, which no motion changes: from 1 to 0 along the span on side 1, from 0 to 1 on side 0.
  void set_node_weights();
};

/// The records of one track, by node and side.
using track_records = std::vector<std::vector<CSoilInteractionMTL>>;

}  // namespace qvsoilinteractionmtl
