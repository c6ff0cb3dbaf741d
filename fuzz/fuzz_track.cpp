#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "fuzz/any_number.h"
#include "fuzz/soil_roads.h"
#include "qvbrisk/subroutines.h"
#include "soilinteraction_mtl/containers.h"
#include "solver/engine/service_host.h"

// Calls a track, its outputs and its state equations with any parameters and states and in any order. Every input
// starts with an empty module.

namespace {

void forget_everything() {
  using namespace qvsoilinteractionmtl;
  s_3Dsoil_roads = {};
  s_MTLsoil_forces = {};
  s_MTLsoil_contact_forces_Sum = {};
  s_MTLsoil_shear_forces_Sum = {};
  s_MTLsoil_normal_forces_Sum = {};
}

constexpr int k_largest_grid = 24, k_largest_chain = 8;  // what the parameter list and the result have room for
constexpr std::size_t k_first_node = 14, k_parameters = k_first_node + 2 * k_largest_chain;

class FuzzedHost : public qvslv::ServiceHost {
public:
  explicit FuzzedHost(FuzzedDataProvider& in) : m_in(in) {}

  /// Markers of nodes have places of their own, all others stand at the origin.
  static bool is_node(double marker) { return marker >= 20 && marker < 20 + k_largest_chain; }

  bool wild = false;  ///< answers anything; otherwise nodes half a length apart are sunk into a road at rest
  double depth = 0.1, belt_speed = 1.0;
  int reports = 0;

  bool vector_quantity(const char* name, const int* ids, int nids, double* values, int& count) override {
    QV_PROMISE(nids == 2 ? count == 9 : nids == 3 && count == 3);
    if (wild && m_in.ConsumeIntegralInRange<int>(0, 15) == 0) return false;  // the host cannot answer
    const bool matrix = std::strcmp(name, "AM") == 0;
    for (int c = 0; c < count; ++c) values[c] = matrix && c % 4 == 0 ? 1.0 : 0.0;
    if (std::strcmp(name, "TDISP") == 0 && is_node(ids[0])) {
      values[0] = 0.5 + 0.45 * (ids[0] - 20);
      values[1] = 2.0;
      values[2] = 0.3 - depth;
    }
    if (wild) {
      for (int c = 0; c < count; ++c)
        if (m_in.ConsumeBool()) values[c] = any_number(m_in, -0.5, 4.5);
    }
    return true;
  }
  bool scalar_quantity(const char* name, const int*, int nids, double& value) override {
    QV_PROMISE(nids == (std::strcmp(name, "FM") == 0 ? 2 : 1));
    if (wild && m_in.ConsumeBool()) return false;
    value = wild ? any_number(m_in, -0.5, 4.5) : belt_speed;
    return true;
  }
  bool string_entity(int id, std::wstring& text) override {
    if (id < 0) return false;
    text = soil_roads::path_of(id);
    return true;
  }
  bool model_path(std::wstring& text) override {
    text = L"/proc/self/model.x";
    return true;
  }
  void stop(const char* message) override { QV_PROMISE(message == nullptr); }
  void throw_error(const char* title, int count, char** messages) override {
    const bool warns = std::strcmp(title, "USUB WARNING") == 0;
    QV_PROMISE(warns ? count == 1 : std::strcmp(title, "USUB ERROR") == 0 && (count == 0 || count == 1));
    if (!warns) ++reports;
    for (int i = 0; i < count; ++i) {
      QV_PROMISE(messages[i] != nullptr && messages[i][0] != '\0');
      delete[] messages[i];
    }
  }

private:
  FuzzedDataProvider& m_in;
};

void* handle_of(FuzzedHost& host) { return static_cast<qvslv::ServiceHost*>(&host); }

/// A count that the arrays have room for, or one that no call accepts.
double capped(double count, int largest) { return count >= largest + 1 ? largest : count; }

std::size_t whole_count(double count) { return count >= 2.0 ? static_cast<std::size_t>(count) : 2; }

struct parameter_list {
  std::vector<double> par = {0, 1, 0, 1, 5, 14, 3, 0.0, 0.4, 3, 2, 11, 4, 0};

