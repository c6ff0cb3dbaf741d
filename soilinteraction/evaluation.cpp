#include "soilinteraction/evaluation.h"

#include <algorithm>
#include <utility>

#include "common/call/requests.h"
#include "soilinteraction/contact_search.h"

namespace qvsoilinteraction {
namespace {

using qvsoilrdf::CRoad;

/// Force, moment and area, as they stand at the head of the result array.
struct totals {
  double values[QV_SOIL_RESULT_LENGTH] = {};

  void add(const Csoil_contact& sc) {
    for (int c = 0; c < 3; ++c) {
      values[QV_SOIL_RESULT_FORCE + c] += sc.force[c];
      values[QV_SOIL_RESULT_MOMENT + c] += sc.moment[c];
    }
    values[QV_SOIL_RESULT_AREA] += sc.effective_area;
  }
};

/// Fills a point's values but for its position, which is written out of contact too.
void write_point(const Croad_contact& rc, const Csoil_contact& sc, double* point) {
  qv::assgvec(sc.local_force, 3, point + QV_SOIL_POINT_LOCAL_FORCE);
  point[QV_SOIL_POINT_SINKAGE] = rc.sinkage;
  point[QV_SOIL_POINT_DYNAMIC_SINKAGE] = sc.dynamic_sinkage;
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
      Croad_contact* road_contacts = element.road_contacts[static_cast<std::size_t>(i)].data();
      Csoil_contact* soil_contacts = element.soil_contacts[static_cast<std::size_t>(i)].data();
      for (int j = 0; j < m_p.patch.ny; ++j) {
        next->block.points[next->block.count] = &road_contacts[j];
        next->soil[next->block.count++] = &soil_contacts[j];
        if (next->block.count == k_block) advance(now, next);
      }
    }
    advance(now, next);
    finish(*now);
  }

private:
  struct work {
    contact_block block;
    Csoil_contact* soil[k_block];
  };

  /// Places the next block, which prefetches its triangles, and finishes the one before in the meantime.
  void advance(work*& now, work*& next) {
    place_points(m_road, m_k, next->block, m_channel);
    finish(*now);
    std::swap(now, next);
  }

  void finish(work& w) {
    contact_block& block = w.block;
    get_contact_info(m_handle, m_road, m_p.patch.shape, m_k, m_frames, block, m_channel);
    // A body without width is refused at its first point in contact. The points before it are in the result already.
    const int end = m_law.bekker.b == 0.0 ? first_in_contact(block) : block.count;
    load_points(w, 0, end);
    totals sum;
    qv::assgvec(m_result, QV_SOIL_RESULT_LENGTH, sum.values);
    for (int b = 0; b < end; ++b, m_point += QV_SOIL_POINT_LENGTH) {
      Croad_contact& rc = *block.points[b];
      Csoil_contact& sc = *w.soil[b];
      qv::assgvec(rc.position, 3, m_point + QV_SOIL_POINT_POSITION);
      if (block.in_contact[b]) {
        genenralized_contact_force(rc, sc);
        sum.add(sc);
        write_point(rc, sc, m_point);
      }
      if (m_iflag == 2) advance_history(block.in_contact[b], sc, rc);
    }
    qv::assgvec(sum.values, QV_SOIL_RESULT_LENGTH, m_result);
    if (end < block.count) load_points(w, end, end + 1);
    block.count = block.near_count = 0;
  }

  static int first_in_contact(const contact_block& block) {
    return static_cast<int>(std::find(block.in_contact, block.in_contact + block.count, true) - block.in_contact);
  }

  /// Sets the loads of the points in contact from `begin` up to `end`.
  void load_points(const work& w, int begin, int end) {
    Croad_contact* road_contacts[k_block];
    Csoil_contact* soil_contacts[k_block];
    int count = 0;
    for (int b = begin; b < end; ++b) {
      if (!w.block.in_contact[b]) continue;
      road_contacts[count] = w.block.points[b];
      soil_contacts[count++] = w.soil[b];
    }
    get_soil_force(m_law, m_p.patch, road_contacts, soil_contacts, count, m_channel);
  }

  void* m_handle;
  const parameters& m_p;
  int m_iflag;
  const CRoad& m_road;
  const kinematics& m_k;
  soil_law m_law;
  frame_maker m_frames;
  double* m_result;
  double* m_point = m_result + QV_SOIL_RESULT_LENGTH;  ///< next point's place in the result array
  qv::fault_channel m_channel;
  work m_work[2];
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
      element.road_contacts[row][column].Calculation_Si_prime(i, j, patch.shape, patch.a, patch.w, patch.nx, patch.ny);
      element.soil_contacts[row][column].soil_type = road.soil_type;  // never changes: a road is read once
    }
  }
}

void evaluate_points(void* handle, const parameters& p, int iflag, const CRoad& road, const kinematics& k,
                     CSoilInteraction& element, double* result, const qv::fault_channel& channel) {
  evaluation(handle, p, iflag, road, k, result, channel).run(element);
}

}  // namespace qvsoilinteraction
