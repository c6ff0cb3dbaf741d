#include "soilinteraction_mtl/containers.h"

namespace qvsoilinteractionmtl {

std::vector<qvsoilrdf::CRoad> s_3Dsoil_roads;
by_road_and_track<track_records> s_MTLsoil_forces;
by_road_and_track<contact_sum> s_MTLsoil_contact_forces_Sum;
by_road_and_track<node_sum> s_MTLsoil_shear_forces_Sum;
by_road_and_track<std::vector<node_sum>> s_MTLsoil_normal_forces_Sum;
by_road_and_track<node_sum> s_MTLsoil_shear_forces_Sum_p;
by_road_and_track<std::vector<node_sum>> s_MTLsoil_normal_forces_Sum_p;
by_road_and_track<std::vector<double>> s_MTLsoil_Input;

}  // namespace qvsoilinteractionmtl