  parameter_list() {
    for (int node = 0; node < k_largest_chain; ++node) {
      par.push_back(20 + node);
      par.push_back(0.3);
    }
  }
  void change(FuzzedDataProvider& in) {
    for (int changes = in.ConsumeIntegralInRange<int>(0, 3); changes > 0; --changes) {
      par[in.ConsumeIntegralInRange<std::size_t>(0, k_parameters - 1)] = any_number(in, -0.5, 4.5);
    }
    par[9] = capped(par[9], k_largest_grid);
    par[10] = capped(par[10], k_largest_grid);
    par[12] = capped(par[12], k_largest_chain);
  }
  std::size_t results() const {
    return 4 + 8 * ((whole_count(par[12]) - 1) * (whole_count(par[9]) - 1) + 1) * whole_count(par[10]);
  }
};

/// True if two neighbouring nodes have one centre: the one case in which a call is remembered whatever its iflag is.
bool has_one_centre(const parameter_list& list) {
  for (std::size_t node = 1; node < whole_count(list.par[12]); ++node) {
    const double before = std::trunc(list.par[k_first_node + 2 * node - 2]);
    const double marker = std::trunc(list.par[k_first_node + 2 * node]);
    if (before == marker || (!FuzzedHost::is_node(before) && !FuzzedHost::is_node(marker))) return true;
  }
  return false;
}

constexpr double k_behind = 1234.5;

std::vector<double> call(FuzzedHost& host, parameter_list& list, int iflag, double time) {
  std::vector<double> result(list.results() + 1, k_behind);
  host.reports = 0;
  qvsoil_interaction_mtl(handle_of(host), time, list.par.data(), 0, 0, iflag, result.data());
  QV_PROMISE(host.reports <= 1);
  QV_PROMISE(result.back() == k_behind);
  QV_PROMISE(result[3] == 0.0);
  return result;
}

void check_same(const std::vector<double>& a, const std::vector<double>& b) {
  for (std::size_t i = 0; i < a.size(); ++i) QV_PROMISE(a[i] == b[i] || (std::isnan(a[i]) && std::isnan(b[i])));
}

using subroutine = void (*)(void*, double, double*, int, int, int, double*);

/// An output or a state equation, and the number of its results.
struct other {
  subroutine call;
  std::size_t results;
};
const other k_others[] = {{qvsoil_shearforce_mtl, 6},
                          {qvsoil_normalforce_mtl, 6},
                          {qvsoil_interaction_mtl_sum, 4},
                          {qvsoil_mtl_eom, 6},
                          {qvsoil_mtl_velocity, 1}};

/// Calls an output or equation. At most two entries of `par` are random; the others name track 0 of road 1, and node 1.
void call_other(FuzzedDataProvider& in, FuzzedHost& host, int iflag) {
  const other& chosen = in.PickValueInArray(k_others);
  double par[15] = {0, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1};
  if (chosen.call == qvsoil_interaction_mtl_sum) std::swap(par[0], par[1]);
  for (int changes = in.ConsumeIntegralInRange<int>(0, 2); changes > 0; --changes) {
    par[in.ConsumeIntegralInRange<int>(0, 14)] = any_number(in, -0.5, 4.5);
  }
  double result[7];
  std::fill_n(result, 7, k_behind);
  host.reports = 0;
  chosen.call(handle_of(host), 0.0, par, 0, 0, iflag, result);
  QV_PROMISE(host.reports <= 1);
  for (std::size_t i = chosen.results; i < 7; ++i) QV_PROMISE(result[i] == k_behind);
  for (std::size_t i = 0; i < chosen.results; ++i) QV_PROMISE(result[i] != k_behind);
}

void step(FuzzedDataProvider& in, FuzzedHost& host, parameter_list& list) {
  list.change(in);
  host.wild = in.ConsumeBool();
  host.depth = in.ConsumeFloatingPointInRange<double>(-0.1, 0.4);
  host.belt_speed = in.ConsumeFloatingPointInRange<double>(-1.0, 2.0);
  const int iflag = in.ConsumeIntegralInRange<int>(-1, 3);
  if (in.ConsumeIntegralInRange<int>(0, 3) == 0) return call_other(in, host, iflag);
  const double time = in.ConsumeBool() ? 0.01 : any_number(in, -0.5, 4.5);
  const std::vector<double> result = call(host, list, iflag, time);
  // A wild host would answer differently the second time.
  const bool repeatable = !host.wild && host.reports == 0 && !has_one_centre(list);
  if (repeatable && (iflag == 0 || iflag == 3)) check_same(result, call(host, list, iflag, time));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  forget_everything();
  FuzzedDataProvider in(data, size);
  FuzzedHost host(in);
  parameter_list list;
  list.par[2] = in.ConsumeIntegralInRange<int>(0, static_cast<int>(soil_roads::k_number_of_roads));
  if (in.ConsumeBool()) call(host, list, 1, 0.0);
  for (int steps = 0; steps < 30 && in.remaining_bytes() > 0; ++steps) step(in, host, list);
  return 0;
}
