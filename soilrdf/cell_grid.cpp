#include "soilrdf/cell_grid.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <utility>

#include "soilrdf/cell_fill.h"
#include "soilrdf/road.h"

namespace qvsoilrdf {
namespace {

// Side of the bit window, in cells. A cell is half the largest cyclic corner difference, so most triangles span up to
// four; wider ones take the slow path.
constexpr std::int32_t k_window = 8;
// Relative safety margin, far above double rounding (about 1e-16): farther apart than this, two things certainly do not
// touch.
constexpr double k_clear = 1e-9;

/// A run of cells along one axis.
struct range {
  std::int32_t first = 0;
  std::int32_t count = 0;
};

/// The cells of a coordinate along one axis.
struct cells_of_coordinate {
  range in;    ///< cells whose closed bounds hold it: one, two at a shared border, by rounding perhaps none
  range near;  ///< cells that hold it or are so near to it that rounding may make an edge cross them
};

/// One axis of the grid: cell k spans [lo(k), hi(k)], rounded as in a cell's record.
struct axis {
  double min;
  double length;
  std::int32_t count;
  double near;  ///< safety margin: two things farther apart than this certainly do not touch

  axis(double from, double to, double cell, std::int32_t cells, double widest)
      : min(from),
        length(cell),
        count(cells),
        near(k_clear * (4.0 * widest + cell) +
             8.0 * std::numeric_limits<double>::epsilon() * std::max(std::fabs(from), std::fabs(to))) {}

  double lo(std::int32_t k) const { return min + length * k; }
  double hi(std::int32_t k) const { return lo(k) + length; }

  cells_of_coordinate find(double x) const {
    const double guess = (x - min) / length;
    const std::int32_t middle = guess < count ? static_cast<std::int32_t>(guess) : count - 1;
    std::int32_t first = middle, last = middle;
    while (first > 0 && hi(first - 1) >= x - near) --first;
    while (last + 1 < count && lo(last + 1) <= x + near) ++last;
    cells_of_coordinate cells;
    cells.near = {first, last - first + 1};
    while (first <= last && hi(first) < x) ++first;
    while (last >= first && lo(last) > x) --last;
    cells.in = {first, last - first + 1};
    return cells;
  }
};

/// The cells of a node.
struct node_cells {
  cells_of_coordinate x, y;
};

/// The cells that one triangle meets: bit 8 a + b of `cells` stands for cell (column + a, row + b).
struct footprint {
  std::int32_t column = 0;
  std::int32_t row = 0;
  std::uint64_t cells = 0;
  static constexpr std::int32_t k_wide = -1;  // as column: the triangle is wider than the window
};

/// The bits of the cells in `columns` and `rows`, in a window that begins at (column, row).
std::uint64_t bits(const range& columns, const range& rows, std::int32_t column, std::int32_t row) {
  if (columns.count == 0 || rows.count == 0) return 0;
  const std::uint64_t one_column = ((std::uint64_t{1} << rows.count) - 1) << (rows.first - row);
  const std::uint64_t every_column = 0x0101010101010101U >> (k_window * (k_window - columns.count));
  return (one_column * every_column) << (k_window * (columns.first - column));
}

/// FindInterSectionPoint without its divisions: a correctly rounded quotient lies in [0, 1] exactly if its numerator
/// lies between 0 and its denominator. A quotient that could underflow or is NaN is left to FindInterSectionPoint.
bool segments_meet(double x1, double y1, double x2, double y2, const CNode& A, const CNode& B) {
  const double dx = x2 - x1, dy = y2 - y1;
  double den = dx * (B.y - A.y) - dy * (B.x - A.x);
  if (!(std::fabs(den) < 1e200)) return FindInterSectionPoint(x1, y1, x2, y2, A.x, A.y, B.x, B.y);
  double na = (y1 - A.y) * (B.x - A.x) - (x1 - A.x) * (B.y - A.y);
  double nb = (y1 - A.y) * dx - (x1 - A.x) * dy;
  if (den == 0.0 || (na == 0.0 && nb == 0.0)) return false;
  if (den < 0.0) den = -den, na = -na, nb = -nb;
  return na >= 0.0 && na <= den && nb >= 0.0 && nb <= den;
}

bool edge_crosses_cell(const CCell& cell, const CNode& A, const CNode& B) {
  return segments_meet(cell.x_lo, cell.y_lo, cell.x_hi, cell.y_lo, A, B) ||
         segments_meet(cell.x_hi, cell.y_lo, cell.x_hi, cell.y_hi, A, B) ||
         segments_meet(cell.x_lo, cell.y_hi, cell.x_hi, cell.y_hi, A, B) ||
         segments_meet(cell.x_lo, cell.y_lo, cell.x_lo, cell.y_hi, A, B);
}

/// The line through an edge. Its distance is scaled by the edge's length, and so is `reach`: a cell whose centre is
/// farther from the line than that does not touch it.
struct edge_line {
  double dx, dy, x, y, reach;

