#include "soilinteraction_mtl/evaluation.h"

#include <algorithm>
#include <utility>

#include "soilinteraction_mtl/belt_geometry.h"
#include "soilinteraction_mtl/soil_force.h"

namespace qvsoilinteractionmtl {
namespace {

using qv::k_block;
using qv::vectors;
using qvsoilinteraction::contact_block;
using qvsoilinteraction::contact_rows;
using qvsoilinteraction::Croad_contact;
using qvsoilinteraction::Csoil_contact;
using qvsoilinteraction::load_rows;
using qvsoilrdf::CRoad;

void clear_loads(Csoil_contact_mtl& sc, Csoil_contact_mtl& sc2) {
  std::fill_n(sc.local_force, 3, 0.0);
  std::fill_n(sc.force, 3, 0.0);
  for (Csoil_contact_mtl* taker : {&sc, &sc2}) {
    std::fill_n(taker->shear_share, 6, 0.0);
    std::fill_n(taker->normal_share, 6, 0.0);
  }
}

/// A span under evaluation.
struct span_work {
  int number = 0;  ///< from 0; the number of the node where it starts
  span_motion motion = {};
  grid_spacing grid = {};
  CSoilInteractionMTL* start = nullptr;
  CSoilInteractionMTL* end = nullptr;
};

/// The records of one row of a span's grid.
struct row_pointers {
  Croad_contact_mtl* points;
  Csoil_contact_mtl *start, *end;

  row_pointers(const span_work& span, std::size_t row)
      : points(span.start->road_contacts[row].data()),
        start(span.start->soil_contacts[row].data()),
        end(span.end->soil_contacts[row].data()) {}
};

/// Some points of one span.
struct point_block {
  contact_block contact;
  belt_block belt;
  Csoil_contact_mtl* start[k_block];
  Csoil_contact_mtl* end[k_block];
  double start_weight[k_block], end_weight[k_block];  ///< node_weight of the two records
  const span_work* span = nullptr;
  double* values = nullptr;    ///< the first point's place in the result array
  int shared_with_before = 0;  ///< so many of its first points already have results, of the span before
};

/// Forces of the points in contact of a block and how the nodes share them, side by side; axes of marker R.
struct force_rows {
  vectors force;
  vectors shear;      ///< shear shares of both nodes
  vectors start_end;  ///< normal shares of the node where the span starts and, but for the first span, of the other one
  vectors end;        ///< normal share of the node where the span ends
  double start_weight[k_block], end_weight[k_block];
};

/// Turns the local forces of all points along one axis of marker R, and splits them to the nodes, as
/// genenralized_contact_force_mtl does for the records of one point.
/// @param t1, t2, n  components of the tangents and the normal along the axis
QV_IN_LOOPS void turn_along_axis(const double* t1, const double* t2, const double* n, bool first_span, int count,
                                 const load_rows& local, const force_rows& loads, double* force, double* shear,
                                 double* start_end, double* end) {
  for (int i = 0; i < count; ++i) {
    const double F1 = local.shear_force[0][i], F2 = local.shear_force[1][i], Fn = local.normal_force[i];
    const double ws = loads.start_weight[i], we = loads.end_weight[i];
    force[i] = t1[i] * F1 + t2[i] * F2 + n[i] * Fn;
    shear[i] = t1[i] * (we * F1) + t1[i] * (ws * F1);
    const double of_start = t2[i] * (ws * F2) + n[i] * (ws * Fn);
    const double of_end = t2[i] * (we * F2) + n[i] * (we * Fn);
    start_end[i] = of_start + (first_span ? 0.0 : of_end);
    end[i] = of_end;
  }
}

QV_WIDE_VECTORS void turn_forces(const contact_rows& rows, bool first_span, const load_rows& local, force_rows& loads) {
  const vectors &t1 = rows.tangent_1, &t2 = rows.tangent_2, &n = rows.normal;
  turn_along_axis(t1.x, t2.x, n.x, first_span, rows.count, local, loads, loads.force.x, loads.shear.x,
                  loads.start_end.x, loads.end.x);
  turn_along_axis(t1.y, t2.y, n.y, first_span, rows.count, local, loads, loads.force.y, loads.shear.y,
                  loads.start_end.y, loads.end.y);
  turn_along_axis(t1.z, t2.z, n.z, first_span, rows.count, local, loads, loads.force.z, loads.shear.z,
                  loads.start_end.z, loads.end.z);
}

/// The sums while the points of one block are added, one after the other. Local copies: the compiler can then keep them
/// in registers.
///
/// Kept: an inner node gets both shares of the span that starts there and none of the span that ends there, and the
/// last node's share is also counted at the node before it.
class block_sums {
public:
  block_sums(const double* result, const track_sums& sums, int span, int nodes)
      : m_node(static_cast<std::size_t>(span)), m_last_span(span == nodes - 2) {
    std::copy_n(result + QV_TRACK_RESULT_SHEAR_1, 3, m_local);
    std::copy_n(sums.contact.begin(), QV_TRACK_SUM_RESULT_LENGTH, m_contact);
    std::copy_n(sums.shear.begin(), 3, m_shear);
    std::copy_n(sums.normal[m_node].begin(), 3, m_start);
    std::copy_n(sums.normal[m_node + 1].begin(), 3, m_end);
  }

