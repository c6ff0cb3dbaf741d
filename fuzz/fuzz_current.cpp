// Any bytes as a CURRENT file. The reader either says one message, or gives up on memory, or leaves the two tables
// that formatted stream extraction fills; and a patch in that current has drag wherever it is.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <sstream>

#include "fuzz/water_host.h"
#include "hydro/hydro_force.h"
#include "qvbrisk/subroutines.h"
#include "tests/reference/hydro_reference.h"

namespace {

constexpr int k_large_table = 100000;

void check_table(const qvhydro::current_table& table, const qvref::current_table& expected) {
  QV_PROMISE(table.key.count() == expected.count && table.mode == expected.mode);
  for (int i = 0; i <= expected.count; ++i) {
    const auto at = static_cast<std::size_t>(i);
    QV_PROMISE(table.key[i] == expected.key[at] && table.value[at] == expected.value[at]);
  }
}

void visit(water_host& host, double* par, const qvhydro::current_table& table, int i) {
  double result[35] = {};
  result[34] = 1234.5;
  for (const double place : {table.key[i], std::nextafter(table.key[i], -1e300), table.key[i] + 0.25}) {
    host.place[0] = host.place[1] = place;
    qvhydro_force(host.handle(), 0.5, par, 35, 0, 0, result);
    QV_PROMISE(result[34] == 1234.5 && host.reports == 0);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static memory_file calm, file;
  static const char k_calm[] = "1,2\n0,1e9\n0,0,0,0,0\n";
  calm.write(k_calm, sizeof k_calm - 1);
  file.write(data, size);
  qvhydro::gp_hydro_force = {};
  water_host host;
  host.files[0] = calm.path();
  host.files[1] = file.path();
  // One patch of three nodes under water.
  double par[] = {0, 1, 0, 1, 3, 4, 5, 0, 1, 1, 0, 0, 1, 0, 0, 1000, 9.81, 1,
                  1, 1, 3, 0, 0, 0, 1, 0, 0, 0, 1, 0, 1, 0, 1, 2,    0};
  double result[34];
  qvhydro_force(host.handle(), 0.0, par, 35, 0, 0, result);
  const qvhydro::Chydro_force& element = qvhydro::gp_hydro_force[0];
  QV_PROMISE(host.reports == (element.files_read ? 0 : 1));
  if (!element.files_read) return 0;
  for (const auto* table : {&element.current1, &element.current2}) {
    if (table->key.count() > k_large_table) return 0;
  }
  std::istringstream text(std::string(reinterpret_cast<const char*>(data), size));
  const qvref::current_file expected = qvref::read_current(text);
  check_table(element.current1, expected.first);
  check_table(element.current2, expected.second);
  for (const auto* table : {&element.current1, &element.current2}) {
    for (int i = 0; i <= std::min(table->key.count(), 12); ++i) visit(host, par, *table, i);
  }
  return 0;
}
