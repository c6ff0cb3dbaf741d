#include "hydro/patch_pass.h"

namespace qvhydro {
namespace {

/// Keeps an interval that was found.
void keep_interval(bool found, int interval, int& kept) {
  if (found) kept = interval;
}

/// Keeps, in the patch's record, the intervals that this call found for the corners that the drag reached.
void keep_intervals(const Chydro_force_sub& sub, Cpatch& patch) {
  for (int n = 0; n < 3; ++n) {
    const auto node = static_cast<std::size_t>(patch.node_ids[n]);
    const node_intervals& found = sub.intervals[node];
    if (sub.marks[node] & k_off_table) return;
    keep_interval(found.on_wave_col, found.wave_col, patch.wave_col[n]);
    if (!(sub.marks[node] & k_wet)) return;
    keep_interval(found.on_current1_row, found.current1_row, patch.current1_row[n]);
    keep_interval(found.on_current2_row, found.current2_row, patch.current2_row[n]);
  }
}

}  // namespace

patch_sums add_up_patches(const Chydro_force& element, const motion& m, bool finite_levers, Chydro_force_sub& sub) {
  const coefficients k(element, sub);
  drag_block drags(sub, k, m.A6, finite_levers);
  column_block columns(sub, m, k);
  const unsigned char* const marks = sub.marks.data();
  const patch_corners* const corners = sub.corners.data();
  const int patches = sub.patch_count;
  for (int i = 0; i < patches; ++i) {
    const int* node = corners[i].node;
    const unsigned a = marks[node[0]], b = marks[node[1]], c = marks[node[2]];
    if ((a | b | c) & k_changed) keep_intervals(sub, sub.patches[static_cast<std::size_t>(i)]);
    int reached = 0;
    if (a & k_wet) {
      reached = b & k_wet ? c & k_wet ? 3 : 2 : 1;
      drags.add(i, node, reached);
    }
    const unsigned all = a & b & c;
    if (all & (k_high | k_before | k_behind)) {
      columns.add_nothing();
    } else if (all & k_deep) {
      columns.add_whole(i, node, reached);
    } else {
      columns.add(i, node, reached);
    }
  }
  return {drags.finish(), columns.finish()};
}

}  // namespace qvhydro
