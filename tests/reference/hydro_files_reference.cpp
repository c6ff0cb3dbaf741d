#include <fstream>
#include <istream>
#include <locale>

#include "tests/reference/hydro_reference.h"

namespace qvref {
namespace {

/// Extracts a number into `value`, which stays as it was if that fails.
template <class Value>
void extract(std::istream& file, Value& value) {
  Value read{};
  if (file >> read) value = read;
}

current_table read_table(std::istream& file) {
  current_table table;
  char separator = '\0';
  extract(file, table.count);
  file >> separator;
  extract(file, table.mode);
  if (table.count <= 0) return table;
  const auto n = static_cast<std::size_t>(table.count);
  table.key.resize(n + 1);
  table.value.resize(n + 1);
  for (std::size_t i = 0; i < n; ++i) {
    extract(file, table.key[i]);
    file >> separator;
    extract(file, table.value[i]);
  }
  table.key[n] = table.key[n - 1];
  table.value[n] = table.value[n - 1];
  return table;
}

}  // namespace

wave_file read_wave(std::istream& file) {
  file.imbue(std::locale::classic());
  wave_file wave;
  char separator = '\0';
  extract(file, wave.rows);
  file >> separator;
  extract(file, wave.cols);
  if (wave.rows <= 0 || wave.cols <= 0) return wave;
  const auto rows = static_cast<std::size_t>(wave.rows), cols = static_cast<std::size_t>(wave.cols);
  wave.time.resize(rows + 1);
  wave.x.resize(cols + 1);
  wave.elevation.assign(rows + 1, std::vector<double>(cols + 1));
  wave.velocity = wave.elevation;
  for (std::size_t j = 0; j < cols; ++j) {
    extract(file, wave.x[j]);
    if (j + 1 < cols) file >> separator;
  }
  for (std::size_t i = 0; i < rows; ++i) {
    extract(file, wave.time[i]);
    for (auto* table : {&wave.elevation, &wave.velocity}) {
      for (std::size_t j = 0; j < cols; ++j) {
        file >> separator;
        extract(file, (*table)[i][j]);
      }
    }
  }
  wave.x[cols] = wave.x[cols - 1];
  wave.time[rows] = wave.time[rows - 1];
  for (auto* table : {&wave.elevation, &wave.velocity}) {
    for (std::size_t i = 0; i < rows; ++i) (*table)[i][cols] = (*table)[i][cols - 1];
    (*table)[rows] = (*table)[rows - 1];
  }
  return wave;
}

wave_file read_wave(const std::string& path) {
  std::ifstream file(path);
  return read_wave(file);
}

current_file read_current(std::istream& file) {
  file.imbue(std::locale::classic());
  current_file currents;
  currents.first = read_table(file);
  currents.second = read_table(file);
  return currents;
}

current_file read_current(const std::string& path) {
  std::ifstream file(path);
  return read_current(file);
}

int find_interval(const axis& a, int count, double x, int from) {
  for (auto j = static_cast<std::size_t>(from); j < static_cast<std::size_t>(count); ++j) {
    if (a[j] <= x && x < a[j + 1]) return static_cast<int>(j);
  }
  return -1;
}

time_weights find_row(const wave_file& wave, int& time_index, double time, int iflag) {
  time_weights w;
  w.row = time_index;
  if (iflag == 1) return w;
  const auto at = [&](int i) { return wave.time[static_cast<std::size_t>(i)]; };
  if (at(w.row) <= time) {
    if (time < at(wave.rows - 1)) {
      const int j = find_interval(wave.time, wave.rows, time, w.row);
      w.w0 = (at(j + 1) - time) / (at(j + 1) - at(j));
      w.w1 = 1.0 - w.w0;
      w.row = j;
    } else {
      w.row = wave.rows - 1;
      w.w0 = 1.0;
      w.w1 = 0.0;
    }
  } else if (time < at(w.row)) {
    w.w0 = 1.0;
    w.w1 = 0.0;
  }
  time_index = w.row;
  return w;
}

double wave_value(const wave_file& wave, const std::vector<std::vector<double>>& table, const time_weights& w, int j,
                  double x) {
  const auto row = static_cast<std::size_t>(w.row), col = static_cast<std::size_t>(j);
  const double a = (wave.x[col + 1] - x) / (wave.x[col + 1] - wave.x[col]);
  const double b = 1.0 - a;
  const auto blended = [&](std::size_t c) { return table[row][c] * w.w0 + table[row + 1][c] * w.w1; };
  return b * blended(col + 1) + a * blended(col);
}

double current_value(const current_table& table, double x, double y, int& row) {
  const double key = table.mode == 1 ? x : y;
  const auto last = static_cast<std::size_t>(table.count - 1);
  if (table.mode != 1 && key < table.key[0]) {
    row = 0;
    return table.value[0];
  }
  if (table.mode != 1 && key >= table.key[last]) {
    row = table.count - 1;
    return table.value[last];
  }
  const int found = find_interval(table.key, table.count, key);
  if (found < 0) return 0.0;
  row = found;
  const auto j = static_cast<std::size_t>(found);
  const double a = (table.key[j + 1] - key) / (table.key[j + 1] - table.key[j]);
  return table.value[j] * a + table.value[j + 1] * (1.0 - a);
}

}  // namespace qvref
