#include "hydro/node_pass.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "common/kernels/vectors.h"
#include "hydro/lanes.h"

namespace qvhydro {
namespace {

using qv::k_block;
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
  vectors position;
  double share[k_block];  ///< of the wave table's column before the node: 1 there, 0 at the next one
};

/// The wet nodes of a block.
struct wet_block {
  int count = 0;
  int index[k_block];  ///< in the block of all nodes
  vectors local;       ///< position, body marker frame
  vectors water;       ///< velocity of the water, water frame
  vectors velocity;    ///< relative to the water, global axes
  vectors lever;       ///< from the force marker, global axes

  /// Lets the first node stand in for those that are missing in the last vector.
  void pad() {
    for (int w = count; w < whole_vectors(count); ++w) {
      for (vectors* v : {&local, &water}) v->x[w] = v->x[0], v->y[w] = v->y[0], v->z[w] = v->z[0];
    }
  }
};

/// The loops below do the same operations in the same order as the kernels of one vector.
/// @param x, y, z  the nodes of the block, body marker frame; readable up to the end of the last vector
QV_WIDE_VECTORS void find_positions(const motion& m, const double* x, const double* y, const double* z, node_block& b) {
  const double *R = m.R, *d = m.d;
  const int count = in_whole_vectors(whole_vectors(b.count));
  QV_ROWS_APART
  for (int i = 0; i < count; ++i) {
    b.position.x[i] = R[0] * x[i] + R[3] * y[i] + R[6] * z[i] + d[0];
    b.position.y[i] = R[1] * x[i] + R[4] * y[i] + R[7] * z[i] + d[1];
    b.position.z[i] = R[2] * x[i] + R[5] * y[i] + R[8] * z[i] + d[2];
  }
}

/// @return whether every lever is a finite number
QV_WIDE_VECTORS bool find_velocities(const motion& m, wet_block& b) {
  const double *R = m.R, *A5 = m.A5, *A6 = m.A6;
  const int count = in_whole_vectors(whole_vectors(b.count));
  std::int64_t infinite = 0;
  QV_ROWS_APART
  for (int i = 0; i < count; ++i) {
    const double x = b.local.x[i], y = b.local.y[i], z = b.local.z[i];
    // By the turning of the body, in its axes; relative to the water, in the water frame; the same in global axes.
    const double tx = m.spin[1] * z - m.spin[2] * y;
    const double ty = m.spin[2] * x - m.spin[0] * z;
    const double tz = m.spin[0] * y - m.spin[1] * x;
    const double rx = R[0] * tx + R[3] * ty + R[6] * tz + m.v[0] - b.water.x[i];
    const double ry = R[1] * tx + R[4] * ty + R[7] * tz + m.v[1] - b.water.y[i];
    const double rz = R[2] * tx + R[5] * ty + R[8] * tz + m.v[2] - b.water.z[i];
    b.velocity.x[i] = A5[0] * rx + A5[3] * ry + A5[6] * rz;
    b.velocity.y[i] = A5[1] * rx + A5[4] * ry + A5[7] * rz;
    b.velocity.z[i] = A5[2] * rx + A5[5] * ry + A5[8] * rz;
    const double lx = A6[0] * x + A6[3] * y + A6[6] * z + m.p6[0] - m.p4[0];
    const double ly = A6[1] * x + A6[4] * y + A6[7] * z + m.p6[1] - m.p4[1];
    const double lz = A6[2] * x + A6[5] * y + A6[8] * z + m.p6[2] - m.p4[2];
    b.lever.x[i] = lx;
    b.lever.y[i] = ly;
    b.lever.z[i] = lz;
    infinite |= 0.0 * lx + 0.0 * ly + 0.0 * lz == 0.0 ? 0 : 1;
  }
  return infinite == 0;
}

/// Interpolation in a table of the CURRENT file for nodes that are where they were, between the same keys. For others
/// see current_at.
class current_rows {
public:
  current_rows(const current_table& table, const vectors& position)
      : m_keys(table.key.entries()),
        m_values(table.value.data()),
        m_at(table.mode == 1 ? position.x : position.y),
        m_increasing(table.key.increasing()) {}

