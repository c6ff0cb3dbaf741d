#include "hydro/patch_pass.h"

namespace qvhydro {
namespace {

/// Keeps an interval that was found. Most are what they were at the last call; memory that is not written to need not
/// be written back.
void keep_interval(bool found, int interval, int& kept) {
  if (found && kept != interval) kept = interval;
}

class patch_pass {
public:
  patch_pass(const Chydro_force& element, const motion& m, const coefficients& k)
      : m_element(element), m_(m), k_(k), m_factors{{m.A5[6], m.A5[7], m.A5[8]}, k.buoyancy, k.L3, k.force} {}

  patch_sums run(Chydro_force_sub& sub) {
    for (int i = 0; i < sub.patch_count; ++i) add(sub, sub.patches[static_cast<std::size_t>(i)]);
    m_drags.finish(k_, m_.A6, m_sums.drag);
    m_columns.finish(m_factors, m_sums.displaced);
    return m_sums;
  }

private:
  void add(const Chydro_force_sub& sub, Cpatch& patch);
  void add_drag(const Cpatch& patch, const node_state* const corners[3], int reached);
  void add_column(const Cpatch& patch, const node_state* const corners[3], double level);

  const Chydro_force& m_element;
  const motion& m_;
  const coefficients& k_;
  buoyancy_factors m_factors;
  drag_block m_drags;
  column_block m_columns;
  patch_sums m_sums;
};

void patch_pass::add(const Chydro_force_sub& sub, Cpatch& patch) {
  const node_state* corners[3];
  for (int n = 0; n < 3; ++n) corners[n] = &sub.node_states[static_cast<std::size_t>(patch.node_ids[n])];
  double elevations[3] = {};
  int reached = 0;  // wet corners before the first that is not wet
  for (int n = 0; n < 3; ++n) {
    const node_state& s = *corners[n];
    if (s.where == node_state::off_table) break;
    keep_interval(s.on_wave_col, s.wave_col, patch.wave_col[n]);
    elevations[n] = s.elevation;
    if (s.where == node_state::dry) break;
    keep_interval(s.on_current1_row, s.current1_row, patch.current1_row[n]);
    keep_interval(s.on_current2_row, s.current2_row, patch.current2_row[n]);
    ++reached;
  }
  if (reached > 0) add_drag(patch, corners, reached);
  add_column(patch, corners, (elevations[0] + elevations[1] + elevations[2]) / 3.0);
}

void patch_pass::add_drag(const Cpatch& patch, const node_state* const corners[3], int reached) {
  m_drags.add(patch.normal, patch.area, corners, reached);
  if (m_drags.full()) m_drags.finish(k_, m_.A6, m_sums.drag);
}

void patch_pass::add_column(const Cpatch& patch, const node_state* const corners[3], double level) {
  const double facing = m_.R[2] * patch.normal[0] + m_.R[5] * patch.normal[1] + m_.R[8] * patch.normal[2];
  const double* const q[3] = {corners[0]->position, corners[1]->position, corners[2]->position};
  m_columns.add(m_element.wave_x_first, m_element.wave_x_last, q, facing, level);
  if (m_columns.full()) m_columns.finish(m_factors, m_sums.displaced);
}

}  // namespace

patch_sums add_up_patches(const Chydro_force& element, const motion& m, Chydro_force_sub& sub) {
  const coefficients k(element, sub);
  return patch_pass(element, m, k).run(sub);
}

}  // namespace qvhydro
