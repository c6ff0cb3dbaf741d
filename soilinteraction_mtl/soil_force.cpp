#include "soilinteraction_mtl/soil_force.h"

#include "soilinteraction_mtl/recorded_fault.h"

namespace qvsoilinteractionmtl {

void get_soil_force_mtl(const soil_law& law, const contact_patch& span,
                        qvsoilinteraction::Croad_contact* const* road_contacts,
                        qvsoilinteraction::Csoil_contact* const* soil_contacts, int count,
                        const qv::fault_channel& channel) {
  run_recorded([&] { qvsoilinteraction::set_loads(law, span, road_contacts, soil_contacts, count); }, channel);
}

void get_soil_force_mtl(const soil_law& law, const contact_patch& span, const qvsoilinteraction::motion_rows& motion,
                        qvsoilinteraction::Croad_contact* const* road_contacts,
                        qvsoilinteraction::Csoil_contact* const* soil_contacts, int count,
                        qvsoilinteraction::load_rows& loads, const qv::fault_channel& channel) {
  run_recorded([&] { qvsoilinteraction::set_loads(law, span, motion, road_contacts, soil_contacts, count, loads); },
               channel);
}

}  // namespace qvsoilinteractionmtl
