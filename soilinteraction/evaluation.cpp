#include "soilinteraction/evaluation.h"

#include <algorithm>
#include <utility>

#include "common/call/requests.h"
#include "soilinteraction/contact_search.h"

namespace qvsoilinteraction {
namespace {

using qvsoilrdf::CRoad;

/// Forces of the points in contact of a block, side by side.
struct force_rows {
  vectors force;   ///< ground axes
  vectors moment;  ///< about the body marker, ground axes
};

/// Force, moment and area, as they stand at the head of the result array.
struct totals {
  double values[QV_SOIL_RESULT_LENGTH] = {};

  void add(const force_rows& loads, double area, int c) {
    values[QV_SOIL_RESULT_FORCE] += loads.force.x[c];
    values[QV_SOIL_RESULT_FORCE + 1] += loads.force.y[c];
    values[QV_SOIL_RESULT_FORCE + 2] += loads.force.z[c];
    values[QV_SOIL_RESULT_MOMENT] += loads.moment.x[c];
    values[QV_SOIL_RESULT_MOMENT + 1] += loads.moment.y[c];
    values[QV_SOIL_RESULT_MOMENT + 2] += loads.moment.z[c];
    values[QV_SOIL_RESULT_AREA] += area;
  }
};

/// Turns the local forces into forces and moments in ground axes, as genenralized_contact_force does for a record.
QV_WIDE_VECTORS void turn_forces(const contact_rows& rows, const vectors& lever, const load_rows& local,
                                 force_rows& loads) {
  for (int i = 0; i < rows.count; ++i) {
    const double F1 = local.shear_force[0][i], F2 = local.shear_force[1][i], Fn = local.normal_force[i];
    const double fx = rows.tangent_1.x[i] * F1 + rows.tangent_2.x[i] * F2 + rows.normal.x[i] * Fn;
    const double fy = rows.tangent_1.y[i] * F1 + rows.tangent_2.y[i] * F2 + rows.normal.y[i] * Fn;
    const double fz = rows.tangent_1.z[i] * F1 + rows.tangent_2.z[i] * F2 + rows.normal.z[i] * Fn;
    loads.force.x[i] = fx;
    loads.force.y[i] = fy;
    loads.force.z[i] = fz;
    loads.moment.x[i] = lever.y[i] * fz - lever.z[i] * fy;
    loads.moment.y[i] = lever.z[i] * fx - lever.x[i] * fz;
    loads.moment.z[i] = lever.x[i] * fy - lever.y[i] * fx;
  }
}

/// Takes the points of an element through one call, block by block.
class evaluation {
public:
  evaluation(void* handle, const parameters& p, int iflag, const CRoad& road, const kinematics& k, double* result,
             const qv::fault_channel& channel)
      : m_handle(handle),
        m_p(p),
        m_iflag(iflag),
        m_road(road),
        m_k(k),
        m_law(road, p.bekker_width()),
        m_frames(road, k),
        m_result(result),
        m_channel(channel) {}

  void run(CSoilInteraction& element) {
    work* now = &m_work[0];
    work* next = &m_work[1];
    for (int i = 0; i < m_p.patch.nx; ++i) {
      const row_of_points row(element, static_cast<std::size_t>(i));
      for (int j = 0; j < m_p.patch.ny;) {
        j += add_points(*next, row, j);
        if (next->block.contact.count == k_block) advance(now, next);
      }
    }
    advance(now, next);
    finish(*now);
  }

private:
  struct work {
    body_block block;
    Csoil_contact* soil[k_block];
  };

  /// The records of row i of the grid.
  struct row_of_points {
    Croad_contact* road_contacts;
    Csoil_contact* soil_contacts;
    const double* on_body[3];

    row_of_points(CSoilInteraction& element, std::size_t i)
        : road_contacts(element.road_contacts[i].data()), soil_contacts(element.soil_contacts[i].data()) {
      const std::size_t first = i * static_cast<std::size_t>(element.ny);
      for (int c = 0; c < 3; ++c) on_body[c] = element.on_body[c].data() + first;
    }
  };

