// Any sequence of calls of the hydro force, its report and the thrust, with any parameters and any states of the
// markers, on a few fixed files. Nothing may crash, hang, leave the exported functions or write beyond the result
// array; a repeated evaluation gives the same bits; a fault is reported once, with at most one text.

#include <fuzzer/FuzzedDataProvider.h>

#include <cmath>
#include <cstring>
#include <vector>

#include "fuzz/any_number.h"
#include "fuzz/water_host.h"
#include "hydro/hydro_force.h"
#include "qvbrisk/subroutines.h"
#include "thrust/thrust_force.h"

namespace {

constexpr int k_most_nodes = 10, k_most_patches = 10, k_most_points = 6;
constexpr double k_behind = 1234.5;

/// A wave and a current to work in, axes that do not increase, and files that cannot be read.
const char* const k_files[] = {
    "3,4\n0,2,4,6\n0,0.1,0.2,-0.1,0,1,2,3,4\n1,0.3,0,0,0.5,0,0,0,0\n2,0,0,0,0,1,1,1,1\n",
    "3,1\n0,1\n3,2\n6,0\n2,0\n-2,1\n2,-1\n",
    "2,3\n4,0,2\n5,1,1,1,1,1,1\n1,2,2,2,2,2,2\n",
    "2,1\n5,1\n1,1\n2,0\n3,1\n-3,2\n",
    "1,1\n1e300\n-1e300,1e300,1e300\n",
    "2,2",
    "0,0\n",
    "",
};
constexpr std::size_t k_number_of_files = sizeof k_files / sizeof *k_files;

/// A tame host has bodies that stand in the waves at `place`; a wild one gives any answer, or none.
class fuzzed_host : public water_host {
public:
  explicit fuzzed_host(FuzzedDataProvider& in) : m_in(in) {}
  bool wild = false;

  bool vector_quantity(const char* name, const int* ids, int nids, double* values, int& count) override {
    if (wild && m_in.ConsumeIntegralInRange<int>(0, 15) == 0) return false;
    water_host::vector_quantity(name, ids, nids, values, count);
    if (std::strcmp(name, "TVEL") == 0 || std::strcmp(name, "RVEL") == 0) values[0] = values[2] = 0.75;
    change(values, count);
    return true;
  }
  bool scalar_quantity(const char* name, const int* ids, int nids, double& value) override {
    QV_PROMISE(nids == 1);
    water_host::scalar_quantity(name, ids, nids, value);
    change(&value, 1);
    return true;
  }
  bool string_entity(int id, std::wstring& text) override {
    static memory_file files[k_number_of_files];
    static const bool written = [] {
      for (std::size_t i = 0; i < k_number_of_files; ++i) files[i].write(k_files[i], std::strlen(k_files[i]));
      return true;
    }();
    if (!written || id < 0) return false;
    text = static_cast<std::size_t>(id) < k_number_of_files ? files[id].path() : L"no such \x4e2d file";
    return true;
  }
  bool units(double scale[5], void* names[5]) override {
    water_host::units(scale, names);
    change(scale, 5);
    return true;
  }

private:
  void change(double* values, int count) {
    if (!wild) return;
    for (int c = 0; c < count; ++c)
      if (m_in.ConsumeBool()) values[c] = any_number(m_in, -1.5, 6.5);
  }

