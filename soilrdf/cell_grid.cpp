#include "soilrdf/cell_grid.h"

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <utility>

#include "soilrdf/grid_axis.h"
#include "soilrdf/road.h"

namespace qvsoilrdf {

class grid_builder {
public:
  explicit grid_builder(CRoad& road)
      : m_road(road), m_along_x(grid_axis::along_x(road)), m_along_y(grid_axis::along_y(road)) {}

  void build() {
    const std::size_t tile_columns = tiles(m_road.nx);
    m_grid.m_tile_rows = tiles(m_road.ny);
    // Both are below 2^29. A grid of so many tiles takes more memory than there is, and none is asked for.
    if (tile_columns * m_grid.m_tile_rows > k_most) throw std::length_error("road grid");
    m_grid.m_homes.resize(tile_columns * m_grid.m_tile_rows);
    m_grid.m_made.resize(m_grid.m_homes.size());
    note_homes();
    make_room();
    m_road.cells = std::move(m_grid);  // only a finished grid is ever seen
  }

private:
  static constexpr std::uint64_t k_most = std::numeric_limits<std::uint32_t>::max();  ///< tiles, entries of lists

  static std::size_t tiles(std::int32_t cells) {
    return (static_cast<std::size_t>(cells) + cell_grid::k_tile - 1) / cell_grid::k_tile;
  }

  struct tile_range {
    std::size_t first;
    std::size_t reach;
  };
  static tile_range tiles_of(const range& cells) {
    const std::size_t first = static_cast<std::size_t>(cells.first) / cell_grid::k_tile;
    return {first, static_cast<std::size_t>(cells.end - 1) / cell_grid::k_tile - first};
  }

  /// Goes from the last element to the first and puts each in front, so that the elements of a home ascend.
  void note_homes() {
    m_grid.m_next.resize(m_road.elements.size());
    std::size_t reach_columns = 0, reach_rows = 0;
    for (std::size_t e = m_road.elements.size(); e-- > 0;) {
      const corner_numbers& element = m_road.elements[e];
      const CNode &K = m_road.corner(element, 0), &L = m_road.corner(element, 1), &M = m_road.corner(element, 2);
      const range columns = m_along_x.reached(lowest(K.x, L.x, M.x), highest(K.x, L.x, M.x));
      const range rows = m_along_y.reached(lowest(K.y, L.y, M.y), highest(K.y, L.y, M.y));
      m_most_entries += static_cast<std::uint64_t>(columns.count()) * static_cast<std::uint64_t>(rows.count());
      const tile_range over = tiles_of(columns), up = tiles_of(rows);
      reach_columns = std::max(reach_columns, over.reach);
      reach_rows = std::max(reach_rows, up.reach);
      std::int32_t& home = m_grid.m_homes[over.first * m_grid.m_tile_rows + up.first];
      m_grid.m_next[e] = home;
      home = static_cast<std::int32_t>(e) + 1;
    }
    m_grid.m_reach_columns = reach_columns;
    m_grid.m_reach_rows = reach_rows;
  }

  /// Makes room for the longest lists that there can be. Nothing of it is written before a tile needs it.
  void make_room() {
    const std::size_t cells = m_grid.m_homes.size() * cell_grid::k_cells;
    const std::uint64_t numbers = 1 + m_most_entries + std::min<std::uint64_t>(m_most_entries, cells);
    if (numbers > k_most) throw std::length_error("road grid");
    m_grid.m_data.resize(cells);
    m_grid.m_numbers.resize(numbers);
    m_grid.m_numbers[0] = 0;
    m_grid.m_used = 1;
    m_grid.m_footprints.resize(m_road.elements.size());
    m_grid.m_has_facet.resize(m_road.elements.size());
    m_road.facets.clear();
    m_road.facets.resize(m_road.elements.size());
  }

  CRoad& m_road;
  cell_grid m_grid;
  grid_axis m_along_x;
  grid_axis m_along_y;
  std::uint64_t m_most_entries = 0;  ///< no more entries than this can be in all lists
};

void build_cell_grid(CRoad& road) { grid_builder(road).build(); }

}  // namespace qvsoilrdf
