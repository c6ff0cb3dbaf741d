#include "soilrdf/cell_grid.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

#include "soilrdf/cell_fill.h"
#include "soilrdf/road.h"

namespace qvsoilrdf {
namespace {

/// One axis of the grid: cell k spans [lo(k), hi(k)], computed as a cell's record has it.
struct axis {
  double min;
  double length;
  std::int32_t count;

  double lo(std::int32_t k) const { return min + length * k; }
  double hi(std::int32_t k) const { return lo(k) + length; }

  std::int32_t guess(double x) const {
    const double k = (x - min) / length;
    return k < count ? static_cast<std::int32_t>(k) : count - 1;
  }
  /// First cell whose end is not below x; `count` when there is none.
  std::int32_t first_reaching(double x) const {
    std::int32_t k = guess(std::max(x, min));
    while (k > 0 && hi(k - 1) >= x) --k;
    while (k < count && hi(k) < x) ++k;
    return k;
  }
  /// Last cell whose start is not above x; -1 when there is none.
  std::int32_t last_starting(double x) const {
    std::int32_t k = guess(std::max(x, min));
    while (k + 1 < count && lo(k + 1) <= x) ++k;
    while (k >= 0 && lo(k) > x) --k;
    return k;
  }
};

struct range {
  std::int32_t first;
  std::int32_t last;
};

/// The cells that a coordinate lies in, closed bounds: one, or two at a shared border, or (by rounding) none.
range cells_of(const axis& along, double x) { return {along.first_reaching(x), along.last_starting(x)}; }

constexpr std::int32_t k_window = 8;       // a triangle is at most about four cells wide: cells are half of the largest
constexpr double k_clear = 1e-9;           // relative distance that no rounding bridges

/// The cells that one triangle meets: bit 8 a + b stands for cell (column + a, row + b).
struct footprint {
  std::int32_t column = 0;
  std::int32_t row = 0;
  std::uint64_t cells = 0;
  static constexpr std::int32_t k_wide = -1;  // as column: wider than the window, to be looked at cell by cell
};

std::uint64_t bits(const range& columns, const range& rows, std::int32_t column, std::int32_t row) {
  std::uint64_t mask = 0;
  for (std::int32_t i = columns.first; i <= columns.last; ++i)
    for (std::int32_t j = rows.first; j <= rows.last; ++j) mask |= std::uint64_t{1} << (k_window * (i - column) + (j - row));
  return mask;
}

/// Whether an edge A B and a cell are so far apart that the crossing test can only say no.
bool clear_of_cell(const CCell& cell, const CNode& A, const CNode& B, double reach_x, double reach_y) {
  if (std::max(A.x, B.x) < cell.x_lo - reach_x || std::min(A.x, B.x) > cell.x_hi + reach_x) return true;
  if (std::max(A.y, B.y) < cell.y_lo - reach_y || std::min(A.y, B.y) > cell.y_hi + reach_y) return true;
  // All four corners on one side of the line through A and B.
  const double dx = B.x - A.x, dy = B.y - A.y;
  const double left = dx * (cell.y_lo - A.y), right = dx * (cell.y_hi - A.y);
  const double low = dy * (cell.x_lo - A.x), high = dy * (cell.x_hi - A.x);
  const double tolerance = reach_x * std::fabs(dy) + reach_y * std::fabs(dx);
  return std::min(left, right) - std::max(low, high) > tolerance || std::max(left, right) - std::min(low, high) < -tolerance;
}

bool edge_crosses_cell(const CCell& cell, const CNode& A, const CNode& B) {
  return FindInterSectionPoint(cell.x_lo, cell.y_lo, cell.x_hi, cell.y_lo, A.x, A.y, B.x, B.y) ||
         FindInterSectionPoint(cell.x_hi, cell.y_lo, cell.x_hi, cell.y_hi, A.x, A.y, B.x, B.y) ||
         FindInterSectionPoint(cell.x_lo, cell.y_hi, cell.x_hi, cell.y_hi, A.x, A.y, B.x, B.y) ||
         FindInterSectionPoint(cell.x_lo, cell.y_lo, cell.x_lo, cell.y_hi, A.x, A.y, B.x, B.y);
}

}  // namespace

/// Two passes over the triangles: the first finds which cells each one meets and counts, the second writes.
class cell_grid_builder {
public:
  explicit cell_grid_builder(CRoad& road)
      : road_(road),
        grid_(road.cells),
        along_x_{road.x_min, road.cell_dx, road.nx},
        along_y_{road.y_min, road.cell_dy, road.ny} {}

  void build() {
    grid_ = CellGrid();
    grid_.rows_ = static_cast<std::size_t>(road_.ny);
    grid_.data_.resize(static_cast<std::size_t>(road_.nx) * grid_.rows_ + 1);
    for (CellGrid::cell_data& cell : grid_.data_) cell.top = -std::numeric_limits<float>::infinity();
    find_node_cells();
    count_entries();
    turn_counts_into_starts();
    write_entries();
  }

private:
  struct node_cells {
    range columns;
    range rows;
  };

  void find_node_cells() {
    node_cells_.reserve(road_.nodes.size());
    for (const CNode& node : road_.nodes) node_cells_.push_back({cells_of(along_x_, node.x), cells_of(along_y_, node.y)});
  }

  const CNode& corner(const CElement& element, int k) const {
    return road_.nodes[static_cast<std::size_t>(element.node[k] - 1)];
  }

  /// The cells that a triangle's bounds reach, and how far rounding may carry a crossing.
  struct reach {
    range columns;
    range rows;
    double x;
    double y;

    bool wide() const { return columns.last - columns.first >= k_window || rows.last - rows.first >= k_window; }
  };