  FuzzedDataProvider& m_in;
};

/// A count that the arrays have room for, or one that no call accepts.
double capped(double count, int most) { return count >= most + 1 && count < 2147483648.0 ? most : count; }
std::size_t whole_count(double count) {
  return count >= 1.0 && count < 2147483648.0 ? static_cast<std::size_t>(count) : 0;
}

/// Parameters of a hull, in the order in which the library takes them.
std::vector<double> hull_parameters(FuzzedDataProvider& in) {
  std::vector<double> par = {0, 2, 0, 3, 3, 4, 5, 0, 1, 7, 0, 0, 1, 0, 0, 1000, 9.81, 0.5, 1.5, 1};
  par[0] = in.ConsumeIntegralInRange<int>(0, 2);
  par[2] = in.ConsumeIntegralInRange<int>(0, 3);
  par[7] = in.ConsumeIntegralInRange<int>(0, static_cast<int>(k_number_of_files));
  par[8] = in.ConsumeIntegralInRange<int>(0, static_cast<int>(k_number_of_files));
  for (int changes = in.ConsumeIntegralInRange<int>(0, 2); changes > 0; --changes) {
    par[in.ConsumeIntegralInRange<std::size_t>(0, 19)] = any_number(in, -1.5, 6.5);
  }
  const bool any = in.ConsumeBool();
  const double nodes =
      capped(any ? any_number(in, -1.5, 6.5) : in.ConsumeIntegralInRange<int>(0, k_most_nodes), k_most_nodes);
  par.push_back(nodes);
  for (std::size_t i = 0; i < 3 * whole_count(nodes); ++i) {
    par.push_back(any ? any_number(in, -1.5, 6.5) : in.ConsumeIntegralInRange<int>(-8, 8) / 4.0);
  }
  const double patches =
      capped(any ? any_number(in, -1.5, 6.5) : in.ConsumeIntegralInRange<int>(0, k_most_patches), k_most_patches);
  par.push_back(patches);
  for (std::size_t i = 0; i < 3 * whole_count(patches); ++i) {
    par.push_back(any ? any_number(in, -1.5, 6.5)
                      : in.ConsumeIntegralInRange<int>(0, static_cast<int>(whole_count(nodes))));
  }
  par.resize(22 + 3 * k_most_nodes + 3 * k_most_patches);
  return par;
}

std::vector<double> call(qv_user_subroutine subroutine, fuzzed_host& host, std::vector<double>& par, double time,
                         int iflag, std::size_t results) {
  std::vector<double> result(results + 1, k_behind);
  host.reports = 0;
  subroutine(host.handle(), time, par.data(), static_cast<int>(par.size()), 0, iflag, result.data());
  QV_PROMISE(host.reports <= 1);
  QV_PROMISE(result.back() == k_behind);
  return result;
}

void check_same(const std::vector<double>& a, const std::vector<double>& b) {
  for (std::size_t i = 0; i < a.size(); ++i) QV_PROMISE(a[i] == b[i] || (std::isnan(a[i]) && std::isnan(b[i])));
}

void step_hull(FuzzedDataProvider& in, fuzzed_host& host, double time, int iflag) {
  std::vector<double> par = hull_parameters(in);
  const std::vector<double> result = call(qvhydro_force, host, par, time, iflag, 34);
  // A wild host would answer differently the second time.
  if (!host.wild && host.reports == 0 && iflag != 2)
    check_same(result, call(qvhydro_force, host, par, time, iflag, 34));
}

void step_report(FuzzedDataProvider& in, fuzzed_host& host, int iflag) {
  std::vector<double> par = {0, 0, 5, 4, 0, 3, 4, 0, 0, 0, 0, 2};
  par[1] = in.ConsumeIntegralInRange<int>(0, 3);
  if (in.ConsumeBool()) par[in.ConsumeIntegralInRange<std::size_t>(0, 11)] = any_number(in, -1.5, 6.5);
  par[11] = capped(par[11], k_most_points);
  for (int i = 0; i < k_most_points; ++i) par.push_back(in.ConsumeBool() ? i : any_number(in, -1.5, 6.5));
  call(qvhydro_report, host, par, 0.0, iflag, 18 + 4 * whole_count(par[11]));
}

void step_thrust(FuzzedDataProvider& in, fuzzed_host& host, double time, int iflag) {
  std::vector<double> par = {0, 2, 3, 0, 4, 5, 1, 0, 0, 0, 1, 1, 1, 1, 0};
  par[0] = in.ConsumeIntegralInRange<int>(0, 2);
  par[6] = in.ConsumeIntegralInRange<int>(0, 4);
  par[14] = in.ConsumeIntegralInRange<int>(0, static_cast<int>(k_number_of_files));
  if (in.ConsumeBool()) par[in.ConsumeIntegralInRange<std::size_t>(0, 14)] = any_number(in, -1.5, 6.5);
  call(qvsoil_thrustforce, host, par, time, iflag, 6);
  call(qvsoil_error_velocity, host, par, time, iflag, 1);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  qvhydro::gp_hydro_force = {};
  qvhydro::s_HydroForce_Report = {};
  qvthrust::gp_Wave = {};
  FuzzedDataProvider in(data, size);
  fuzzed_host host(in);
  for (int steps = 0; steps < 40 && in.remaining_bytes() > 0; ++steps) {
    host.wild = in.ConsumeIntegralInRange<int>(0, 2) == 0;
    host.place[0] = in.ConsumeFloatingPointInRange<double>(-1.0, 7.0);
    host.place[2] = in.ConsumeFloatingPointInRange<double>(-1.0, 1.0);
    const double time =
        in.ConsumeBool() ? in.ConsumeFloatingPointInRange<double>(-1.0, 3.0) : any_number(in, -1.5, 6.5);
    const int iflag = in.ConsumeIntegralInRange<int>(-1, 3);
    switch (in.ConsumeIntegralInRange<int>(0, 5)) {
      case 0:
        step_report(in, host, iflag);
        break;
      case 1:
        step_thrust(in, host, time, iflag);
        break;
      default:
        step_hull(in, host, time, iflag);
    }
  }
  return 0;
}
