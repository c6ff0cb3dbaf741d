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

/// A span and the normal sums that its points add to.
struct span_work {
  int number = 0;  ///< from 0, that of its first node
  span_motion motion = {};
  grid_spacing grid = {};
  CSoilInteractionMTL* start = nullptr;
  CSoilInteractionMTL* end = nullptr;
};

/// The records of a row of a span's grid.
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
  double* values = nullptr;    ///< where the first point's results go
  int shared_with_before = 0;  ///< that many points at its beginning have results of the span before
};

/// The sums while the points of one block are added, one after the other.
///
/// Kept: an inner node gets both shares of the span that starts there and none of the span that ends there, and the
/// last node's share is counted at the node before it too.
class block_sums {
public:
  block_sums(const double* result, const track_sums& sums, int span, int nodes)
      : node_(static_cast<std::size_t>(span)), first_span_(span == 0), last_span_(span == nodes - 2) {
    std::copy_n(result + QV_TRACK_RESULT_SHEAR_1, 3, local_);
    std::copy_n(sums.contact.begin(), QV_TRACK_SUM_RESULT_LENGTH, contact_);
    std::copy_n(sums.shear.begin(), 3, shear_);
    std::copy_n(sums.normal[node_].begin(), 3, start_);
    std::copy_n(sums.normal[node_ + 1].begin(), 3, end_);
  }

  void add(const Csoil_contact_mtl& sc, const Csoil_contact_mtl& sc2) {
    static constexpr double k_none[3] = {0.0, 0.0, 0.0};
    const double* second = first_span_ ? k_none : sc2.normal_share;
    for (int c = 0; c < 3; ++c) {
      local_[c] += sc.local_force[c];
      contact_[QV_TRACK_SUM_RESULT_FORCE + c] += sc.force[c];
      shear_[c] += sc2.shear_share[c] + sc.shear_share[c];
      start_[c] += sc.normal_share[c] + second[c];
      end_[c] += sc2.normal_share[c];
    }
    contact_[QV_TRACK_SUM_RESULT_AREA] += sc.effective_area;
  }

  void store(double* result, const track_sums& sums) const {
    std::copy_n(local_, 3, result + QV_TRACK_RESULT_SHEAR_1);
    std::copy_n(contact_, QV_TRACK_SUM_RESULT_LENGTH, sums.contact.begin());
    std::copy_n(shear_, 3, sums.shear.begin());
    std::copy_n(start_, 3, sums.normal[node_].begin());
    if (last_span_) std::copy_n(end_, 3, sums.normal[node_ + 1].begin());
  }

private:
  std::size_t node_;
  bool first_span_, last_span_;
  double local_[3], contact_[QV_TRACK_SUM_RESULT_LENGTH], shear_[3], start_[3], end_[3];
};

/// One call's way over the points of a track, span by span, in blocks.
class evaluation {
public:
  evaluation(void* handle, double time, const parameters& p, int iflag, const CRoad& road, const track_state& state,
             double L, track_sums sums, double* result, int& ierr, char** msg)
      : handle_(handle),
        time_(time),
        p_(p),
        iflag_(iflag),
        road_(road),
        state_(state),
        patch_(make_span_patch(L, p.width, p.n_long, p.n_lat)),
        law_(make_span_law(road, patch_)),
        frames_(road, state.motion.k),
        sums_(sums),
        result_(result),
        values_(result + QV_TRACK_RESULT_LENGTH),
        ierr_(ierr),
        msg_(msg) {}