  reach reach_of(const CNode& K, const CNode& L, const CNode& M) const {
    const double x_first = std::min(std::min(K.x, L.x), M.x), x_last = std::max(std::max(K.x, L.x), M.x);
    const double y_first = std::min(std::min(K.y, L.y), M.y), y_last = std::max(std::max(K.y, L.y), M.y);
    const double x = k_clear * (x_last - x_first + road_.cell_dx);
    const double y = k_clear * (y_last - y_first + road_.cell_dy);
    return {{along_x_.first_reaching(x_first - x), along_x_.last_starting(x_last + x)},
            {along_y_.first_reaching(y_first - y), along_y_.last_starting(y_last + y)},
            x,
            y};
  }

  footprint find_footprint(const CElement& element) const {
    const CNode &K = corner(element, 0), &L = corner(element, 1), &M = corner(element, 2);
    const reach box = reach_of(K, L, M);
    if (box.wide()) return {footprint::k_wide, 0, 0};
    footprint print{box.columns.first, box.rows.first, 0};
    for (const std::int32_t number : element.node) {
      const node_cells& own = node_cells_[static_cast<std::size_t>(number - 1)];
      print.cells |= bits(own.columns, own.rows, print.column, print.row);
    }
    std::uint64_t rest = bits(box.columns, box.rows, print.column, print.row) & ~print.cells;
    for (; rest != 0; rest &= rest - 1) {
      const int bit = __builtin_ctzll(rest);
      if (edges_cross(cell_at(print, bit), K, L, M, box)) print.cells |= std::uint64_t{1} << bit;
    }
    return print;
  }

  static bool edges_cross(const CCell& cell, const CNode& K, const CNode& L, const CNode& M, const reach& box) {
    const auto crosses = [&](const CNode& A, const CNode& B) {
      return !clear_of_cell(cell, A, B, box.x, box.y) && edge_crosses_cell(cell, A, B);
    };
    return crosses(K, L) || crosses(L, M) || crosses(K, M);
  }

  CCell cell_at(const footprint& print, int bit) const {
    return road_.cell_bounds(print.column + bit / k_window, print.row + bit % k_window);
  }

  /// Calls visit(cell index) for every cell the triangle meets.
  template <class Visit>
  void for_each_cell(const CElement& element, const footprint& print, Visit&& visit) const {
    if (print.column == footprint::k_wide) {
      const reach box = reach_of(corner(element, 0), corner(element, 1), corner(element, 2));
      for (std::int32_t i = box.columns.first; i <= box.columns.last; ++i)
        for (std::int32_t j = box.rows.first; j <= box.rows.last; ++j)
          if (meets_by_definition(element, i, j)) visit(grid_.index(i, j));
      return;
    }
    for (std::uint64_t rest = print.cells; rest != 0; rest &= rest - 1) {
      const int bit = __builtin_ctzll(rest);
      visit(grid_.index(print.column + bit / k_window, print.row + bit % k_window));
    }
  }

  bool meets_by_definition(const CElement& element, std::int32_t i, std::int32_t j) const {
    const CCell cell = road_.cell_bounds(i, j);
    for (int k = 0; k < 3; ++k) {
      const node_cells& own = node_cells_[static_cast<std::size_t>(element.node[k] - 1)];
      if (own.columns.first <= i && i <= own.columns.last && own.rows.first <= j && j <= own.rows.last) return true;
    }
    return CrossCheck_Element(cell, corner(element, 0), corner(element, 1), corner(element, 2));
  }

  void count_entries() {
    footprints_.reserve(road_.elements.size());
    for (const CElement& element : road_.elements) {
      footprints_.push_back(find_footprint(element));
      for_each_cell(element, footprints_.back(), [this](std::size_t cell) { ++grid_.data_[cell + 1].end; });
    }
  }

  void turn_counts_into_starts() {
    std::uint64_t start = 0;
    for (CellGrid::cell_data& cell : grid_.data_) {
      const std::uint32_t count = cell.end;
      cell.end = static_cast<std::uint32_t>(start);
      start += count;
      if (start > std::numeric_limits<std::uint32_t>::max()) throw std::length_error("road grid");
    }
    grid_.numbers_.resize(start);
  }

  void write_entries() {
    auto print = footprints_.begin();
    for (const CElement& element : road_.elements) {
      const float top = top_of(element);
      for_each_cell(element, *print++, [this, &element, top](std::size_t cell) {
        CellGrid::cell_data& data = grid_.data_[cell + 1];
        grid_.numbers_[data.end++] = element.id;
        data.top = std::max(data.top, top);
      });
    }
  }

  /// A height that the facet's plane does not reach over its triangle, nor where the search still counts a point to
  /// its edge: there a barycentric coordinate may be -1/11, which lifts the plane by less than the triangle is high.
  float top_of(const CElement& element) const {
    if (std::isinf(road_.facets[static_cast<std::size_t>(element.id - 1)].outside)) {
      return std::numeric_limits<float>::infinity();
    }
    const auto [low, high] = std::minmax({corner(element, 0).z, corner(element, 1).z, corner(element, 2).z});
    const double top = high + (high - low) + 1e-6 * (std::fabs(high) + std::fabs(low) + road_.cell_dx + road_.cell_dy);
    return std::nextafter(static_cast<float>(top), std::numeric_limits<float>::infinity());
  }

  CRoad& road_;
  CellGrid& grid_;
  axis along_x_;
  axis along_y_;
  std::vector<node_cells> node_cells_;
  std::vector<footprint> footprints_;
};

void build_cell_grid(CRoad& road) { cell_grid_builder(road).build(); }

}  // namespace qvsoilrdf
