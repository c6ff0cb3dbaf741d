#include "hydro/wave_table.h"

namespace qvhydro {

time_blend blend_at(wave_table& wave, double time, bool set_up_call) {
  time_blend blend{wave.time_index, 0.0, 0.0};
  if (set_up_call) return blend;
  const interval_axis& rows = wave.wave_time;
  int& i = blend.row;
  if (rows[i] <= time) {
    if (time < rows.last()) {
      while (!rows.holds(i, time)) ++i;  // this ends: row i is not later than `time`, and the last row is later
      blend.w0 = (rows[i + 1] - time) / (rows[i + 1] - rows[i]);
      blend.w1 = 1.0 - blend.w0;
    } else {
      i = wave.wave_rows - 1;
      blend.w0 = 1.0;
    }
  } else if (time < rows[i]) {
    blend.w0 = 1.0;
  }
  wave.time_index = i;
  return blend;
}

}  // namespace qvhydro
