#include "hydro/motion.h"

#include "common/call/requests.h"
#include "common/kernels/kernels.h"

namespace qvhydro {

motion fetch_motion(void* handle, const Chydro_force_sub& sub) {
  const int m4 = sub.force_marker, m5 = sub.water_marker, m6 = sub.body_marker;
  motion m;
  qv::fetch_vector(handle, "TDISP", {m4}, m.p4, 3);
  qv::fetch_vector(handle, "TDISP", {m6}, m.p6, 3);
  qv::fetch_vector(handle, "TDISP", {m5}, m.p5, 3);
  qv::fetch_vector(handle, "AM", {m6}, m.A6, 9);
  qv::fetch_vector(handle, "AM", {m5}, m.A5, 9);
  qv::mattrmat(m.A5, m.A6, m.R);
  qv::fetch_vector(handle, "TDISP", {m6, m5, m5}, m.d, 3);
  qv::fetch_vector(handle, "TVEL", {m6, m5, m5}, m.v, 3);
  double global_spin[3] = {};
  qv::fetch_vector(handle, "RVEL", {m6}, global_spin, 3);
  qv::mattrvec(m.A6, global_spin, m.spin);
  return m;
}

}  // namespace qvhydro
