#pragma once

#include "soilinteraction/soil_laws.h"
#include "tests/soilinteraction/library_probe.h"

/// The laws, asked point by point: the one place to follow when their signatures change.
namespace qvtest {

/// A road without a mesh, for the laws.
inline qvsoilrdf::CRoad soil_road(const qvref::soil& s) {
  qvsoilrdf::CRoad road;
  road.soil_type = s.type;
  road.dynamic_sinkage.coefficient_ds = s.coefficient_ds;
  road.dynamic_sinkage.critical_pressure = s.critical_pressure;
  road.dynamic_sinkage.exponent_pr = s.exponent_pr;
  road.dynamic_sinkage.exponent_sd = s.exponent_sd;
  road.bekker.cohesive_coeff = s.kc;
  road.bekker.frictional_coeff = s.kphi;
  road.bekker.sinkage_exponent = s.n;
  road.bekker.damp_ratio = s.damp_ratio;
  road.bekker.boundary_sinkage = s.boundary_sinkage;
  road.wong.cohesion = s.cohesion;
  road.wong.sensitivity = s.sensitivity;
  road.wong.max_shear_disp = s.max_shear_disp;
  road.wong.friction_angle = s.friction_angle;
  road.scale_factor_1 = s.scale_factor_1;
  road.scale_factor_2 = s.scale_factor_2;
  return road;
}

/// A point and its loads.
struct loaded_point {
  qvsoilinteraction::Croad_contact rc;
  qvsoilinteraction::Csoil_contact sc;
};

inline double law_width(const qvref::body& body) { return body.shape == 1 ? std::fmin(body.a, body.w) : body.w; }

inline said_fault load(const qvref::soil& soil, const qvref::body& body, loaded_point& point) {
  const qvsoilrdf::CRoad road = soil_road(soil);
  const qvsoilinteraction::soil_law law(road, law_width(body));
  const qvsoilinteraction::contact_patch patch{body.shape, body.a, body.w, body.nx, body.ny};
  point.sc.soil_type = soil.type;
  qvsoilinteraction::Croad_contact* rc = &point.rc;
  qvsoilinteraction::Csoil_contact* sc = &point.sc;
  return fault_of([&](int& ierr, char** msg) {
    qvsoilinteraction::get_soil_force(law, patch, &rc, &sc, 1, {"", ierr, msg});
  });
}

inline double shear_stress_of(const qvref::soil& soil, double j, double v, double pressure) {
  const qvsoilinteraction::soil_law law(soil_road(soil), 1.0);
  return qvsoilinteraction::get_wong_shear_pressure(law, qvsoilinteraction::shear_strength(law, pressure), j, v);
}

}  // namespace qvtest
