#include "soilinteraction/soilinteraction.h"

#include <algorithm>
#include <array>
#include <exception>
#include <utility>

#include "common/data_file.h"
#include "common/entry_frame.h"
#include "common/messages.h"
#include "common/parameters.h"
#include "soilinteraction/contact_search.h"
#include "soilinteraction/soil_laws.h"
#include "soilrdf/rdf_reader.h"

namespace qvsoilinteraction {
namespace {

using qvsoilrdf::CRoad;
using force_sums = std::array<double, 4>;  // force x, y, z and area

// Module state, indexed by road and element; it lives from load to unload and containers grow once.
std::vector<CRoad> s_3Dsoil_roads;
std::vector<std::vector<CSoilInteraction>> s_3Dsoil_forces;
std::vector<std::vector<force_sums>> s_3Dsoil_contact_forces_Sum;

constexpr const char* k_prefix = "SOILINTERACTION ERROR : ";
constexpr int k_totals = 7;  // result entries before the points
constexpr int k_values_per_point = 8;

/// The parameter list, decoded.
struct parameters {
  int element, body_marker, road, file_name, road_marker, elements, roads, ground_marker;
  contact_patch patch;

  parameters(const double* par, const qv::fault_channel& channel)
      : element(qv::to_int(par[0], "element index (parameter 0)", channel)),
        body_marker(qv::to_int(par[1], "body marker id (parameter 1)", channel)),
        road(qv::to_int(par[3], "road index (parameter 3)", channel)),
        file_name(qv::to_int(par[4], "string id of the RDF file (parameter 4)", channel)),
        road_marker(qv::to_int(par[5], "road base marker id (parameter 5)", channel)),
        elements(qv::to_count(par[7], "number of soil elements (parameter 7)", channel)),
        roads(qv::to_count(par[8], "number of roads (parameter 8)", channel)),
        ground_marker(qv::to_int(par[14], "ground reference marker id (parameter 14)", channel)),
        patch{qv::to_int(par[9], "body shape (parameter 9)", channel), par[10], par[11],
              qv::to_count(par[12], "grid count along or around (parameter 12)", channel),
              qv::to_count(par[13], "grid count across (parameter 13)", channel)} {
    // The result array is counted in ints.
    if (points() > (2147483647U - k_totals) / k_values_per_point) {
      qv::fault(std::string(channel.prefix) + "The number of grid points (parameter 12 times parameter 13) is " +
                    std::to_string(points()) + "; it must not exceed 268435455.",
                channel.ierr, channel.msg);
    }
  }