  void run(track_records& track) {
    point_block* now = &blocks_[0];
    point_block* next = &blocks_[1];
    for (int i = 0; i < p_.nodes - 1; ++i) {
      const span_work& span = prepare_span(i, track);
      const CSoilInteractionMTL& start = *span.start;
      const int columns = start.nLat;
      int shared = 0;
      if (i > 0) {  // the first row is the last one of the span before
        values_ -= static_cast<std::ptrdiff_t>(QV_TRACK_POINT_LENGTH) * columns;
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
  /// Two spans at a time are under way: one whose last block is being finished and one whose first is being placed.
  const span_work& prepare_span(int i, track_records& track) {
    const auto node = static_cast<std::size_t>(i);
    const node_motion& from = state_.nodes[node];
    span_work& span = spans_[i % 2];
    span.number = i;
    span.start = &track[node][1];
    span.end = &track[node + 1][0];
    span.motion = make_span_motion(span.start->frame + 6, from.A, from.velocity, from.angular_velocity);
    if (iflag_ == 1) {  // all that the records hold; later on only what is read again: nothing but weights of the end
      span.start->Calculation_Node_Position(p_.width, state_.motion.k.d1, from.position);
      span.end->Calculation_Node_Position(p_.width, state_.motion.k.d1, state_.nodes[node + 1].position);
    }
    span.grid = space_grid(p_.width, *span.start);
    return span;
  }

  void begin(point_block& block, const span_work& span, int shared) const {
    block.span = &span;
    block.values = values_;
    block.shared_with_before = shared;
  }

  void add_point(point_block& block, const row_pointers& rows, int j, int k) {
    const int at = block.contact.count++;
    block.contact.points[at] = rows.points + k;
    block.start[at] = rows.start + k;
    block.end[at] = rows.end + k;
    block.belt.add(block.span->grid, j, k);
    values_ += QV_TRACK_POINT_LENGTH;
  }

  /// Places the next block, so that its triangles come from memory while the one before is finished.
  void advance(point_block*& now, point_block*& next) {
    const span_work& span = *next->span;
    place_on_span(*span.start, state_.motion.k.d1, state_.nodes[static_cast<std::size_t>(span.number)].position,
                  next->belt);
    place_points_mtl(road_, state_.motion, next->belt, next->contact);
    finish(*now);
    std::swap(now, next);
  }

  void finish(point_block& block) {
    contact_block& contact = block.contact;
    if (contact.count == 0) return;
    get_contact_info_mtl(handle_, road_, state_.motion, block.span->motion, frames_, block.belt, contact, ierr_, msg_);
    set_loads(block);
    block_sums sum(result_, sums_, block.span->number, p_.nodes);
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
      if (iflag_ != 2) continue;
      rc.last_update_time = time_;
      advance_history(contact.in_contact[b], sc, rc);
    }
    sum.store(result_, sums_);
    contact.count = contact.near_count = block.belt.count = 0;
  }

  void write_point(const Croad_contact_mtl& rc, const Csoil_contact_mtl& sc, bool shared, double* values) {
    double* force = values + QV_TRACK_POINT_FORCE;
    for (int c = 0; c < 3; ++c) force[c] = shared ? force[c] + sc.force[c] : sc.force[c];
    // Kept: the area is added to the first point's force along x, not to the entry before it, which stays 0.
    result_[QV_TRACK_RESULT_LENGTH + QV_TRACK_POINT_FORCE] += sc.effective_area;
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
    get_soil_force_mtl(law_, patch_, road_contacts, soil_contacts, count, ierr_, msg_);
  }

  void* handle_;
  double time_;
  const parameters& p_;
  int iflag_;
  const CRoad& road_;
  const track_state& state_;
  contact_patch patch_;
  soil_law law_;
  qvsoilinteraction::frame_maker frames_;
  track_sums sums_;
  double* result_;
  double* values_;  ///< where the next point's results go
  int& ierr_;
  char** msg_;
  span_work spans_[2];
  point_block blocks_[2];
};

}  // namespace

void evaluate_track(void* handle, double time, const parameters& p, int iflag, const CRoad& road,
                    const track_state& state, double L, track_records& track, track_sums sums, double* result,
                    int& ierr, char** msg) {
  evaluation(handle, time, p, iflag, road, state, L, sums, result, ierr, msg).run(track);
}

}  // namespace qvsoilinteractionmtl