  /// Adds the points of the row from j on, as many as there is room for.
  /// @return  how many
  int add_points(work& w, const row_of_points& row, int j) const {
    const int at = w.block.contact.count;
    const int count = std::min(k_block - at, m_p.patch.ny - j);
    std::copy_n(row.on_body[0] + j, count, w.block.on_body.x + at);
    std::copy_n(row.on_body[1] + j, count, w.block.on_body.y + at);
    std::copy_n(row.on_body[2] + j, count, w.block.on_body.z + at);
    for (int b = 0; b < count; ++b) {
      w.block.contact.points[at + b] = row.road_contacts + j + b;
      w.soil[at + b] = row.soil_contacts + j + b;
    }
    w.block.contact.count += count;
    return count;
  }

  /// Places the next block, which prefetches its triangles, and finishes the one before in the meantime.
  void advance(work*& now, work*& next) {
    place_points(m_road, m_k, next->block, m_channel);
    finish(*now);
    std::swap(now, next);
  }

  void finish(work& w) {
    contact_block& block = w.block.contact;
    contact_rows& rows = m_rows;
    get_contact_info(m_handle, m_road, m_p.patch.shape, m_k, m_frames, w.block, rows, m_channel);
    // A body without width is refused at its first point in contact. The points before it are in the result already.
    const bool refused = m_law.bekker.b == 0.0 && rows.count > 0;
    const int end = refused ? rows.index[0] : block.count;
    if (refused) rows.count = 0;
    set_loads(w, rows);
    write_positions(w, end);
    write_contacts(rows);
    if (m_iflag == 1) store_records(w, rows, end);
    if (m_iflag == 2) advance_histories(w, rows, end);
    if (refused) refuse_no_width(m_law, *block.points[end], m_channel);
    m_point += static_cast<std::ptrdiff_t>(QV_SOIL_POINT_LENGTH) * block.count;
    block.count = block.near_count = 0;
  }

  /// Sets the loads of the points in contact.
  void set_loads(const work& w, const contact_rows& rows) {
    Croad_contact* road_contacts[k_block];
    Csoil_contact* soil_contacts[k_block];
    for (int c = 0; c < rows.count; ++c) {
      road_contacts[c] = w.block.contact.points[rows.index[c]];
      soil_contacts[c] = w.soil[rows.index[c]];
    }
    qvsoilinteraction::set_loads(m_law, m_p.patch, rows.motion, road_contacts, soil_contacts, rows.count, m_loads);
    vectors lever;
    turn_forces(rows, of_rows(w.block.lever, w.block.contact.count, rows, lever), m_loads, m_forces);
  }

  /// Fills the positions of the first `end` points of the block, which are written out of contact too.
  void write_positions(const work& w, int end) const {
    double* position = m_point + QV_SOIL_POINT_POSITION;
    for (int b = 0; b < end; ++b, position += QV_SOIL_POINT_LENGTH) take(w.block.position, b, position);
  }

  /// Adds the points in contact to the totals and fills the rest of their values.
  void write_contacts(const contact_rows& rows) const {
    totals sum;
    qv::assgvec(m_result, QV_SOIL_RESULT_LENGTH, sum.values);
    for (int c = 0; c < rows.count; ++c) {
      sum.add(m_forces, m_loads.effective_area[c], c);
      double* point = m_point + static_cast<std::ptrdiff_t>(QV_SOIL_POINT_LENGTH) * rows.index[c];
      point[QV_SOIL_POINT_LOCAL_FORCE] = m_loads.shear_force[0][c];
      point[QV_SOIL_POINT_LOCAL_FORCE + 1] = m_loads.shear_force[1][c];
      point[QV_SOIL_POINT_LOCAL_FORCE + 2] = m_loads.normal_force[c];
      point[QV_SOIL_POINT_SINKAGE] = rows.motion.sinkage[c];
      point[QV_SOIL_POINT_DYNAMIC_SINKAGE] = m_loads.dynamic_sinkage[c];
    }
    qv::assgvec(sum.values, QV_SOIL_RESULT_LENGTH, m_result);
  }