  std::size_t points() const { return static_cast<std::size_t>(patch.nx) * static_cast<std::size_t>(patch.ny); }
  double bekker_width() const { return patch.shape == 1 ? std::min(patch.a, patch.w) : patch.w; }
};

// --- set-up --------------------------------------------------------------------------------------------------

void load_road(void* handle, const parameters& p, CRoad& road, int& ierr, char** msg) {
  std::wstring file_name;
  int length = 0;
  if (!qv::fetch_string(handle, p.file_name, file_name, length)) {
    qv::fault(std::string(k_prefix) + "The length of string " + std::to_string(p.file_name) + " is " +
                  std::to_string(length) + "; it must lie between 0 and 1024.",
              ierr, msg);
  }
  if (!qvsoilrdf::read_rdf(handle, file_name, road, ierr, msg)) {
    int status = 0;
    stop_solver(handle, 1, 0, 1, msg[0], &status);
  }
  road.road_id = p.road;  // even when its reading broke off: it is not read again
}

void set_up_road(void* handle, const parameters& p, int& ierr, char** msg) {
  if (s_3Dsoil_roads.empty()) s_3Dsoil_roads.resize(static_cast<std::size_t>(p.roads));
  qv::check_index(p.road, s_3Dsoil_roads.size(), "road index (parameter 3)", {k_prefix, ierr, msg});
  CRoad& road = s_3Dsoil_roads[static_cast<std::size_t>(p.road)];
  if (road.road_id == qvsoilrdf::k_not_set) load_road(handle, p, road, ierr, msg);
}

/// The entry of (road, element) in a container, which is sized on its way when it is still empty.
template <class Entry>
Entry& sized_entry(std::vector<std::vector<Entry>>& container, const parameters& p, int& ierr, char** msg) {
  if (container.empty()) container.resize(static_cast<std::size_t>(p.roads));
  qv::check_index(p.road, container.size(), "road index (parameter 3)", {k_prefix, ierr, msg});
  std::vector<Entry>& entries = container[static_cast<std::size_t>(p.road)];
  if (entries.empty()) entries.resize(static_cast<std::size_t>(p.elements));
  qv::check_index(p.element, entries.size(), "element index (parameter 0)", {k_prefix, ierr, msg});
  return entries[static_cast<std::size_t>(p.element)];
}

void set_up_element(const parameters& p, int& ierr, char** msg) {
  CSoilInteraction& element = sized_entry(s_3Dsoil_forces, p, ierr, msg);
  if (element.element_id == qvsoilrdf::k_not_set) {
    const auto rows = static_cast<std::size_t>(p.patch.nx);
    const auto columns = static_cast<std::size_t>(p.patch.ny);
    element.road_contacts.assign(rows, std::vector<Croad_contact>(columns));
    element.soil_contacts.assign(rows, std::vector<Csoil_contact>(columns));
    element.nx = p.patch.nx;
    element.ny = p.patch.ny;
    element.element_id = p.element;  // last: an element without its grids is not set up
  }
  sized_entry(s_3Dsoil_contact_forces_Sum, p, ierr, msg);
}

// --- evaluation ----------------------------------------------------------------------------------------------

void fetch(void* handle, const char* name, std::initializer_list<int> ids, double* values, int count) {
  int flag = 0;
  sysary(handle, name, ids.begin(), static_cast<int>(ids.size()), values, &count, &flag);
}

kinematics fetch_kinematics(void* handle, const parameters& p) {
  const int m1 = p.body_marker, m5 = p.road_marker, m14 = p.ground_marker;
  kinematics k = {};
  fetch(handle, "AM", {m1, m14}, k.A1, 9);
  fetch(handle, "AM", {m5, m14}, k.A5, 9);
  fetch(handle, "TDISP", {m1, m14, m14}, k.d1, 3);
  fetch(handle, "TDISP", {m5, m14, m14}, k.d5, 3);
  fetch(handle, "TVEL", {m1, m14, m14}, k.V1, 3);
  fetch(handle, "RVEL", {m1, m14, m1}, k.W1, 3);
  fetch(handle, "TVEL", {m5, m14, m14}, k.V5, 3);
  fetch(handle, "RVEL", {m5, m14, m5}, k.W5, 3);
  fetch(handle, "TDISP", {m1, m5, m5}, k.d15, 3);
  complete(k);
  return k;
}

/// Force, moment and area, as they stand at the head of the result array.
struct totals {
  double values[k_totals] = {};

  void add(const Csoil_contact& sc) {
    for (int c = 0; c < 3; ++c) {
      values[c] += sc.force[c];
      values[3 + c] += sc.moment[c];
    }
    values[6] += sc.effective_area;
  }
};

void write_point(const Croad_contact& rc, const Csoil_contact& sc, double* point) {
  qv::assgvec(sc.local_force, 3, point);
  point[6] = rc.sinkage;
  point[7] = sc.dynamic_sinkage;
}

/// What a converged step leaves behind in a point.
void advance_history(bool in_contact, const Csoil_contact& sc, Croad_contact& rc) {
  if (!in_contact) {
    if (rc.contact_state != 0.0) rc.clear_history();  // without contact before there is none
    return;
  }
  rc.last_pressure = sc.pressure;
  qv::assgvec(rc.shear_disp, 2, rc.last_shear_disp);
  rc.last_static_sinkage = sc.static_sinkage;
  const double depth = std::fabs(rc.sinkage);
  if (depth > rc.max_sinkage) rc.max_sinkage = depth;
  if (rc.contact_state == 0.0) {
    rc.contact_state = 1.0;
    qv::assgvec(rc.relative_position, 3, rc.first_contact_position);
    qv::assgvec(rc.tangent_1, 3, rc.first_contact_tangent_1);
    qv::assgvec(rc.tangent_2, 3, rc.first_contact_tangent_2);
  } else if (rc.contact_state == 1.0) {
    rc.contact_state = 2.0;
  }
}

void place_on_body(const contact_patch& patch, const CRoad& road, CSoilInteraction& element) {
  for (int i = 0; i < patch.nx; ++i) {
    for (int j = 0; j < patch.ny; ++j) {
      const auto row = static_cast<std::size_t>(i), column = static_cast<std::size_t>(j);
      element.road_contacts[row][column].Calculation_Si_prime(i, j, patch.shape, patch.a, patch.w, patch.nx, patch.ny);
      element.soil_contacts[row][column].soil_type = road.soil_type;  // constant from here on: a road is read once
    }
  }
}

/// One call's way over the points of an element, in blocks.
class evaluation {
public:
  evaluation(void* handle, const parameters& p, int iflag, const CRoad& road, const kinematics& k, double* result,
             int& ierr, char** msg)
      : handle_(handle),
        p_(p),
        iflag_(iflag),
        road_(road),
        k_(k),
        law_(road, p.bekker_width()),
        frames_(road, k),
        result_(result),
        ierr_(ierr),
        msg_(msg) {}

