#include "hydro/column_block.h"

#include "hydro/lanes.h"
#include "hydro/water_column.h"

namespace qvhydro {

namespace {

/// The mean of the elevations of three corners. Those behind the first that is not wet count as 0.
QV_IN_LOOPS double mean_level(double first, double second, double third, std::int64_t reached) {
  return (first + (reached >= 1 ? second : 0.0) + (reached >= 2 ? third : 0.0)) / 3.0;
}

}  // namespace

void column_block::add(int patch, const int* node, int reached) {
  const node_place* const places = m_mesh.places.data();
  const node_place &a = places[node[0]], &b = places[node[1]], &c = places[node[2]];
  const double level = mean_level(a.elevation, b.elevation, c.elevation, reached);
  const double* const q[3] = {a.position, b.position, c.position};
  const cutting how = find_cutting(q, level);
  if (how.kind == cutting::out_of_water) return add_nothing();
  if (how.kind == cutting::under_water) return add_whole(patch, node, reached);
  m_cut.level[m_cut.count] = level;
  m_place[m_count++] = ~m_cut.count;
  m_cut.take(patch, node[how.corner], node[(how.corner + 1) % 3], node[(how.corner + 2) % 3], reached);
  if (m_count == k_patches) finish_block();
}

const displacement& column_block::finish() {
  if (m_count > 0) finish_block();
  // Dry patches add 0 * factor. The sum is still made, because 0 * NaN or 0 * infinity must make the buoyancy NaN.
  const buoyancy_factors& f = m_factors;
  if (m_nothing_somewhere) {
    for (int k = 0; k < 3; ++k) m_sums.buoyancy[k] += f.up[k] * 0.0 * f.buoyancy * f.L3 * f.force;
  }
  return m_sums;
}

void column_block::finish_block() {
  if (m_whole.count > 0) {
    gather(m_whole);
    find_levels();
    find_whole_columns();
    find_loads(m_whole);
  }
  if (m_cut.count > 0) {
    gather(m_cut);
    find_cut_columns();
    find_loads(m_cut);
  }
  add_up();
  m_count = m_whole.count = m_cut.count = 0;
}

QV_WIDE_VECTORS void column_block::gather(columns& c) {
  const int count = in_whole_vectors(whole_vectors(c.count));
  for (int i = c.count; i < count; ++i) {
    c.patch[i] = c.patch[0];
    for (int n = 0; n < 3; ++n) c.node[n][i] = c.node[n][0];
    c.reached[i] = c.reached[0];
    c.level[i] = c.level[0];
  }
  const node_place* const places = m_mesh.places.data();
  const patch_plane* const planes = m_mesh.planes.data();
  for (int i = 0; i < count; i += 4) {
    const double* at[4];
    for (int n = 0; n < 3; ++n) {
      for (int j = 0; j < 4; ++j) at[j] = places[c.node[n][i + j]].position;
      to_rows(at, 0, &c.q[n][0][i], &c.q[n][1][i]);
      to_rows(at, 2, &c.q[n][2][i], &c.elevation[n][i]);
    }
    for (int j = 0; j < 4; ++j) at[j] = planes[c.patch[i + j]].normal;
    double area[4];
    to_rows(at, 0, &c.normal[0][i], &c.normal[1][i]);
    to_rows(at, 2, &c.normal[2][i], area);
  }
}

QV_WIDE_VECTORS void column_block::find_levels() {
  columns& c = m_whole;
  const int count = in_whole_vectors(whole_vectors(c.count));
  for (int i = 0; i < count; ++i)
    c.level[i] = mean_level(c.elevation[0][i], c.elevation[1][i], c.elevation[2][i], c.reached[i]);
}

QV_WIDE_VECTORS void column_block::find_whole_columns() {
  columns& c = m_whole;
  const int count = in_whole_vectors(whole_vectors(c.count));
  for (int i = 0; i < count; ++i) {
    const pieces found =
        whole_column({c.q[0][0][i], c.q[0][1][i], c.q[0][2][i]}, {c.q[1][0][i], c.q[1][1][i], c.q[1][2][i]},
                     {c.q[2][0][i], c.q[2][1][i], c.q[2][2][i]}, c.level[i]);
    c.volume[i] = found.volume;
    c.moment[0][i] = found.moment.x;
    c.moment[1][i] = found.moment.y;
    c.moment[2][i] = found.moment.z;
  }
}

QV_WIDE_VECTORS void column_block::find_cut_columns() {
  columns& c = m_cut;
  const int count = in_whole_vectors(whole_vectors(c.count));
  for (int i = 0; i < count; ++i) {
    const pieces found =
        cut_column({c.q[0][0][i], c.q[0][1][i], c.q[0][2][i]}, {c.q[1][0][i], c.q[1][1][i], c.q[1][2][i]},
                   {c.q[2][0][i], c.q[2][1][i], c.q[2][2][i]}, c.q[0][2][i] < c.level[i], c.level[i]);
    c.volume[i] = found.volume;
    c.moment[0][i] = found.moment.x;
    c.moment[1][i] = found.moment.y;
    c.moment[2][i] = found.moment.z;
  }
}

/// Gives volumes and moments the signs of their patches, and finds the buoyancies.
QV_WIDE_VECTORS void column_block::find_loads(columns& c) {
  const double z[3] = {m_R[2], m_R[5], m_R[8]};  // the water's z axis in the body marker frame
  const double up[3] = {m_factors.up[0], m_factors.up[1], m_factors.up[2]};
  const double buoyancy = m_factors.buoyancy, L3 = m_factors.L3, force = m_factors.force;
  const int count = in_whole_vectors(whole_vectors(c.count));
  QV_ROWS_APART
  for (int i = 0; i < count; ++i) {
    const double sign = sign_of(z[0] * c.normal[0][i] + z[1] * c.normal[1][i] + z[2] * c.normal[2][i]);
    const double volume = sign == 0.0 ? 0.0 : sign * c.volume[i];
    c.volume[i] = volume;
    for (int k = 0; k < 3; ++k) {
      const double moment = sign * c.moment[k][i];
      c.moment[k][i] = volume == 0.0 ? 0.0 : moment;
      c.buoyancy[k][i] = up[k] * volume * buoyancy * L3 * force;
    }
  }
}

void column_block::add_up() {
  if (m_cut.count == 0) return add_up_whole();
  for (int i = 0; i < m_count; ++i) {
    const int place = m_place[i];
    if (place < 0) {
      m_cut.add_to(m_sums, ~place);
    } else {
      m_whole.add_to(m_sums, place);
    }
  }
}

/// Adds up a block of whole columns, which stand in the order of the patches.
QV_WIDE_VECTORS void column_block::add_up_whole() {
  const columns& c = m_whole;
  displacement& s = m_sums;
  double sums[8] = {s.volume, s.moment[0], s.moment[1], s.moment[2], s.buoyancy[0], s.buoyancy[1], s.buoyancy[2], 0.0};
  four_lanes volume_and_moment(sums), buoyancy(sums + 4);
  const int pairs = c.count / 2 * 2;
  for (int i = 0; i < pairs; i += 2) {
    const two_columns v(c.volume, c.moment[0], c.moment[1], c.moment[2], i);
    const two_columns b(c.buoyancy[0], c.buoyancy[1], c.buoyancy[2], c.volume, i);
    volume_and_moment += v.left, buoyancy += b.left;
    volume_and_moment += v.right, buoyancy += b.right;
  }
  volume_and_moment.put(sums);
  buoyancy.put(sums + 4);
  s = {sums[0], {sums[1], sums[2], sums[3]}, {sums[4], sums[5], sums[6]}};
  if (pairs < c.count) c.add_to(s, pairs);
}

}  // namespace qvhydro