  void add(const load_rows& local, const force_rows& loads, int c) {
    m_local[0] += local.shear_force[0][c];
    m_local[1] += local.shear_force[1][c];
    m_local[2] += local.normal_force[c];
    add(loads.force, c, m_contact + QV_TRACK_SUM_RESULT_FORCE);
    add(loads.shear, c, m_shear);
    add(loads.start_end, c, m_start);
    add(loads.end, c, m_end);
    m_contact[QV_TRACK_SUM_RESULT_AREA] += local.effective_area[c];
  }

  void store(double* result, const track_sums& sums) const {
    std::copy_n(m_local, 3, result + QV_TRACK_RESULT_SHEAR_1);
    std::copy_n(m_contact, QV_TRACK_SUM_RESULT_LENGTH, sums.contact.begin());
    std::copy_n(m_shear, 3, sums.shear.begin());
    std::copy_n(m_start, 3, sums.normal[m_node].begin());
    if (m_last_span) std::copy_n(m_end, 3, sums.normal[m_node + 1].begin());
  }

private:
  static void add(const vectors& v, int c, double* sum) {
    sum[0] += v.x[c];
    sum[1] += v.y[c];
    sum[2] += v.z[c];
  }

  std::size_t m_node;
  bool m_last_span;
  double m_local[3], m_contact[QV_TRACK_SUM_RESULT_LENGTH], m_shear[3], m_start[3], m_end[3];
};

/// Takes the points of a track through one call, span by span and block by block.
class evaluation {
public:
  evaluation(void* handle, double time, const parameters& p, int iflag, const CRoad& road, const track_state& state,
             double L, track_sums sums, double* result, const qv::fault_channel& channel)
      : m_handle(handle),
        m_time(time),
        m_p(p),
        m_iflag(iflag),
        m_road(road),
        m_state(state),
        m_patch(make_span_patch(L, p.width, p.n_long, p.n_lat)),
        m_law(make_span_law(road, m_patch)),
        m_frames(road, state.motion.k),
        m_sums(sums),
        m_result(result),
        m_values(result + QV_TRACK_RESULT_LENGTH),
        m_channel(channel) {}

