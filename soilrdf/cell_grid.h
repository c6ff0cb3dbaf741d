#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <vector>

#include "common/files/large_vector.h"

namespace qvsoilrdf {

/// One cell of the plan grid.
class CCell {
public:
  std::vector<std::int32_t> elements;  ///< numbers (from 1) of the elements that meet the cell, in element order
  std::int32_t i = 0;                  ///< column along x, from 0
  std::int32_t j = 0;                  ///< row along y, from 0
  double x_lo = 0.0;                   ///< bounds [file length]
  double y_lo = 0.0;
  double x_hi = 0.0;
  double y_hi = 0.0;
};

/// A view of the element numbers of one cell.
class element_list {
public:
  element_list(const std::int32_t* begin, const std::int32_t* end) : m_begin(begin), m_end(end) {}
  const std::int32_t* begin() const { return m_begin; }
  const std::int32_t* end() const { return m_end; }

private:
  const std::int32_t* m_begin;
  const std::int32_t* m_end;
};

class CRoad;
void make_tile(const CRoad& road, std::size_t tile);

/// The element lists of all cells, which are made tile by tile where the road is driven on.
///
/// Cells are half a triangle wide: 10^6 triangles make 2 10^6 cells and 7 10^6 entries, of which a vehicle meets few.
/// At set-up each triangle is therefore only noted at its home tile, the tile of the first cell (lowest column and row)
/// that it can meet. The first point over a tile makes the tile: the exact lists of its 64 cells, from the triangles
/// that are at home there or in the tiles before it, as far as the largest triangle reaches. All memory is set aside at
/// set-up, but the system gives its pages only when they are written.
class cell_grid {
public:
  bool empty() const { return m_homes.empty(); }
  /// Cells are stored in tiles of 8 x 8, so that a body's neighbourhood lies on few pages of memory.
  std::size_t index(std::int32_t i, std::int32_t j) const {
    const auto column = static_cast<std::size_t>(i), row = static_cast<std::size_t>(j);
    return (column / k_tile * m_tile_rows + row / k_tile) * k_cells + column % k_tile * k_tile + row % k_tile;
  }
  static std::size_t tile_of(std::size_t cell) { return cell / k_cells; }
  /// Whether the cell has its list, see CRoad::make_ready. Every query below asks for that.
  bool is_made(std::size_t cell) const { return __atomic_load_n(&m_made[tile_of(cell)], __ATOMIC_ACQUIRE) != 0; }

  element_list list(std::size_t cell) const {
    const std::int32_t* count = m_numbers.data() + m_data[cell].list;
    return {count + 1, count + 1 + *count};
  }
  /// A height above every point that the search can find in a facet of the list; minus infinity without a list.
  float top(std::size_t cell) const { return m_data[cell].top; }

  /// For prefetching: what is known of a cell, and the begin of its list.
  const void* data(std::size_t cell) const { return m_data.data() + cell; }

private:
  friend class grid_builder;
  friend class tile_maker;
  friend void make_tile(const CRoad& road, std::size_t tile);
  static constexpr std::size_t k_tile = 8;
  static constexpr std::size_t k_cells = k_tile * k_tile;

  struct cell_data {
    std::uint32_t list;  ///< where the cell's list stands in m_numbers: its length, then the elements
    float top;
  };

  /// The cells of a tile that one triangle meets: bit 8 a + b stands for column a, row b of the tile.
  struct footprint {
    std::int32_t number;  ///< of the element, from 1
    std::uint64_t cells;
  };

  /// Two elements on one road may ask for tiles at the same time. A copied grid has a lock of its own.
  struct lock {
    std::mutex mutex;
    lock() = default;
    lock(const lock&) {}
    lock& operator=(const lock&) { return *this; }
  };

  std::vector<std::int32_t> m_homes;      ///< by tile: the first element that is at home there, 0: none is
  qv::large_vector<std::int32_t> m_next;  ///< by element: the next one with the same home, 0: none. Always ascending
  std::size_t m_tile_rows = 0;
  std::size_t m_reach_columns = 0;  ///< how many tiles beyond its home an element can reach
  std::size_t m_reach_rows = 0;

  // What the tiles' making fills in, under the lock. A tile's mark is set last, and nothing of it changes afterwards.
  mutable lock m_lock;
  mutable std::vector<std::uint8_t> m_made;          ///< by tile
  mutable std::vector<std::uint8_t> m_has_facet;     ///< by element: its facet is set
  mutable qv::large_vector<cell_data> m_data;        ///< by cell
  mutable qv::large_vector<std::int32_t> m_numbers;  ///< begins with the list of all empty cells
  mutable std::size_t m_used = 0;                    ///< how much of m_numbers is written
  mutable qv::large_vector<footprint> m_footprints;  ///< of the tile that is being made
};

/// Builds the grid of a road that has its nodes, elements, bounds and cell counts: notes where every triangle is at
/// home and makes room for all lists and facets. Throws std::length_error if there may be more entries than 32 bits can
/// count.
void build_cell_grid(CRoad& road);

/// Makes a tile: the lists of its cells, which are those that FindElementsBelongtoCell defines, in the same order, and
/// the facets of the elements in them. Does nothing if the tile is made already.
void make_tile(const CRoad& road, std::size_t tile);

}  // namespace qvsoilrdf
