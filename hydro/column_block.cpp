#include "hydro/column_block.h"

#include "hydro/water_column.h"

namespace qvhydro {

void column_block::add(double x_first, double x_last, const double* const q[3], double facing, double level) {
  const cutting how = beyond(x_first, x_last, q) ? cutting() : find_cutting(q, level);
  const double sign = sign_of(facing);
  if (how.kind == cutting::out_of_water || sign == 0.0) {
    nothing_somewhere_ = true;
    return;
  }
  const int i = count_++;
  for (int n = 0; n < 3; ++n) {
    for (int k = 0; k < 3; ++k) q_[n][k][i] = q[n][k];
  }
  sign_[i] = sign;
  level_[i] = level;
  if (how.kind == cutting::under_water) return;
  const int c = cut_count_++;
  cuts_.patch[c] = i;
  cuts_.level[c] = level;
  for (int n = 0; n < 3; ++n) {
    for (int k = 0; k < 3; ++k) cuts_.q[n][k][c] = q[(how.corner + n) % 3][k];
  }
}

QV_WIDE_VECTORS void column_block::find_whole_columns() {
  for (int i = 0; i < count_; ++i) {
    const pieces found = whole_column({q_[0][0][i], q_[0][1][i], q_[0][2][i]}, {q_[1][0][i], q_[1][1][i], q_[1][2][i]},
                                      {q_[2][0][i], q_[2][1][i], q_[2][2][i]}, level_[i]);
    volume_[i] = found.volume;
    moment_[0][i] = found.moment.x;
    moment_[1][i] = found.moment.y;
    moment_[2][i] = found.moment.z;
  }
}

QV_WIDE_VECTORS void column_block::find_cut_columns() {
  for (int c = 0; c < cut_count_; ++c) {
    const auto& q = cuts_.q;
    const pieces found = cut_column({q[0][0][c], q[0][1][c], q[0][2][c]}, {q[1][0][c], q[1][1][c], q[1][2][c]},
                                    {q[2][0][c], q[2][1][c], q[2][2][c]}, q[0][2][c] < cuts_.level[c], cuts_.level[c]);
    cuts_.volume[c] = found.volume;
    cuts_.moment[0][c] = found.moment.x;
    cuts_.moment[1][c] = found.moment.y;
    cuts_.moment[2][c] = found.moment.z;
  }
}

void column_block::finish(const buoyancy_factors& f, displacement& sum) {
  find_whole_columns();
  find_cut_columns();
  for (int c = 0; c < cut_count_; ++c) {
    const int i = cuts_.patch[c];
    volume_[i] = cuts_.volume[c];
    for (int k = 0; k < 3; ++k) moment_[k][i] = cuts_.moment[k][c];
  }
  displacement s = sum;
  for (int i = 0; i < count_; ++i) {
    const double volume = sign_[i] * volume_[i];
    s.volume += volume;
    for (int k = 0; k < 3; ++k) {
      if (volume != 0.0) s.moment[k] += sign_[i] * moment_[k][i];
      s.buoyancy[k] += f.up[k] * volume * f.buoyancy * f.L3 * f.force;
    }
  }
  // Dry patches add 0 * factor. The sum is still made, because 0 * NaN or 0 * infinity must make the buoyancy NaN.
  if (nothing_somewhere_) {
    for (int k = 0; k < 3; ++k) s.buoyancy[k] += f.up[k] * 0.0 * f.buoyancy * f.L3 * f.force;
  }
  sum = s;
  count_ = cut_count_ = 0;
  nothing_somewhere_ = false;
}

}  // namespace qvhydro