  void run(track_records& track) {
    point_block* now = &m_blocks[0];
    point_block* next = &m_blocks[1];
    for (int i = 0; i < m_p.nodes - 1; ++i) {
      const span_work& span = prepare_span(i, track);
      const CSoilInteractionMTL& start = *span.start;
      const int columns = start.nLat;
      int shared = 0;
      if (i > 0) {  // the first row is the last one of the span before
        m_values -= static_cast<std::ptrdiff_t>(QV_TRACK_POINT_LENGTH) * columns;
        shared = columns;
      }
      begin(*next, span, shared);
      for (int j = 0; j < start.nLong; ++j) {
        const row_pointers rows(span, static_cast<std::size_t>(j));
        const double weights[2] = {node_weight(span.start->side, j, start.nLong),
                                   node_weight(span.end->side, j, start.nLong)};
        for (int k = 0; k < columns;) {
          k += add_points(*next, rows, j, k, weights);
          if (next->contact.count < k_block) continue;
          shared = std::max(shared - k_block, 0);
          advance(now, next);
          begin(*next, span, shared);
        }
      }
      advance(now, next);
    }
    finish(*now);
  }

private:
  /// Two spans are in use at a time: the last block of one is finished while the first block of the next is placed.
  const span_work& prepare_span(int i, track_records& track) {
    const auto node = static_cast<std::size_t>(i);
    const node_motion& from = m_state.nodes[node];
    span_work& span = m_spans[i % 2];
    span.number = i;
    span.start = &track[node][1];
    span.end = &track[node + 1][0];
    span.motion = make_span_motion(span.start->frame + 6, from.A, from.velocity, from.angular_velocity);
    // At set-up, fill both records. Later calls read only the start record's grid, and of the end record only its node
    // weights, which no motion changes.
    if (m_iflag == 1) {
      span.start->Calculation_Node_Position(m_p.width, m_state.motion.k.d1, from.position);
      span.end->Calculation_Node_Position(m_p.width, m_state.motion.k.d1, m_state.nodes[node + 1].position);
    }
    span.grid = space_grid(m_p.width, *span.start);
    return span;
  }

  void begin(point_block& block, const span_work& span, int shared) const {
    block.span = &span;
    block.values = m_values;
    block.shared_with_before = shared;
  }

  /// Adds the points of row j from column k on, as many as there is room for.
  /// @return  how many
  int add_points(point_block& block, const row_pointers& rows, int j, int k, const double (&weights)[2]) {
    const int at = block.contact.count;
    const int count = std::min(k_block - at, block.span->start->nLat - k);
    for (int i = 0; i < count; ++i) {
      block.contact.points[at + i] = rows.points + k + i;
      block.start[at + i] = rows.start + k + i;
      block.end[at + i] = rows.end + k + i;
    }
    std::fill_n(block.start_weight + at, count, weights[0]);
    std::fill_n(block.end_weight + at, count, weights[1]);
    block.belt.add(block.span->grid, j, k, count);
    block.contact.count += count;
    m_values += static_cast<std::ptrdiff_t>(QV_TRACK_POINT_LENGTH) * count;
    return count;
  }

  /// Places the next block, which prefetches its triangles, and finishes the one before in the meantime.
  void advance(point_block*& now, point_block*& next) {
    const span_work& span = *next->span;
    place_on_span(*span.start, m_state.motion.k.d1, m_state.nodes[static_cast<std::size_t>(span.number)].position,
                  next->belt);
    place_points_mtl(m_road, m_state.motion, next->belt, next->contact);
    finish(*now);
    std::swap(now, next);
  }

  void finish(point_block& block) {
    contact_block& contact = block.contact;
    if (contact.count == 0) return;
    contact_rows& rows = m_rows;
    get_contact_info_mtl(m_handle, m_road, m_state.motion, block.span->motion, m_frames, block.belt, contact, rows,
                         m_channel);
    set_loads(block, rows);
    turn_forces(rows, block.span->number == 0, m_loads, m_forces);
    write_positions(block);
    write_contacts(block, rows);
    if (m_iflag == 1) store_records(block, rows);
    if (m_iflag == 2) advance_histories(block, rows);
    contact.count = contact.near_count = block.belt.count = 0;
  }

  /// Sets the loads of the points in contact.
  void set_loads(const point_block& block, const contact_rows& rows) {
    Croad_contact* road_contacts[k_block];
    Csoil_contact* soil_contacts[k_block];
    for (int c = 0; c < rows.count; ++c) {
      road_contacts[c] = block.contact.points[rows.index[c]];
      soil_contacts[c] = block.start[rows.index[c]];
      m_forces.start_weight[c] = block.start_weight[rows.index[c]];
      m_forces.end_weight[c] = block.end_weight[rows.index[c]];
    }
    get_soil_force_mtl(m_law, m_patch, rows.motion, road_contacts, soil_contacts, rows.count, m_loads, m_channel);
  }

