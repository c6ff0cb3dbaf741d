#include <algorithm>
#include <cmath>
#include <limits>
#include <mutex>

#include "soilrdf/cell_fill.h"
#include "soilrdf/facet.h"
#include "soilrdf/grid_axis.h"
#include "soilrdf/road.h"

namespace qvsoilrdf {
namespace {

constexpr std::int32_t k_side = 8;  ///< cells along a side of a tile, bits of a column

/// The bits of the cells in `columns` and `rows` of a tile.
std::uint64_t bits(const range& columns, const range& rows) {
  if (columns.first >= columns.end || rows.first >= rows.end) return 0;
  const std::uint64_t one_column = ((std::uint64_t{1} << rows.count()) - 1) << rows.first;
  const std::uint64_t every_column = 0x0101010101010101U >> (k_side * (k_side - columns.count()));
  return (one_column * every_column) << (k_side * columns.first);
}

/// Calls visit(index of the lowest bit), and so on for all bits.
template <class Visit>
void for_each_bit(std::uint64_t rest, Visit&& visit) {
  for (; rest != 0; rest &= rest - 1) visit(static_cast<std::uint32_t>(__builtin_ctzll(rest)));
}

/// The part of a run of cells that is in the tile that begins at cell `first`, counted from there.
range in_tile(const range& cells, std::int32_t first) {
  return {std::max(cells.first - first, 0), std::min(cells.end - first, k_side)};
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

/// The closed bounds of a cell.
struct rectangle {
  double x_lo, x_hi, y_lo, y_hi;
};

bool edge_crosses_cell(const rectangle& cell, const CNode& A, const CNode& B) {
  return segments_meet(cell.x_lo, cell.y_lo, cell.x_hi, cell.y_lo, A, B) ||
         segments_meet(cell.x_hi, cell.y_lo, cell.x_hi, cell.y_hi, A, B) ||
         segments_meet(cell.x_lo, cell.y_hi, cell.x_hi, cell.y_hi, A, B) ||
         segments_meet(cell.x_lo, cell.y_lo, cell.x_lo, cell.y_hi, A, B);
}

/// The line through an edge. Its distance is scaled by the edge's length, and so is `reach`: a cell whose centre is
/// farther from the line than that does not touch it.
struct edge_line {
  double dx, dy, x, y, reach;

  edge_line(const CNode& A, const CNode& B, const grid_axis& along_x, const grid_axis& along_y)
      : dx(B.x - A.x),
        dy(B.y - A.y),
        x(A.x),
        y(A.y),
        reach(std::fabs(dx) * (0.5 * along_y.length + along_y.near) +
              std::fabs(dy) * (0.5 * along_x.length + along_x.near)) {}

  double distance(double at_x, double at_y) const { return dx * (at_y - y) - dy * (at_x - x); }
};

/// The corners of a triangle.
struct triangle {
  const CNode &K, &L, &M;

  triangle(const CRoad& road, const corner_numbers& element)
      : K(road.corner(element, 0)), L(road.corner(element, 1)), M(road.corner(element, 2)) {}
};

/// The cells of a node.
struct node_cells {
  std::int32_t number = 0;  ///< of the node, from 1
  range columns, rows;      ///< of the whole grid: cells that hold the node or are near to it
  std::uint64_t cells;      ///< of the tile: those whose closed bounds hold the node
};

}  // namespace

class tile_maker {
public:
  tile_maker(const CRoad& road, std::size_t tile)
      : m_road(road),
        m_grid(road.cells),
        m_tile(tile),
        m_column(static_cast<std::int32_t>(tile / m_grid.m_tile_rows) * k_side),
        m_row(static_cast<std::int32_t>(tile % m_grid.m_tile_rows) * k_side),
        m_along_x(grid_axis::along_x(road)),
        m_along_y(grid_axis::along_y(road)) {
    static_assert(k_side == cell_grid::k_tile);
    std::fill_n(m_top, cell_grid::k_cells, -std::numeric_limits<float>::infinity());
  }

