// Any sequence of calls of the 3D soil subroutines, with any parameters and any states of the markers, on a few fixed
// road files. Nothing may crash, hang, leave the exported functions or write beyond the result array; a repeated
// evaluation gives the same bits; a fault is reported once, with at most one text.

#include <fuzzer/FuzzedDataProvider.h>

#include <cmath>
#include <cstring>

#include "fuzz/any_number.h"
#include "fuzz/soil_roads.h"
#include "solver/engine/service_host.h"

// The module itself, so that its state can be taken back to the start for every input.
#include "soilinteraction/soilinteraction.cpp"

namespace qvsoilinteraction {

void forget_everything() {
  s_3Dsoil_roads = {};
  s_3Dsoil_forces = {};
  s_3Dsoil_contact_forces_Sum = {};
}

}  // namespace qvsoilinteraction

namespace {

constexpr int k_largest_grid = 64;  // along and across: what the result array has room for

class FuzzedHost : public qvslv::ServiceHost {
public:
  explicit FuzzedHost(FuzzedDataProvider& in) : m_in(in) {}

  bool wild = false;  ///< answers anything; otherwise a body is sunk into a road at rest
  double depth = 0.1;
  int reports = 0;

  bool vector_quantity(const char* name, const int* ids, int nids, double* values, int& count) override {
    QV_PROMISE(nids == 2 ? count == 9 : nids == 3 && count == 3);
    if (wild && m_in.ConsumeIntegralInRange<int>(0, 15) == 0) return false;  // the host cannot answer
    const bool matrix = std::strcmp(name, "AM") == 0;
    for (int c = 0; c < count; ++c) values[c] = matrix && c % 4 == 0 ? 1.0 : 0.0;
    if (std::strcmp(name, "TDISP") == 0 && ids[0] != 5) values[0] = values[1] = 2.0, values[2] = -depth;
    if (wild) {
      for (int c = 0; c < count; ++c)
        if (m_in.ConsumeBool()) values[c] = any_number(m_in, -0.5, 4.5);
    }
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

/// A grid count that the result array has room for, or one that no call accepts.
double capped(double count) { return count >= k_largest_grid + 1 ? k_largest_grid : count; }

int whole_count(double count) { return count >= 1.0 ? static_cast<int>(count) : 0; }

struct parameter_list {
  double par[15] = {0, 1, 0, 0, 0, 5, 0, 2, 3, 1, 0.5, 0.25, 3, 2, 14};

  void change(FuzzedDataProvider& in) {
    for (int changes = in.ConsumeIntegralInRange<int>(0, 3); changes > 0; --changes) {
      par[in.ConsumeIntegralInRange<int>(0, 14)] = any_number(in, -0.5, 4.5);
    }
    par[12] = capped(par[12]);
    par[13] = capped(par[13]);
  }
  std::size_t results() const {
    return 7 + 8 * static_cast<std::size_t>(whole_count(par[12])) * static_cast<std::size_t>(whole_count(par[13]));
  }
};

constexpr double k_behind = 1234.5;

std::vector<double> call(FuzzedHost& host, parameter_list& list, int iflag) {
  std::vector<double> result(list.results() + 1, k_behind);
  host.reports = 0;
  qvsoil_interaction(static_cast<qvslv::ServiceHost*>(&host), 0.0, list.par, 15, 0, iflag, result.data());
  QV_PROMISE(host.reports <= 1);
  QV_PROMISE(result.back() == k_behind);
  return result;
}

void check_same(const std::vector<double>& a, const std::vector<double>& b) {
  for (std::size_t i = 0; i < a.size(); ++i) QV_PROMISE(a[i] == b[i] || (std::isnan(a[i]) && std::isnan(b[i])));
}

void step(FuzzedDataProvider& in, FuzzedHost& host, parameter_list& list) {
  list.change(in);
  host.wild = in.ConsumeBool();
  host.depth = in.ConsumeFloatingPointInRange<double>(-0.1, 0.4);
  const int iflag = in.ConsumeIntegralInRange<int>(-1, 3);
  if (in.ConsumeIntegralInRange<int>(0, 7) == 0) {
    double sums[5] = {0, 0, 0, 0, k_behind}, road[1] = {any_number(in, -0.5, 4.5)};
    qvsoil_interaction_Sum(static_cast<qvslv::ServiceHost*>(&host), 0.0, road, 1, 0, iflag, sums);
    QV_PROMISE(sums[4] == k_behind);
    return;
  }
  const std::vector<double> result = call(host, list, iflag);
  // A wild host would answer differently the second time.
  if (!host.wild && host.reports == 0 && (iflag == 0 || iflag == 3)) check_same(result, call(host, list, iflag));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  qvsoilinteraction::forget_everything();
  FuzzedDataProvider in(data, size);
  FuzzedHost host(in);
  parameter_list list;
  list.par[4] = in.ConsumeIntegralInRange<int>(0, static_cast<int>(soil_roads::k_number_of_roads));
  if (in.ConsumeBool()) call(host, list, 1);
  for (int steps = 0; steps < 40 && in.remaining_bytes() > 0; ++steps) step(in, host, list);
  return 0;
}
