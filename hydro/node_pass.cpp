#include "hydro/node_pass.h"

#include <algorithm>

#include "common/kernels/vectors.h"

namespace qvhydro {
namespace {

using qv::k_block;
using qv::rotate;
using qv::vectors;

/// The water's velocity from one table of the CURRENT file at x, y of the water frame, interpolated linearly.
/// Mode 1: a table over x, 0 outside of it. Any other mode: a table over y, held at its ends.
/// @param row    where the last search ended; receives the interval found now
/// @param found  whether there is one
double current_at(const current_table& table, double x, double y, int& row, bool& found) {
  const interval_axis& keys = table.key;
  const int last = keys.count() - 1;
  const bool clamped = table.mode != 1;
  const double key = clamped ? y : x;
  found = true;
  if (clamped && key < keys[0]) {
    row = 0;
    return table.value[0];
  }
  if (clamped && key >= keys[last]) {
    row = last;
    return table.value[static_cast<std::size_t>(last)];
  }
  const int j = keys.find(key, row);
  found = j >= 0;
  if (!found) return clamped ? key : 0.0;  // only a NaN is in no interval of a clamped table; it travels on
  row = j;
  const double a = (keys[j + 1] - key) / (keys[j + 1] - keys[j]);
  const double* value = table.value.data() + j;
  return value[0] * a + value[1] * (1.0 - a);
}

/// Nodes side by side, for loops that are vectorised.
struct node_block {
  int count = 0;
  vectors local, position;
};

/// The wet nodes of a block.
struct wet_block {
  int count = 0;
  int index[k_block];  ///< in the block of all nodes
  vectors local;       ///< position, body marker frame
  vectors water;       ///< velocity of the water, water frame
  vectors velocity;    ///< relative to the water, global axes
  vectors lever;       ///< from the force marker, global axes
};

QV_WIDE_VECTORS void find_positions(const motion& m, node_block& b) {
  rotate(m.R, b.local, b.position, b.count);
  for (int i = 0; i < b.count; ++i) {
    b.position.x[i] += m.d[0];
    b.position.y[i] += m.d[1];
    b.position.z[i] += m.d[2];
  }
}

QV_WIDE_VECTORS void find_velocities(const motion& m, wet_block& b) {
  vectors turning, relative;  // body marker frame; water frame
  for (int i = 0; i < b.count; ++i) {
    turning.x[i] = m.spin[1] * b.local.z[i] - m.spin[2] * b.local.y[i];
    turning.y[i] = m.spin[2] * b.local.x[i] - m.spin[0] * b.local.z[i];
    turning.z[i] = m.spin[0] * b.local.y[i] - m.spin[1] * b.local.x[i];
  }
  rotate(m.R, turning, relative, b.count);
  for (int i = 0; i < b.count; ++i) {
    relative.x[i] = relative.x[i] + m.v[0] - b.water.x[i];
    relative.y[i] = relative.y[i] + m.v[1] - b.water.y[i];
    relative.z[i] = relative.z[i] + m.v[2] - b.water.z[i];
  }
  rotate(m.A5, relative, b.velocity, b.count);
  rotate(m.A6, b.local, b.lever, b.count);
  for (int i = 0; i < b.count; ++i) {
    b.lever.x[i] = b.lever.x[i] + m.p6[0] - m.p4[0];
    b.lever.y[i] = b.lever.y[i] + m.p6[1] - m.p4[1];
    b.lever.z[i] = b.lever.z[i] + m.p6[2] - m.p4[2];
  }
}

class node_pass {
public:
  node_pass(const Chydro_force& element, const time_blend& when, const motion& m)
      : m_element(element), m_elevation(element.wave_elevation, when), m_rising(element.wave_velocity, when), m_(m) {}

  void run(const Cnode* nodes, node_state* states, int count) {
    m_nodes.count = count;
    for (int i = 0; i < count; ++i) {
      m_nodes.local.x[i] = nodes[i].x;
      m_nodes.local.y[i] = nodes[i].y;
      m_nodes.local.z[i] = nodes[i].z;
    }
    find_positions(m_, m_nodes);
    m_wet.count = 0;
    for (int i = 0; i < count; ++i) find_surface(i, states[i]);
    find_velocities(m_, m_wet);
    for (int w = 0; w < m_wet.count; ++w) {
      node_state& s = states[m_wet.index[w]];
      take(m_wet.velocity, w, s.velocity);
      take(m_wet.lever, w, s.lever);
    }
  }

private:
  /// Finds where node i is and how high the water stands there; a wet node joins the wet block with the water's flow.
  void find_surface(int i, node_state& s) {
    take(m_nodes.position, i, s.position);
    const double x = s.position[0], y = s.position[1];
    s.elevation = 0.0;
    s.on_wave_col = false;
    s.where = node_state::off_table;
    if (x < 0.0 || x >= m_element.wave_x_last) return;
    double rising = 0.0;
    const int j = m_element.wave_x.find(x, s.wave_col);
    if (j >= 0) {
      const interval_axis& axis = m_element.wave_x;
      s.on_wave_col = true;
      s.wave_col = j;
      const double a = (axis[j + 1] - x) / (axis[j + 1] - axis[j]), b = 1.0 - a;
      s.elevation = m_elevation.at(j, a, b);
      rising = m_rising.at(j, a, b);
    }
    s.where = node_state::dry;
    if (s.elevation < s.position[2]) return;
    s.where = node_state::wet;
    const int w = m_wet.count++;
    m_wet.index[w] = i;
    m_wet.local.x[w] = m_nodes.local.x[i];
    m_wet.local.y[w] = m_nodes.local.y[i];
    m_wet.local.z[w] = m_nodes.local.z[i];
    m_wet.water.x[w] = current_at(m_element.current1, x, y, s.current1_row, s.on_current1_row);
    m_wet.water.y[w] = current_at(m_element.current2, x, y, s.current2_row, s.on_current2_row);
    m_wet.water.z[w] = rising;
  }

  const Chydro_force& m_element;
  blended_rows m_elevation, m_rising;  ///< of the water: height of its surface, vertical velocity
  const motion& m_;
  node_block m_nodes;
  wet_block m_wet;
};

}  // namespace

void evaluate_nodes(const Chydro_force& element, const time_blend& when, const motion& m, Chydro_force_sub& sub) {
  node_pass pass(element, when, m);
  for (std::size_t first = 0; first < sub.nodes.size(); first += k_block) {
    const auto count = static_cast<int>(std::min<std::size_t>(k_block, sub.nodes.size() - first));
    pass.run(sub.nodes.data() + first, sub.node_states.data() + first, count);
  }
}

}  // namespace qvhydro