  edge_line(const CNode& A, const CNode& B, const axis& along_x, const axis& along_y)
      : dx(B.x - A.x),
        dy(B.y - A.y),
        x(A.x),
        y(A.y),
        reach(std::fabs(dx) * (0.5 * along_y.length + along_y.near) +
              std::fabs(dy) * (0.5 * along_x.length + along_x.near)) {}

  double distance(double at_x, double at_y) const { return dx * (at_y - y) - dy * (at_x - x); }
};

}  // namespace

/// Takes two passes over the triangles: the first finds the cells of each triangle and counts their entries, the second
/// writes the entries.
class cell_grid_builder {
public:
  explicit cell_grid_builder(CRoad& road)
      : m_road(road),
        m_along_x(road.x_min, road.x_max, road.cell_dx, road.nx, road.max_dx),
        m_along_y(road.y_min, road.y_max, road.cell_dy, road.ny, road.max_dy) {}

  void build() {
    const auto tiles = [](std::int32_t cells) {
      return (static_cast<std::size_t>(cells) + cell_grid::k_tile - 1) / cell_grid::k_tile;
    };
    m_grid.m_tile_rows = tiles(m_road.ny);
    m_grid.m_data.resize(tiles(m_road.nx) * m_grid.m_tile_rows * cell_grid::k_tile * cell_grid::k_tile + 1);
    for (cell_grid::cell_data& cell : m_grid.m_data) cell.top = -std::numeric_limits<float>::infinity();
    find_node_cells();
    count_entries();
    turn_counts_into_starts();
    write_entries();
    m_road.cells = std::move(m_grid);  // only a finished grid is ever seen
  }

private:
  void find_node_cells() {
    m_node_cells.reserve(m_road.nodes.size());
    for (const CNode& node : m_road.nodes) m_node_cells.push_back({m_along_x.find(node.x), m_along_y.find(node.y)});
  }

  const CNode& corner(const CElement& element, int k) const {
    return m_road.nodes[static_cast<std::size_t>(element.node[k] - 1)];
  }
  const node_cells& corner_cells(const CElement& element, int k) const {
    return m_node_cells[static_cast<std::size_t>(element.node[k] - 1)];
  }

  /// The cells that a triangle's bounds reach.
  struct box {
    range columns;
    range rows;
    bool wide() const { return columns.count > k_window || rows.count > k_window; }
  };

  static range hull(const range& a, const range& b, const range& c) {
    const std::int32_t first = std::min(std::min(a.first, b.first), c.first);
    const std::int32_t end = std::max(std::max(a.first + a.count, b.first + b.count), c.first + c.count);
    return {first, end - first};
  }

  box bounds_of(const CElement& element) const {
    const node_cells &K = corner_cells(element, 0), &L = corner_cells(element, 1), &M = corner_cells(element, 2);
    return {hull(K.x.near, L.x.near, M.x.near), hull(K.y.near, L.y.near, M.y.near)};
  }

  footprint find_footprint(const CElement& element) const {
    const box bounds = bounds_of(element);
    if (bounds.wide()) return {footprint::k_wide, 0, 0};
    footprint print{bounds.columns.first, bounds.rows.first, 0};
    for (int k = 0; k < 3; ++k) {
      const node_cells& own = corner_cells(element, k);
      print.cells |= bits(own.x.in, own.y.in, print.column, print.row);
    }
    const std::uint64_t rest = bits(bounds.columns, bounds.rows, print.column, print.row) & ~print.cells;
    if (rest != 0) print.cells |= crossed(element, print, rest);
    return print;
  }