  void run(CSoilInteraction& element) {
    work* now = &work_[0];
    work* next = &work_[1];
    for (int i = 0; i < p_.patch.nx; ++i) {
      Croad_contact* road_contacts = element.road_contacts[static_cast<std::size_t>(i)].data();
      Csoil_contact* soil_contacts = element.soil_contacts[static_cast<std::size_t>(i)].data();
      for (int j = 0; j < p_.patch.ny; ++j) {
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

  /// Places the next block, so that its triangles come from memory while the one before is finished.
  void advance(work*& now, work*& next) {
    place_points(road_, k_, next->block, ierr_, msg_);
    finish(*now);
    std::swap(now, next);
  }

  void finish(work& w) {
    contact_block& block = w.block;
    get_contact_info(handle_, road_, p_.patch.shape, k_, frames_, block, msg_);
    // A body without width is refused at its first point in contact; what comes before stands in the result.
    const int end = law_.bekker.b == 0.0 ? first_in_contact(block) : block.count;
    load_points(w, 0, end);
    totals sum;
    qv::assgvec(result_, k_totals, sum.values);
    for (int b = 0; b < end; ++b, point_ += k_values_per_point) {
      Croad_contact& rc = *block.points[b];
      Csoil_contact& sc = *w.soil[b];
      qv::assgvec(rc.position, 3, point_ + 3);
      if (block.in_contact[b]) {
        genenralized_contact_force(rc, sc);
        sum.add(sc);
        write_point(rc, sc, point_);
      }
      if (iflag_ == 2) advance_history(block.in_contact[b], sc, rc);
    }
    qv::assgvec(sum.values, k_totals, result_);
    if (end < block.count) load_points(w, end, end + 1);
    block.count = block.near_count = 0;
  }

  static int first_in_contact(const contact_block& block) {
    return static_cast<int>(std::find(block.in_contact, block.in_contact + block.count, true) - block.in_contact);
  }

  /// Loads of those points from `begin` to `end` that are in contact.
  void load_points(const work& w, int begin, int end) {
    Croad_contact* road_contacts[k_block];
    Csoil_contact* soil_contacts[k_block];
    int count = 0;
    for (int b = begin; b < end; ++b) {
      if (!w.block.in_contact[b]) continue;
      road_contacts[count] = w.block.points[b];
      soil_contacts[count++] = w.soil[b];
    }
    get_soil_force(law_, p_.patch, road_contacts, soil_contacts, count, ierr_, msg_);
  }

  void* handle_;
  const parameters& p_;
  int iflag_;
  const CRoad& road_;
  const kinematics& k_;
  soil_law law_;
  frame_maker frames_;
  double* result_;
  double* point_ = result_ + k_totals;  ///< where the next point's values go
  int& ierr_;
  char** msg_;
  work work_[2];
};

/// The entry of (road, element), or null when nothing of that kind is set up yet. An index outside a container that
/// is filled is a fault.
template <class Entry>
Entry* find_entry(std::vector<std::vector<Entry>>& container, const parameters& p, int& ierr, char** msg) {
  if (container.empty()) return nullptr;
  qv::check_index(p.road, container.size(), "road index (parameter 3)", {k_prefix, ierr, msg});
  std::vector<Entry>& entries = container[static_cast<std::size_t>(p.road)];
  if (entries.empty()) return nullptr;
  qv::check_index(p.element, entries.size(), "element index (parameter 0)", {k_prefix, ierr, msg});
  return &entries[static_cast<std::size_t>(p.element)];
}

/// Refuses a grid larger than the one set up: neither the records nor the host's result array have room for it.
void check_grid(const parameters& p, const CSoilInteraction& element, int& ierr, char** msg) {
  const auto check = [&](int count, int set_up, const char* quantity) {
    if (count <= set_up) return;
    qv::fault(std::string(k_prefix) + "The " + quantity + " is " + std::to_string(count) +
                  "; the element was set up with " + std::to_string(set_up) + ".",
              ierr, msg);
  };
  check(p.patch.nx, element.nx, "grid count along or around (parameter 12)");
  check(p.patch.ny, element.ny, "grid count across (parameter 13)");
}

/// The element when it is set up, else null: an element asked before its set-up has no points and exerts nothing.
CSoilInteraction* find_element(const parameters& p, int& ierr, char** msg) {
  CSoilInteraction* element = find_entry(s_3Dsoil_forces, p, ierr, msg);
  if (element == nullptr || element->element_id == qvsoilrdf::k_not_set) return nullptr;
  check_grid(p, *element, ierr, msg);
  return element;
}

void interaction(void* handle, double* par, int iflag, double* result, int& ierr, char** msg) {
  const parameters p(par, {k_prefix, ierr, msg});
  CSoilInteraction* element = find_element(p, ierr, msg);
  std::fill_n(result, k_totals + k_values_per_point * p.points(), 0.0);
  if (iflag == 1) {
    set_up_road(handle, p, ierr, msg);
    set_up_element(p, ierr, msg);
    element = find_element(p, ierr, msg);
  }
  force_sums* sums = find_entry(s_3Dsoil_contact_forces_Sum, p, ierr, msg);
  if (element == nullptr || sums == nullptr) return;
  sums->fill(0.0);
  const CRoad& road = s_3Dsoil_roads[static_cast<std::size_t>(p.road)];
  const kinematics k = fetch_kinematics(handle, p);
  if (iflag == 1) place_on_body(p.patch, road, *element);
  evaluation(handle, p, iflag, road, k, result, ierr, msg).run(*element);
  *sums = {result[0], result[1], result[2], result[6]};
}

}  // namespace

void qvsoil_interaction(void* handle, double /*time*/, double* par, int /*npar*/, int /*difflag*/, int iflag,
                        double* result, int& ierr, char** msg) {
  try {
    interaction(handle, par, iflag, result, ierr, msg);
  } catch (const std::exception& error) {
    qv::fault(std::string(k_prefix) + error.what(), ierr, msg);
  }
}

// Without a handler of its own: a standard exception passes to the frame, which reports what is stored (nothing).
void qvsoil_interaction_Sum(void* /*handle*/, double /*time*/, double* par, int /*npar*/, int /*difflag*/, int iflag,
                            double* result, int& ierr, char** msg) {
  std::fill_n(result, 4, 0.0);
  if (iflag != 2 || s_3Dsoil_contact_forces_Sum.empty()) return;
  const qv::fault_channel channel{k_prefix, ierr, msg};
  const int road = qv::to_int(par[0], "road index (parameter 0)", channel);
  qv::check_index(road, s_3Dsoil_contact_forces_Sum.size(), "road index (parameter 0)", channel);
  for (const force_sums& sums : s_3Dsoil_contact_forces_Sum[static_cast<std::size_t>(road)]) {
    for (std::size_t c = 0; c < sums.size(); ++c) result[c] += sums[c];
  }
}

}  // namespace qvsoilinteraction

extern "C" QV_EXPORT void qvsoil_interaction(void* handle, double time, double* par, int npar, int difflag, int iflag,
                                             double* result) {
  qv::run_user_subroutine(qvsoilinteraction::qvsoil_interaction, handle, time, par, npar, difflag, iflag, result);
}

extern "C" QV_EXPORT void qvsoil_interaction_Sum(void* handle, double time, double* par, int npar, int difflag,
                                                 int iflag, double* result) {
  qv::run_user_subroutine(qvsoilinteraction::qvsoil_interaction_Sum, handle, time, par, npar, difflag, iflag, result);
}
