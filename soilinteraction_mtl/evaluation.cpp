#include "soilinteraction_mtl/evaluation.h"

#include <algorithm>
#include <utility>

#include "soilinteraction_mtl/belt_geometry.h"
#include "soilinteraction_mtl/soil_force.h"

namespace qvsoilinteractionmtl {
namespace {

using qv::k_block;
using qvsoilinteraction::contact_block;
using qvsoilinteraction::Croad_contact;
using qvsoilinteraction::Csoil_contact;
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
  const span_work* span = nullptr;
  double* values = nullptr;    ///< the first point's place in the result array
  int shared_with_before = 0;  ///< so many of its first points already have results, of the span before
};

/// The sums while the points of one block are added, one after the other. Local copies: the compiler can then keep them
/// in registers.
///
/// Kept: an inner node gets both shares of the span that starts there and none of the span that ends there, and the
/// last node's share is also counted at the node before it.
class block_sums {
public:
  block_sums(const double* result, const track_sums& sums, int span, int nodes)
      : m_node(static_cast<std::size_t>(span)), m_first_span(span == 0), m_last_span(span == nodes - 2) {
    std::copy_n(result + QV_TRACK_RESULT_SHEAR_1, 3, m_local);
    std::copy_n(sums.contact.begin(), QV_TRACK_SUM_RESULT_LENGTH, m_contact);
    std::copy_n(sums.shear.begin(), 3, m_shear);
    std::copy_n(sums.normal[m_node].begin(), 3, m_start);
    std::copy_n(sums.normal[m_node + 1].begin(), 3, m_end);
  }

  void add(const Csoil_contact_mtl& sc, const Csoil_contact_mtl& sc2) {
    static constexpr double k_none[3] = {0.0, 0.0, 0.0};
    const double* second = m_first_span ? k_none : sc2.normal_share;
    for (int c = 0; c < 3; ++c) {
      m_local[c] += sc.local_force[c];
      m_contact[QV_TRACK_SUM_RESULT_FORCE + c] += sc.force[c];
      m_shear[c] += sc2.shear_share[c] + sc.shear_share[c];
      m_start[c] += sc.normal_share[c] + second[c];
      m_end[c] += sc2.normal_share[c];
    }
    m_contact[QV_TRACK_SUM_RESULT_AREA] += sc.effective_area;
  }

  void store(double* result, const track_sums& sums) const {
    std::copy_n(m_local, 3, result + QV_TRACK_RESULT_SHEAR_1);
    std::copy_n(m_contact, QV_TRACK_SUM_RESULT_LENGTH, sums.contact.begin());
    std::copy_n(m_shear, 3, sums.shear.begin());
    std::copy_n(m_start, 3, sums.normal[m_node].begin());
    if (m_last_span) std::copy_n(m_end, 3, sums.normal[m_node + 1].begin());
  }

private:
  std::size_t m_node;
  bool m_first_span, m_last_span;
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
        for (int k = 0; k < columns; ++k) {
          add_point(*next, rows, j, k);
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

  void add_point(point_block& block, const row_pointers& rows, int j, int k) {
    const int at = block.contact.count++;
    block.contact.points[at] = rows.points + k;
    block.start[at] = rows.start + k;
    block.end[at] = rows.end + k;
    block.belt.add(block.span->grid, j, k);
    m_values += QV_TRACK_POINT_LENGTH;
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
    get_contact_info_mtl(m_handle, m_road, m_state.motion, block.span->motion, m_frames, block.belt, contact,
                         m_channel);
    set_loads(block);
    block_sums sum(m_result, m_sums, block.span->number, m_p.nodes);
    double* values = block.values;
    for (int b = 0; b < contact.count; ++b, values += QV_TRACK_POINT_LENGTH) {
      auto& rc = static_cast<Croad_contact_mtl&>(*contact.points[b]);
      Csoil_contact_mtl &sc = *block.start[b], &sc2 = *block.end[b];
      qv::assgvec(rc.position, 3, values + QV_TRACK_POINT_POSITION);
      if (contact.in_contact[b]) {
        genenralized_contact_force_mtl(rc, sc, sc2);
        sum.add(sc, sc2);
        write_point(rc, sc, b < block.shared_with_before, values);
      } else {
        clear_loads(sc, sc2);
      }
      if (m_iflag != 2) continue;
      rc.last_update_time = m_time;
      advance_history(contact.in_contact[b], sc, rc);
    }
    sum.store(m_result, m_sums);
    contact.count = contact.near_count = block.belt.count = 0;
  }

  void write_point(const Croad_contact_mtl& rc, const Csoil_contact_mtl& sc, bool shared, double* values) {
    double* force = values + QV_TRACK_POINT_FORCE;
    for (int c = 0; c < 3; ++c) force[c] = shared ? force[c] + sc.force[c] : sc.force[c];
    // Kept: the area is added to the first point's force along x, not to the entry before it, which stays 0.
    m_result[QV_TRACK_RESULT_LENGTH + QV_TRACK_POINT_FORCE] += sc.effective_area;
    values[QV_TRACK_POINT_SINKAGE] = rc.sinkage;
    values[QV_TRACK_POINT_DYNAMIC_SINKAGE] = sc.dynamic_sinkage;
  }

  void set_loads(const point_block& block) {
    Croad_contact* road_contacts[k_block];
    Csoil_contact* soil_contacts[k_block];
    int count = 0;
    for (int b = 0; b < block.contact.count; ++b) {
      if (!block.contact.in_contact[b]) continue;
      road_contacts[count] = block.contact.points[b];
      soil_contacts[count++] = block.start[b];
    }
    get_soil_force_mtl(m_law, m_patch, road_contacts, soil_contacts, count, m_channel);
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
};

}  // namespace

void evaluate_track(void* handle, double time, const parameters& p, int iflag, const CRoad& road,
                    const track_state& state, double L, track_records& track, track_sums sums, double* result,
                    const qv::fault_channel& channel) {
  evaluation(handle, time, p, iflag, road, state, L, sums, result, channel).run(track);
}

}  // namespace qvsoilinteractionmtl
