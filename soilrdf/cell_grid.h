#pragma once

#include <cstddef>
#include <cstdint>
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

/// The element lists of all cells, one behind the other in one array. A heap list per cell would take several times the
/// memory and the time to build: cells are half a triangle wide, so 10^6 triangles make 2 10^6 cells.
class cell_grid {
public:
  struct cell_data {
    std::uint32_t end = 0;  ///< where the cell's list ends; it begins where the list of the cell before ends
    float top = 0.0F;       ///< a height above every point that the search can find in a facet of the list
  };

  bool empty() const { return m_data.size() < 2; }
  /// Cells are stored in tiles of 8 x 8, so that a body's neighbourhood lies on few pages of memory.
  std::size_t index(std::int32_t i, std::int32_t j) const {
    const auto column = static_cast<std::size_t>(i), row = static_cast<std::size_t>(j);
    const std::size_t tile = column / k_tile * m_tile_rows + row / k_tile;
    return tile * (k_tile * k_tile) + column % k_tile * k_tile + row % k_tile;
  }
  element_list list(std::size_t cell) const {
    return {m_numbers.data() + m_data[cell].end, m_numbers.data() + m_data[cell + 1].end};
  }
  float top(std::size_t cell) const { return m_data[cell + 1].top; }
  const cell_data* data(std::size_t cell) const { return m_data.data() + cell; }
  const std::int32_t* numbers(std::uint32_t first) const { return m_numbers.data() + first; }
  std::size_t number_of_entries() const { return m_numbers.size(); }

private:
  friend class cell_grid_builder;
  static constexpr std::size_t k_tile = 8;
  qv::large_vector<cell_data> m_data;  ///< [0] is a sentinel, cell c is at c + 1
  qv::large_vector<std::int32_t> m_numbers;
  std::size_t m_tile_rows = 0;
};

class CRoad;

/// Builds the grid of a road that has its nodes, elements, facets, bounds and cell counts. Looks, for each triangle,
/// only at the cells that its bounds touch. The lists are those that FindElementsBelongtoCell defines, in the same
/// order. Throws std::length_error for more entries than 32 bits can count.
void build_cell_grid(CRoad& road);

}  // namespace qvsoilrdf