  /// Whether node i of the block lies between the keys j and j + 1, and between no others.
  QV_IN_LOOPS bool holds(int i, int j) const { return m_increasing && m_keys[j] <= m_at[i] && m_at[i] < m_keys[j + 1]; }
  QV_IN_LOOPS double at(int i, int j) const {
    const double a = (m_keys[j + 1] - m_at[i]) / (m_keys[j + 1] - m_keys[j]);
    return m_values[j] * a + m_values[j + 1] * (1.0 - a);
  }

private:
  const double *m_keys, *m_values, *m_at;
  bool m_increasing;
};

class node_pass {
public:
  node_pass(const Chydro_force& element, const time_blend& when, const motion& m, Chydro_force_sub& mesh)
      : m_element(element), m_when(when), m_(m), m_mesh(mesh) {}

  /// @return whether every lever is a finite number
  bool run() {
    const auto nodes = static_cast<std::size_t>(m_mesh.nodes_in_use);
    for (m_first = 0; m_first < nodes; m_first += k_block) {
      m_nodes.count = static_cast<int>(std::min<std::size_t>(k_block, nodes - m_first));
      find_positions(m_, m_mesh.node_x.data() + m_first, m_mesh.node_y.data() + m_first, m_mesh.node_z.data() + m_first,
                     m_nodes);
      find_surface();
      find_water();
      m_wet.pad();
      m_infinite_lever |= !find_velocities(m_, m_wet);
      store_flows();
    }
    mark_heights();
    return !m_infinite_lever;
  }

private:
  void find_surface();
  void find_water();
  void store_flows();
  void mark_heights();