  static double* values_of(const point_block& block, int b) {
    return block.values + static_cast<std::ptrdiff_t>(QV_TRACK_POINT_LENGTH) * b;
  }

  /// Fills the positions of all points, which are written out of contact too.
  static void write_positions(const point_block& block) {
    for (int b = 0; b < block.contact.count; ++b) {
      take(block.belt.position, b, values_of(block, b) + QV_TRACK_POINT_POSITION);
    }
  }

  /// Adds the points in contact to the sums and fills the rest of their values.
  void write_contacts(const point_block& block, const contact_rows& rows) {
    block_sums sum(m_result, m_sums, block.span->number, m_p.nodes);
    for (int c = 0; c < rows.count; ++c) {
      sum.add(m_loads, m_forces, c);
      double* values = values_of(block, rows.index[c]);
      double force[3];
      take(m_forces.force, c, force);
      double* written = values + QV_TRACK_POINT_FORCE;
      const bool shared = rows.index[c] < block.shared_with_before;
      for (int x = 0; x < 3; ++x) written[x] = shared ? written[x] + force[x] : force[x];
      values[QV_TRACK_POINT_SINKAGE] = rows.motion.sinkage[c];
      values[QV_TRACK_POINT_DYNAMIC_SINKAGE] = m_loads.dynamic_sinkage[c];
    }
    sum.store(m_result, m_sums);
    // Kept: the area is added to the first point's force along x, not to the entry before it, which stays 0.
    double first_x = m_result[QV_TRACK_RESULT_LENGTH + QV_TRACK_POINT_FORCE];
    for (int c = 0; c < rows.count; ++c) first_x += m_loads.effective_area[c];
    m_result[QV_TRACK_RESULT_LENGTH + QV_TRACK_POINT_FORCE] = first_x;
  }

  /// Fills the records of the points.
  void store_records(const point_block& block, const contact_rows& rows) const {
    for (int b = 0; b < block.contact.count; ++b) {
      auto& rc = static_cast<Croad_contact_mtl&>(*block.contact.points[b]);
      block.belt.store(b, rc);
      rc.sinkage = 0.0;
      clear_loads(*block.start[b], *block.end[b]);
    }
    for (int c = 0; c < rows.count; ++c) {
      const std::int32_t b = rows.index[c];
      auto& rc = static_cast<Croad_contact_mtl&>(*block.contact.points[b]);
      store_contact(rows, c, rc);
      store_loads(m_law, m_loads, c, rc, *block.start[b]);
      genenralized_contact_force_mtl(rc, *block.start[b], *block.end[b]);
    }
  }

  /// Moves the history of the points on, after a converged step.
  void advance_histories(const point_block& block, const contact_rows& rows) const {
    for (int b = 0, c = 0; b < block.contact.count; ++b) {
      Croad_contact& rc = *block.contact.points[b];
      rc.last_update_time = m_time;
      if (c < rows.count && rows.index[c] == b) {
        advance_history(rows, m_loads, c++, rc);
      } else {
        end_history(rc);
      }
    }
  }

  void* m_handle;
  double m_time;
  const parameters& m_p;
  int m_iflag;
  const CRoad& m_road;
  const track_state& m_state;
  contact_patch m_patch;
  soil_law m_law;
  qvsoilinteraction::frame_maker m_frames;
  track_sums m_sums;
  double* m_result;
  double* m_values;  ///< next point's place in the result array
  qv::fault_channel m_channel;
  span_work m_spans[2];
  point_block m_blocks[2];
  contact_rows m_rows;
  load_rows m_loads;
  force_rows m_forces;
};

}  // namespace

void evaluate_track(void* handle, double time, const parameters& p, int iflag, const CRoad& road,
                    const track_state& state, double L, track_records& track, track_sums sums, double* result,
                    const qv::fault_channel& channel) {
  evaluation(handle, time, p, iflag, road, state, L, sums, result, channel).run(track);
}

}  // namespace qvsoilinteractionmtl
