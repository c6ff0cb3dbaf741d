#include "hydro/column_block.h"

#include "hydro/water_column.h"

namespace qvhydro {

void column_block::add(double x_first, double x_last, const double* const q[3], double facing, double level) {
  const cutting how = beyond(x_first, x_last, q) ? cutting() : find_cutting(q, level);
  const double sign = sign_of(facing);
  if (how.kind == cutting::out_of_water || sign == 0.0) {
    m_nothing_somewhere = true;
    return;
  }
  const int i = m_count++;
  for (int n = 0; n < 3; ++n) {
    for (int k = 0; k < 3; ++k) q_[n][k][i] = q[n][k];
  }
  m_sign[i] = sign;
  m_level[i] = level;
  if (how.kind == cutting::under_water) return;
  const int c = m_cut_count++;
  m_cuts.patch[c] = i;
  m_cuts.level[c] = level;
  for (int n = 0; n < 3; ++n) {
    for (int k = 0; k < 3; ++k) m_cuts.q[n][k][c] = q[(how.corner + n) % 3][k];
  }
}

QV_WIDE_VECTORS void column_block::find_whole_columns() {
  for (int i = 0; i < m_count; ++i) {
    const pieces found = whole_column({q_[0][0][i], q_[0][1][i], q_[0][2][i]}, {q_[1][0][i], q_[1][1][i], q_[1][2][i]},
                                      {q_[2][0][i], q_[2][1][i], q_[2][2][i]}, m_level[i]);
    m_volume[i] = found.volume;
    m_moment[0][i] = found.moment.x;
    m_moment[1][i] = found.moment.y;
    m_moment[2][i] = found.moment.z;
  }
}

QV_WIDE_VECTORS void column_block::find_cut_columns() {
  for (int c = 0; c < m_cut_count; ++c) {
    const auto& q = m_cuts.q;
    const pieces found =
        cut_column({q[0][0][c], q[0][1][c], q[0][2][c]}, {q[1][0][c], q[1][1][c], q[1][2][c]},
                   {q[2][0][c], q[2][1][c], q[2][2][c]}, q[0][2][c] < m_cuts.level[c], m_cuts.level[c]);
    m_cuts.volume[c] = found.volume;
    m_cuts.moment[0][c] = found.moment.x;
    m_cuts.moment[1][c] = found.moment.y;
    m_cuts.moment[2][c] = found.moment.z;
  }
}

void column_block::finish(const buoyancy_factors& f, displacement& sum) {
  find_whole_columns();
  find_cut_columns();
  for (int c = 0; c < m_cut_count; ++c) {
    const int i = m_cuts.patch[c];
    m_volume[i] = m_cuts.volume[c];
    for (int k = 0; k < 3; ++k) m_moment[k][i] = m_cuts.moment[k][c];
  }
  displacement s = sum;
  for (int i = 0; i < m_count; ++i) {
    const double volume = m_sign[i] * m_volume[i];
    s.volume += volume;
    for (int k = 0; k < 3; ++k) {
      if (volume != 0.0) s.moment[k] += m_sign[i] * m_moment[k][i];
      s.buoyancy[k] += f.up[k] * volume * f.buoyancy * f.L3 * f.force;
    }
  }
  // Dry patches add 0 * factor. The sum is still made, because 0 * NaN or 0 * infinity must make the buoyancy NaN.
  if (m_nothing_somewhere) {
    for (int k = 0; k < 3; ++k) s.buoyancy[k] += f.up[k] * 0.0 * f.buoyancy * f.L3 * f.force;
  }
  sum = s;
  m_count = m_cut_count = 0;
  m_nothing_somewhere = false;
}

}  // namespace qvhydro