  void make() {
    find_footprints();
    begin_lists();
    write_lists();
    __atomic_store_n(&m_grid.m_made[m_tile], std::uint8_t{1}, __ATOMIC_RELEASE);
  }

private:
  /// Finds the footprints of all triangles that meet the tile, in element order.
  void find_footprints() {
    const std::size_t column = m_tile / m_grid.m_tile_rows, row = m_tile % m_grid.m_tile_rows;
    const std::size_t columns = std::min(column, m_grid.m_reach_columns), rows = std::min(row, m_grid.m_reach_rows);
    for (std::size_t c = column - columns; c <= column; ++c)
      for (std::size_t r = row - rows; r <= row; ++r) add_footprints(m_grid.m_homes[c * m_grid.m_tile_rows + r]);
    const auto begin = m_grid.m_footprints.begin();
    std::sort(begin, begin + m_count,
              [](const cell_grid::footprint& a, const cell_grid::footprint& b) { return a.number < b.number; });
  }

  /// Adds the footprints of the elements of one home, from the given element on.
  void add_footprints(std::int32_t number) {
    for (; number != 0; number = m_grid.m_next[static_cast<std::size_t>(number - 1)]) {
      const std::uint64_t cells = find_cells(m_road.elements[static_cast<std::size_t>(number - 1)]);
      if (cells != 0) m_grid.m_footprints[static_cast<std::size_t>(m_count++)] = {number, cells};
    }
  }

  std::uint64_t find_cells(const corner_numbers& element) {
    range columns = {std::numeric_limits<std::int32_t>::max(), 0}, rows = columns;
    std::uint64_t cells = 0;
    for (const std::int32_t number : element.node) {
      const node_cells& own = cells_of(number);
      columns = {std::min(columns.first, own.columns.first), std::max(columns.end, own.columns.end)};
      rows = {std::min(rows.first, own.rows.first), std::max(rows.end, own.rows.end)};
      cells |= own.cells;
    }
    const std::uint64_t box = bits(in_tile(columns, m_column), in_tile(rows, m_row));
    return box == 0 ? 0 : cells | crossed(triangle(m_road, element), box & ~cells);
  }

  /// The cells of a node, which the six or so triangles around it ask for.
  const node_cells& cells_of(std::int32_t number) {
    constexpr std::uint32_t k_golden = 2654435769U;  // multiplicative hash: 2^32 over the golden ratio
    node_cells& own = m_nodes[(static_cast<std::uint32_t>(number) * k_golden) >> (32 - k_node_bits)];
    if (own.number == number) return own;  // otherwise another node has had this place, or none
    const CNode& node = m_road.nodes[static_cast<std::size_t>(number - 1)];
    own.number = number;
    own.columns = m_along_x.reached(node.x, node.x);
    own.rows = m_along_y.reached(node.y, node.y);
    own.cells = bits(in_tile(m_along_x.holding(node.x, own.columns), m_column),
                     in_tile(m_along_y.holding(node.y, own.rows), m_row));
    return own;
  }

  /// The cells among `rest` that an edge of the triangle crosses. Precondition: no cell of `rest` holds a corner.
  std::uint64_t crossed(const triangle& t, std::uint64_t rest) const {
    if (rest == 0) return 0;
    const edge_line lines[3] = {
        {t.K, t.L, m_along_x, m_along_y}, {t.L, t.M, m_along_x, m_along_y}, {t.M, t.K, m_along_x, m_along_y}};
    // The side of each line that the triangle is on.
    const double side = lines[0].distance(t.M.x, t.M.y) < 0.0 ? -1.0 : 1.0;
    std::uint64_t found = 0;
    for_each_bit(rest, [&](std::uint32_t bit) {
      const rectangle cell = cell_at(bit);
      const double x = 0.5 * (cell.x_lo + cell.x_hi), y = 0.5 * (cell.y_lo + cell.y_hi);
      double distances[3];
      for (int e = 0; e < 3; ++e) distances[e] = lines[e].distance(x, y);
      // A cell that is clear of the triangle beyond one edge is clear of the other edges too.
      bool beyond = false;
      for (int e = 0; e < 3; ++e) beyond = beyond || distances[e] * side < -lines[e].reach;
      if (beyond) return;
      const auto near_line = [&](int e) { return !(std::fabs(distances[e]) > lines[e].reach); };
      // The edges run as in the definition (K to M, not M to K): rounding depends on their direction.
      const bool crosses = (near_line(0) && edge_crosses_cell(cell, t.K, t.L)) ||
                           (near_line(1) && edge_crosses_cell(cell, t.L, t.M)) ||
                           (near_line(2) && edge_crosses_cell(cell, t.K, t.M));
      if (crosses) found |= std::uint64_t{1} << bit;
    });
    return found;
  }