  /// The cells among `rest` that an edge of the triangle crosses. Precondition: no cell of `rest` holds a corner.
  std::uint64_t crossed(const CElement& element, const footprint& print, std::uint64_t rest) const {
    const CNode* corners[3] = {&corner(element, 0), &corner(element, 1), &corner(element, 2)};
    const edge_line lines[3] = {{*corners[0], *corners[1], m_along_x, m_along_y},
                                {*corners[1], *corners[2], m_along_x, m_along_y},
                                {*corners[2], *corners[0], m_along_x, m_along_y}};
    // The side of each line that the triangle is on.
    const double side = lines[0].distance(corners[2]->x, corners[2]->y) < 0.0 ? -1.0 : 1.0;
    std::uint64_t found = 0;
    for (; rest != 0; rest &= rest - 1) {
      const int bit = __builtin_ctzll(rest);
      const CCell cell = cell_at(print, bit);
      const double x = 0.5 * (cell.x_lo + cell.x_hi), y = 0.5 * (cell.y_lo + cell.y_hi);
      double distances[3];
      for (int e = 0; e < 3; ++e) distances[e] = lines[e].distance(x, y);
      // A cell that is clear of the triangle beyond one edge is clear of the other edges too.
      bool beyond = false;
      for (int e = 0; e < 3; ++e) beyond = beyond || distances[e] * side < -lines[e].reach;
      if (beyond) continue;
      for (int e = 0; e < 3; ++e) {
        if (std::fabs(distances[e]) > lines[e].reach) continue;
        // The edge runs as in the definition (K to M, not M to K): rounding depends on its direction.
        if (!edge_crosses_cell(cell, *corners[e == 2 ? 0 : e], *corners[e == 2 ? 2 : e + 1])) continue;
        found |= std::uint64_t{1} << bit;
        break;
      }
    }
    return found;
  }

  CCell cell_at(const footprint& print, int bit) const {
    return m_road.cell_bounds(print.column + bit / k_window, print.row + bit % k_window);
  }

  /// Calls visit(cell index) for every cell that the triangle meets.
  template <class Visit>
  void for_each_cell(const CElement& element, const footprint& print, Visit&& visit) const {
    if (print.column == footprint::k_wide) {
      const box bounds = bounds_of(element);
      for (std::int32_t i = bounds.columns.first; i < bounds.columns.first + bounds.columns.count; ++i)
        for (std::int32_t j = bounds.rows.first; j < bounds.rows.first + bounds.rows.count; ++j)
          if (meets_by_definition(element, i, j)) visit(m_grid.index(i, j));
      return;
    }
    for (std::uint64_t rest = print.cells; rest != 0; rest &= rest - 1) {
      const int bit = __builtin_ctzll(rest);
      visit(m_grid.index(print.column + bit / k_window, print.row + bit % k_window));
    }
  }

  static bool holds(const range& cells, std::int32_t k) { return k >= cells.first && k < cells.first + cells.count; }

  bool meets_by_definition(const CElement& element, std::int32_t i, std::int32_t j) const {
    const CCell cell = m_road.cell_bounds(i, j);
    for (int k = 0; k < 3; ++k) {
      const node_cells& own = corner_cells(element, k);
      if (holds(own.x.in, i) && holds(own.y.in, j)) return true;
    }
    return CrossCheck_Element(cell, corner(element, 0), corner(element, 1), corner(element, 2));
  }

  void count_entries() {
    m_footprints.reserve(m_road.elements.size());
    for (const CElement& element : m_road.elements) {
      m_footprints.push_back(find_footprint(element));
      for_each_cell(element, m_footprints.back(), [this](std::size_t cell) { ++m_grid.m_data[cell + 1].end; });
    }
  }

  void turn_counts_into_starts() {
    std::uint64_t start = 0;
    for (cell_grid::cell_data& cell : m_grid.m_data) {
      const std::uint32_t count = cell.end;
      cell.end = static_cast<std::uint32_t>(start);
      start += count;
      if (start > std::numeric_limits<std::uint32_t>::max()) throw std::length_error("road grid");
    }
    m_grid.m_numbers.resize(start);
  }

  void write_entries() {
    auto print = m_footprints.begin();
    for (const CElement& element : m_road.elements) {
      const float top = top_of(element);
      for_each_cell(element, *print++, [this, &element, top](std::size_t cell) {
        cell_grid::cell_data& data = m_grid.m_data[cell + 1];
        m_grid.m_numbers[data.end++] = element.id;
        data.top = std::max(data.top, top);
      });
    }
  }

  /// A height above the facet's plane over its triangle, and also where the search still counts a point as on an edge:
  /// there a barycentric coordinate may be -1/11, which lifts the plane by less than the triangle is high.
  float top_of(const CElement& element) const {
    if (std::isnan(m_road.facets[static_cast<std::size_t>(element.id - 1)].gradient[0])) {
      return std::numeric_limits<float>::infinity();
    }
    const auto [low, high] = std::minmax({corner(element, 0).z, corner(element, 1).z, corner(element, 2).z});
    // The last term is far larger than any rounding, of the float too.
    return static_cast<float>(high + (high - low) +
                              2e-6 * (std::fabs(high) + std::fabs(low) + m_road.cell_dx + m_road.cell_dy));
  }

  CRoad& m_road;
  cell_grid m_grid;
  axis m_along_x;
  axis m_along_y;
  qv::large_vector<node_cells> m_node_cells;
  qv::large_vector<footprint> m_footprints;
};

void build_cell_grid(CRoad& road) { cell_grid_builder(road).build(); }

}  // namespace qvsoilrdf
