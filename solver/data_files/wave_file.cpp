#include "solver/data_files/wave_file.h"

#include <algorithm>
#include <charconv>

#include "solver/data_files/table_tokens.h"
#include "solver/data_files/wave_reading.h"

namespace qvslv {

namespace {

/// Where a value lies on an axis: entry `index` has the weight 1 - share, the next one `share`. Beyond an end the place
/// is the end.
struct AxisPlace {
  size_t index = 0;
  double share = 0;
};

AxisPlace place_on(const std::vector<double>& axis, double value) {
  if (!(value > axis.front())) return {0, 0};
  if (value >= axis.back()) return {axis.size() - 1, 0};
  const auto above = std::upper_bound(axis.begin(), axis.end(), value);
  if (above == axis.begin() || above == axis.end()) return {0, 0};  // only if the axis does not increase
  const size_t index = static_cast<size_t>(above - axis.begin()) - 1;
  return {index, (value - axis[index]) / (axis[index + 1] - axis[index])};
}

/// The same, from a first guess for positions that are evenly spaced.
/// @param per_length  entries per length; 0 if the axis does not increase
AxisPlace place_near(const std::vector<double>& axis, double value, double per_length) {
  if (!(per_length > 0) || !(value > axis.front()) || value >= axis.back()) return place_on(axis, value);
  const double guess = (value - axis.front()) * per_length;
  const size_t index = std::min(static_cast<size_t>(guess), axis.size() - 2);
  for (const size_t k : {index, index + 1, index - 1})  // the spacing may be rounded
    if (k < axis.size() - 1 && axis[k] <= value && value < axis[k + 1])
      return {k, (value - axis[k]) / (axis[k + 1] - axis[k])};
  return place_on(axis, value);
}

double along(const std::vector<double>& row, const AxisPlace& at) {
  return at.share == 0 ? row[at.index] : row[at.index] * (1 - at.share) + row[at.index + 1] * at.share;
}

void append(std::string& text, double value, int digits) {
  char buffer[40];
  const auto end = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, digits);
  text.append(buffer, end.ptr);
}

constexpr int k_axis_digits = 12, k_value_digits = 9;

}  // namespace

double WaveFile::blended(const std::vector<std::vector<double>>& table, double t, double position) const {
  if (table.empty() || x.empty()) return 0;
  const AxisPlace row = place_on(time, t), column = place_on(x, position);
  const double value = along(table[row.index], column);
  return row.share == 0 ? value : value * (1 - row.share) + along(table[row.index + 1], column) * row.share;
}

double WaveFile::elevation_at(double t, double position) const { return blended(elevation, t, position); }

double WaveFile::velocity_at(double t, double position) const { return blended(velocity, t, position); }

SurfaceAt::SurfaceAt(const WaveFile& wave, double t) : m_x(wave.x) {
  if (wave.elevation.empty() || m_x.empty()) return;
  const AxisPlace row = place_on(wave.time, t);
  m_before = &wave.elevation[row.index];
  m_share = row.share;
  if (m_share != 0) m_after = &wave.elevation[row.index + 1];
  const double length = m_x.back() - m_x.front();
  if (length > 0 && std::is_sorted(m_x.begin(), m_x.end()))
    m_columns_per_length = static_cast<double>(m_x.size() - 1) / length;
}

double SurfaceAt::elevation(double x) const {
  if (m_before == nullptr) return 0;
  const AxisPlace column = place_near(m_x, x, m_columns_per_length);
  const double value = along(*m_before, column);
  return m_after == nullptr ? value : value * (1 - m_share) + along(*m_after, column) * m_share;
}

WaveHeader read_wave_header(TableTokens& tokens) {
  WaveHeader header;
  tokens.integer(header.rows);
  tokens.separator();
  tokens.integer(header.columns);
  return header;
}

bool cannot_hold(const WaveHeader& header, size_t bytes) {
  constexpr double k_limit = 1024.0 * 1024.0 * 1024.0, k_least_bytes = 2;  // the least for a number in the file
  const double rows = header.rows, columns = header.columns;
  const double numbers = columns + rows * (1 + 2 * columns);
  return 2 * (rows + 1) * (columns + 1) * static_cast<double>(sizeof(double)) > k_limit &&
         k_least_bytes * numbers - 1 > static_cast<double>(bytes);
}

WaveFile read_wave_table(TableTokens& tokens, const WaveHeader& header) {
  const size_t rows = static_cast<size_t>(header.rows), columns = static_cast<size_t>(header.columns);
  WaveFile wave;
  wave.x.assign(columns, 0.0);
  wave.time.assign(rows, 0.0);
  wave.elevation.assign(rows, std::vector<double>(columns, 0.0));
  wave.velocity = wave.elevation;
  for (size_t j = 0; j < columns; ++j) {
    if (j > 0) tokens.separator();
    tokens.real(wave.x[j]);
  }
  for (size_t i = 0; i < rows && !tokens.stopped(); ++i) {
    tokens.real(wave.time[i]);
    for (std::vector<double>* row : {&wave.elevation[i], &wave.velocity[i]})
      for (double& value : *row)
        if (tokens.separator()) tokens.real(value);
  }
  return wave;
}

std::optional<WaveFile> read_wave_text(const std::string& text) {
  TableTokens tokens(text);
  const WaveHeader header = read_wave_header(tokens);
  if (header.rows <= 0 || header.columns <= 0 || cannot_hold(header, text.size())) return std::nullopt;
  return read_wave_table(tokens, header);
}

std::optional<WaveFile> read_wave_file(const std::string& path) {
  std::string text;
  if (!read_whole_file(path, text)) return std::nullopt;
  return read_wave_text(text);
}

std::string wave_text(const WaveFile& wave, const std::string& remark) {
  std::string text = std::to_string(wave.time.size()) + "," + std::to_string(wave.x.size()) + "\n";
  constexpr size_t k_bytes_per_value = 16;
  text.reserve((wave.time.size() + 1) * (2 * wave.x.size() + 1) * k_bytes_per_value + remark.size());
  for (size_t j = 0; j < wave.x.size(); ++j) {
    if (j > 0) text += ',';
    append(text, wave.x[j], k_axis_digits);
  }
  text += '\n';
  for (size_t i = 0; i < wave.time.size(); ++i) {
    append(text, wave.time[i], k_axis_digits);
    for (const std::vector<double>* row : {&wave.elevation[i], &wave.velocity[i]})
      for (const double value : *row) append(text += ',', value, k_value_digits);
    text += '\n';
  }
  return text + remark + "\n";
}

}  // namespace qvslv
