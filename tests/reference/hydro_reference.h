#pragma once

#include <map>
#include <string>
#include <vector>

#include "tests/reference/linear_algebra.h"

/// Hull forces once more, slow and literal: files are read by formatted stream extraction, every quantity of every
/// corner of every patch is computed where it is needed, tables are searched from their beginning, and nothing is kept
/// but what is history. Entries of `par` and results are addressed by number, so that the reference holds the names in
/// qvbrisk/layouts.h too.
namespace qvref {

/// Positions or keys of a table, with one entry more, which repeats the last.
using axis = std::vector<double>;

struct wave_file {
  int rows = 0, cols = 0;
  axis time, x;                                          // rows + 1, cols + 1
  std::vector<std::vector<double>> elevation, velocity;  // rows + 1, of cols + 1 each
};
wave_file read_wave(std::istream& file);
wave_file read_wave(const std::string& path);

struct current_table {
  int count = 0, mode = 0;
  axis key, value;  // count + 1
};
struct current_file {
  current_table first, second;
};
current_file read_current(std::istream& file);
current_file read_current(const std::string& path);

/// A row of the table, and the shares of that row and of the next one.
struct time_weights {
  int row = 0;
  double w0 = 0.0, w1 = 0.0;
};
time_weights find_row(const wave_file& wave, int& time_index, double time, int iflag);

/// Finds the first interval from `from` on that holds x, or -1.
int find_interval(const axis& a, int count, double x, int from = 0);
double wave_value(const wave_file& wave, const std::vector<std::vector<double>>& table, const time_weights& w, int j,
                  double x);
double current_value(const current_table& table, double x, double y, int& row);

double projected_area(const v3& a, const v3& b, const v3& c);

struct column_result {
  double volume = 0.0;
  v3 moment{};  ///< water frame, signed
};
/// Water column over a triangle with corners q in the water frame and nz the third component of its normal.
column_result water_column(double x_first, double x_last, const std::array<v3, 3>& q, double nz, double h);

struct hull_patch {
  std::array<int, 3> nodes{};
  v3 centroid{}, normal{}, edge01{}, edge12{}, edge20{}, edge02{};
  double area = 0.0;
  std::array<int, 3> wave_col{}, current1_row{}, current2_row{};
};

struct hull_part {
  bool set_up = false;
  std::vector<double> par;
  std::vector<v3> nodes;
  std::vector<hull_patch> patches;
};

/// Counts how often each of the things that may happen to a corner did happen.
struct hull_census {
  long corners = 0, off_table = 0, between_columns = 0, dry = 0, wet = 0, normal_drag = 0, cut_patches = 0;
};

class hull_element {
public:
  hull_element(const wave_file& wave, const current_file& currents, const std::array<double, 5>& unit_scale)
      : m_wave(wave), m_currents(currents), m_unit_scale(unit_scale) {}

  /// Returns 34 results.
  std::vector<double> call(void* handle, double time, const std::vector<double>& par, int iflag);
  /// Returns 18 + 4K results for K check points. `massless` tells that there was nothing to report.
  std::vector<double> report(void* handle, const std::vector<double>& par, int iflag, bool& massless);

  const hull_census& census() const { return m_census; }
  const hull_part& part(int sub) { return m_parts[sub]; }
  int time_index() const { return m_time_index; }

private:
  struct frames;
  struct loads;
  void patch_drag(const hull_part& part, hull_patch& patch, const frames& f, const time_weights& w,
                  std::array<double, 3>& elevation, loads& sums);

  wave_file m_wave;
  current_file m_currents;
  std::array<double, 5> m_unit_scale;
  std::vector<double> m_element_par;
  std::map<int, hull_part> m_parts;
  int m_time_index = 0;
  double m_mass_sum = 0.0, m_buoyancy_sum = 0.0;
  v3 m_mass_moment{}, m_buoyancy_moment{};
  hull_census m_census;
};

hull_part set_up_part(const std::vector<double>& par);

/// Asks the host for a vector quantity of markers.
v3 ask_vector(void* handle, const char* name, const std::vector<int>& ids);
m33 ask_axes(void* handle, int marker);

}  // namespace qvref