  const Chydro_force& m_element;
  const time_blend& m_when;
  const motion& m_;
  Chydro_force_sub& m_mesh;
  std::size_t m_first = 0;  ///< node of the block
  node_block m_nodes;
  wet_block m_wet;
  bool m_infinite_lever = false;
  bool m_no_numbers = false;               ///< some elevation is none
  double m_highest = 0.0, m_lowest = 0.0;  ///< of the elevations so far, and of the 0 of corners that do not count
};

/// The marks, and whether the node is of another kind (wet, dry or off the table) than it was.
QV_IN_LOOPS unsigned char with_change(int marks, int last) {
  const bool other_kind = ((marks ^ last) & (k_wet | k_off_table)) != 0;
  return static_cast<unsigned char>(other_kind ? marks | k_changed : marks);
}

/// Stores pairs, because pairs are read: a processor hands a number on to a load only if one store holds all of it.
QV_IN_LOOPS void store(double x, double y, double z, double elevation, node_place& place) {
  put(two_lanes{x, y}, place.position);
  put(two_lanes{z, elevation}, place.position + 2);
}

// The compiler takes a byte that is stored for one of whatever else stands in memory, so these loops hold all they need
// in variables of their own.

/// Finds how high the water stands at the nodes of the block, and which of them are wet.
void node_pass::find_surface() {
  const blended_rows table(m_element.wave_elevation, m_when);
  const interval_axis& wave_x = m_element.wave_x;
  const double* const axis = wave_x.entries();
  const bool increasing = wave_x.increasing();
  const double first = m_element.wave_x_first, last = m_element.wave_x_last;
  const vectors& position = m_nodes.position;
  node_place* const places = m_mesh.places.data() + m_first;
  node_intervals* const intervals = m_mesh.intervals.data() + m_first;
  unsigned char* const marks = m_mesh.marks.data() + m_first;
  double highest = m_highest, lowest = m_lowest;
  bool no_numbers = m_no_numbers;
  const int count = m_nodes.count;
  int wet = 0;
  for (int i = 0; i < count; ++i) {
    const double x = position.x[i], z = position.z[i];
    node_place& place = places[i];
    if (x < 0.0 || x >= last) {
      store(x, position.y[i], z, 0.0, place);
      marks[i] = with_change(k_off_table | (x < first ? k_before : 0) | (x > last ? k_behind : 0), marks[i]);
      continue;
    }
    node_intervals& found = intervals[i];
    int column = found.wave_col, mark = found.on_wave_col ? 0 : k_changed;
    if (!increasing || !(axis[column] <= x && x < axis[column + 1])) {
      column = wave_x.find(x, column);
      if (column >= 0) found.wave_col = column;
      mark = k_changed | (x < first ? k_before : 0) | (x > last ? k_behind : 0);
    }
    found.on_wave_col = column >= 0;
    double elevation = 0.0;
    m_nodes.share[i] = 0.0;
    if (column >= 0) {
      const double a = (axis[column + 1] - x) / (axis[column + 1] - axis[column]), b = 1.0 - a;
      m_nodes.share[i] = a;
      elevation = table.at(column, a, b);
      highest = highest < elevation ? elevation : highest;
      lowest = elevation < lowest ? elevation : lowest;
      no_numbers |= elevation != elevation;
    }
    store(x, position.y[i], z, elevation, place);
    const bool dry = elevation < z;
    marks[i] = with_change(mark | (dry ? 0 : k_wet), marks[i]);
    m_wet.index[wet] = i;
    wet += !dry;
  }
  m_wet.count = wet;
  m_highest = highest;
  m_lowest = lowest;
  m_no_numbers = no_numbers;
}

/// Finds how the water moves at the wet nodes of the block.
void node_pass::find_water() {
  const blended_rows table(m_element.wave_velocity, m_when);
  const current_rows along_x(m_element.current1, m_nodes.position), along_y(m_element.current2, m_nodes.position);
  node_intervals* const intervals = m_mesh.intervals.data() + m_first;
  unsigned char* const marks = m_mesh.marks.data() + m_first;
  const double* const local_x = m_mesh.node_x.data() + m_first;
  const double* const local_y = m_mesh.node_y.data() + m_first;
  const double* const local_z = m_mesh.node_z.data() + m_first;
  const int count = m_wet.count;
  for (int w = 0; w < count; ++w) {
    const int i = m_wet.index[w];
    m_wet.local.x[w] = local_x[i];
    m_wet.local.y[w] = local_y[i];
    m_wet.local.z[w] = local_z[i];
    node_intervals& found = intervals[i];
    const double a = m_nodes.share[i], b = 1.0 - a;
    m_wet.water.z[w] = found.on_wave_col ? table.at(found.wave_col, a, b) : 0.0;
    if (found.on_both_currents && along_x.holds(i, found.current1_row) && along_y.holds(i, found.current2_row)) {
      m_wet.water.x[w] = along_x.at(i, found.current1_row);
      m_wet.water.y[w] = along_y.at(i, found.current2_row);
    } else {
      const double x = m_nodes.position.x[i], y = m_nodes.position.y[i];
      m_wet.water.x[w] = current_at(m_element.current1, x, y, found.current1_row, found.on_current1_row);
      m_wet.water.y[w] = current_at(m_element.current2, x, y, found.current2_row, found.on_current2_row);
      found.on_both_currents = found.on_current1_row && found.on_current2_row;
      marks[i] |= k_changed;
    }
  }
}

QV_WIDE_VECTORS void node_pass::store_flows() {
  const vectors &velocity = m_wet.velocity, &lever = m_wet.lever;
  node_flow* const flows = m_mesh.flows.data() + m_first;
  const int count = m_wet.count;
  int w = 0;
  for (; w + 1 < count; w += 2) {
    const two_columns four(velocity.x + w, velocity.y + w, velocity.z + w, lever.x + w);
    const two_lanes y = pair_at(lever.y + w), z = pair_at(lever.z + w);
    node_flow &left = flows[m_wet.index[w]], &right = flows[m_wet.index[w + 1]];
    four.left.put(left.velocity);
    four.right.put(right.velocity);
    put(__builtin_shufflevector(y, z, 0, 2), left.lever + 1);
    put(__builtin_shufflevector(y, z, 1, 3), right.lever + 1);
  }
  if (w < count) {
    take(velocity, w, flows[m_wet.index[w]].velocity);
    take(lever, w, flows[m_wet.index[w]].lever);
  }
}

/// Marks the nodes that are above, or not above, the water level of every patch. A level is the mean of three
/// elevations or zeros; rounding keeps the order, so no level is outside of the means of equal bounds.
void node_pass::mark_heights() {
  const double highest = (m_highest + m_highest + m_highest) / 3.0, lowest = (m_lowest + m_lowest + m_lowest) / 3.0;
  if (m_no_numbers || !std::isfinite(highest - lowest)) return;
  const node_place* const places = m_mesh.places.data();
  unsigned char* const marks = m_mesh.marks.data();
  const int nodes = m_mesh.nodes_in_use;
  for (int i = 0; i < nodes; ++i) {
    const double z = places[i].position[2];
    const int mark = (z > highest) * k_high | (z <= lowest) * k_deep;
    marks[i] = static_cast<unsigned char>(marks[i] | mark);
  }
}

}  // namespace

bool evaluate_nodes(const Chydro_force& element, const time_blend& when, const motion& m, Chydro_force_sub& sub) {
  return node_pass(element, when, m, sub).run();
}

}  // namespace qvhydro