  rectangle cell_at(std::uint32_t bit) const {
    const std::int32_t i = m_column + static_cast<std::int32_t>(bit / k_side);
    const std::int32_t j = m_row + static_cast<std::int32_t>(bit % k_side);
    return {m_along_x.lo(i), m_along_x.hi(i), m_along_y.lo(j), m_along_y.hi(j)};
  }

  /// Counts the entries of the cells and gives each list its place.
  void begin_lists() {
    std::uint32_t count[cell_grid::k_cells] = {};
    for (std::int32_t f = 0; f < m_count; ++f) {
      for_each_bit(m_grid.m_footprints[static_cast<std::size_t>(f)].cells, [&](std::uint32_t bit) { ++count[bit]; });
    }
    for (std::size_t cell = 0; cell < cell_grid::k_cells; ++cell) {
      m_list[cell] = m_end[cell] = 0;  // the empty list
      if (count[cell] == 0) continue;
      m_list[cell] = static_cast<std::uint32_t>(m_grid.m_used);
      m_grid.m_numbers[m_grid.m_used] = static_cast<std::int32_t>(count[cell]);
      m_end[cell] = m_list[cell] + 1;
      m_grid.m_used += 1 + count[cell];
    }
  }

  void write_lists() {
    for (std::int32_t f = 0; f < m_count; ++f) {
      const cell_grid::footprint& print = m_grid.m_footprints[static_cast<std::size_t>(f)];
      const auto index = static_cast<std::size_t>(print.number - 1);
      const triangle t(m_road, m_road.elements[index]);
      if (m_grid.m_has_facet[index] == 0) {
        m_road.facets[index] = make_facet(t.K, t.L, t.M);
        m_grid.m_has_facet[index] = 1;
      }
      const float top = top_of(t, m_road.facets[index]);
      for_each_bit(print.cells, [&](std::uint32_t bit) {
        m_grid.m_numbers[m_end[bit]++] = print.number;
        m_top[bit] = std::max(m_top[bit], top);
      });
    }
    for (std::size_t cell = 0; cell < cell_grid::k_cells; ++cell) {
      m_grid.m_data[m_tile * cell_grid::k_cells + cell] = {m_list[cell], m_top[cell]};
    }
  }

  /// A height above the facet's plane over its triangle, and also where the search still counts a point as on an edge:
  /// there a barycentric coordinate may be -1/11, which lifts the plane by less than the triangle is high.
  float top_of(const triangle& t, const CFacet& facet) const {
    if (std::isnan(facet.gradient[0])) return std::numeric_limits<float>::infinity();
    const double low = lowest(t.K.z, t.L.z, t.M.z), high = highest(t.K.z, t.L.z, t.M.z);
    // The last term is far larger than any rounding, of the float too.
    return static_cast<float>(high + (high - low) +
                              2e-6 * (std::fabs(high) + std::fabs(low) + m_road.cell_dx + m_road.cell_dy));
  }

  const CRoad& m_road;
  const cell_grid& m_grid;
  const std::size_t m_tile;
  const std::int32_t m_column;  ///< of the tile's first cell
  const std::int32_t m_row;
  const grid_axis m_along_x;
  const grid_axis m_along_y;
  static constexpr int k_node_bits = 7;
  node_cells m_nodes[1 << k_node_bits];      ///< by hash of the number
  std::int32_t m_count = 0;                  ///< of the footprints
  std::uint32_t m_list[cell_grid::k_cells];  ///< where the list of a cell stands
  std::uint32_t m_end[cell_grid::k_cells];   ///< where its next entry goes
  float m_top[cell_grid::k_cells];
};

void make_tile(const CRoad& road, std::size_t tile) {
  const std::lock_guard<std::mutex> guard(road.cells.m_lock.mutex);
  if (!road.cells.is_made(tile * cell_grid::k_cells)) tile_maker(road, tile).make();
}

}  // namespace qvsoilrdf
