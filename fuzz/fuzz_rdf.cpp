// Any bytes as a road file. The reader either says one message, or gives up on memory in silence, or leaves a road
// whose grid is the one its definition gives; and it does the same a second time.

#include <cmath>
#include <cstdint>
#include <cstring>

#include "fuzz/memory_file.h"
#include "soilrdf/cell_fill.h"
#include "soilrdf/rdf_reader.h"
#include "solver/engine/service_host.h"

namespace {

class SilentHost : public qvslv::ServiceHost {
public:
  void stop(const char*) override {}
  void throw_error(const char*, int, char**) override {}
};

struct reading {
  enum { ready, refused, out_of_memory } end = ready;
  qvsoilrdf::CRoad road;
  std::string message;
};

void read(const memory_file& file, reading& r) {
  SilentHost host;
  int ierr = 0;
  char* msg[5] = {};
  try {
    const bool read = qvsoilrdf::read_rdf(static_cast<qvslv::ServiceHost*>(&host), file.path(), r.road, ierr, msg);
    r.end = read ? reading::ready : reading::out_of_memory;
    QV_PROMISE(ierr == 0 && msg[0] == nullptr);
  } catch (int code) {
    QV_PROMISE(code == 1 && ierr == 1 && msg[0] != nullptr && msg[0][0] != '\0');
    r.end = reading::refused;
    r.message = msg[0];
  }
  for (char* text : msg) delete[] text;
}

void check_road(const qvsoilrdf::CRoad& road) {
  QV_PROMISE(road.nx >= 1 && road.ny >= 1);
  QV_PROMISE(road.x_min <= road.x_max && road.y_min <= road.y_max);
  QV_PROMISE(std::isfinite(road.cell_dx) && std::isfinite(road.cell_dy));
  QV_PROMISE(road.facets.size() == road.elements.size());
  for (std::size_t k = 0; k < road.elements.size(); ++k) QV_PROMISE(!(road.element(k).normal[2] < 0.0));
}

/// Products of larger coordinates overflow in the crossing test, which then calls everything a crossing.
constexpr double k_largest_coordinate = 1e100;

bool is_moderate(const qvsoilrdf::CRoad& road) {
  return std::fmax(std::fabs(road.x_min), std::fabs(road.x_max)) < k_largest_coordinate &&
         std::fmax(std::fabs(road.y_min), std::fabs(road.y_max)) < k_largest_coordinate;
}

/// Holds every cell's list against its definition, on roads that are small enough.
void check_lists(const qvsoilrdf::CRoad& road) {
  if (!is_moderate(road)) return;
  const double cells = static_cast<double>(road.nx) * road.ny;
  if (cells * static_cast<double>(road.elements.size()) > 2e5) return;
  for (std::int32_t i = 0; i < road.nx; ++i) {
    for (std::int32_t j = 0; j < road.ny; ++j) {
      qvsoilrdf::CCell cell = road.cell_bounds(i, j);
      qvsoilrdf::FindElementsBelongtoCell(cell, road.nodes, road.elements);
      QV_PROMISE(cell.elements == road.cell(i, j).elements);
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static memory_file file;
  file.write(data, size);
  reading first, second;
  read(file, first);
  if (first.end == reading::ready) {
    check_road(first.road);
    check_lists(first.road);
  }
  if (first.road.nx > 1000 || first.road.ny > 1000) return 0;
  read(file, second);
  QV_PROMISE(first.end == second.end && first.message == second.message);
  QV_PROMISE(first.road.nx == second.road.nx && first.road.ny == second.road.ny);
  return 0;
}