  /// Fills the records of the first `end` points.
  void store_records(const work& w, const contact_rows& rows, int end) const {
    for (int b = 0; b < end; ++b) {
      Croad_contact& rc = *w.block.contact.points[b];
      take(w.block.lever, b, rc.lever);
      take(w.block.position, b, rc.position);
      rc.sinkage = 0.0;
    }
    for (int c = 0; c < rows.count; ++c) {
      Croad_contact& rc = *w.block.contact.points[rows.index[c]];
      Csoil_contact& sc = *w.soil[rows.index[c]];
      store_contact(rows, c, rc);
      store_loads(m_law, m_loads, c, rc, sc);
      genenralized_contact_force(rc, sc);
    }
  }

  /// Moves the history of the first `end` points on, after a converged step.
  void advance_histories(const work& w, const contact_rows& rows, int end) const {
    for (int b = 0, c = 0; b < end; ++b) {
      Croad_contact& rc = *w.block.contact.points[b];
      if (c < rows.count && rows.index[c] == b) {
        advance_history(rows, m_loads, c++, rc);
      } else {
        end_history(rc);
      }
    }
  }

  void* m_handle;
  const parameters& m_p;
  int m_iflag;
  const CRoad& m_road;
  const kinematics& m_k;
  soil_law m_law;
  frame_maker m_frames;
  double* m_result;
  double* m_point = m_result + QV_SOIL_RESULT_LENGTH;  ///< the block's first point's place in the result array
  qv::fault_channel m_channel;
  work m_work[2];
  contact_rows m_rows;
  load_rows m_loads;
  force_rows m_forces;
};

}  // namespace

kinematics fetch_kinematics(void* handle, const parameters& p) {
  const int m1 = p.body_marker, m5 = p.road_marker, m14 = p.ground_marker;
  kinematics k = {};
  qv::fetch_vector(handle, "AM", {m1, m14}, k.A1, 9);
  qv::fetch_vector(handle, "AM", {m5, m14}, k.A5, 9);
  qv::fetch_vector(handle, "TDISP", {m1, m14, m14}, k.d1, 3);
  qv::fetch_vector(handle, "TDISP", {m5, m14, m14}, k.d5, 3);
  qv::fetch_vector(handle, "TVEL", {m1, m14, m14}, k.V1, 3);
  qv::fetch_vector(handle, "RVEL", {m1, m14, m1}, k.W1, 3);
  qv::fetch_vector(handle, "TVEL", {m5, m14, m14}, k.V5, 3);
  qv::fetch_vector(handle, "RVEL", {m5, m14, m5}, k.W5, 3);
  qv::fetch_vector(handle, "TDISP", {m1, m5, m5}, k.d15, 3);
  complete(k);
  return k;
}

void place_on_body(const contact_patch& patch, const CRoad& road, CSoilInteraction& element) {
  for (int i = 0; i < patch.nx; ++i) {
    for (int j = 0; j < patch.ny; ++j) {
      const auto row = static_cast<std::size_t>(i), column = static_cast<std::size_t>(j);
      Croad_contact& rc = element.road_contacts[row][column];
      rc.Calculation_Si_prime(i, j, patch.shape, patch.a, patch.w, patch.nx, patch.ny);
      const std::size_t at = row * static_cast<std::size_t>(element.ny) + column;
      for (int c = 0; c < 3; ++c) element.on_body[c][at] = rc.Si_prime[c];
      element.soil_contacts[row][column].soil_type = road.soil_type;  // never changes: a road is read once
    }
  }
}

void evaluate_points(void* handle, const parameters& p, int iflag, const CRoad& road, const kinematics& k,
                     CSoilInteraction& element, double* result, const qv::fault_channel& channel) {
  evaluation(handle, p, iflag, road, k, result, channel).run(element);
}

}  // namespace qvsoilinteraction
