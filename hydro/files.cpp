#include "hydro/files.h"

#include "common/files/text.h"
#include "common/files/token_source.h"

namespace qvhydro {
namespace {

using qv::fault_channel;

[[noreturn]] void refuse(const fault_channel& channel, const char* kind, const named_file& file,
                         const std::string& what) {
  qv::fault(channel.prefix + ("The " + std::string(kind) + " file ") + qv::wcs_to_mbs(file.name) + " declares " + what,
            channel.ierr, channel.msg);
}

/// Reads a count, which must be 1 or more.
int read_count(qv::token_source& tokens, const char* kind, const char* of_what, const named_file& file,
               const fault_channel& channel) {
  int count = 0;
  tokens.integer(count);
  if (count < 1) refuse(channel, kind, file, std::to_string(count) + " " + of_what + "; it must declare 1 or more.");
  return count;
}

/// Refuses a count that the file cannot fill before memory is asked for, if that memory is more than 1 GiB.
void check_fits(const qv::token_source& tokens, const char* kind, double bytes, double numbers, const std::string& what,
                const named_file& file, const fault_channel& channel) {
  constexpr double k_gibibyte = 1024.0 * 1024.0 * 1024.0;
  if (bytes <= k_gibibyte) return;
  const double least_size = 2.0 * numbers - 1.0;  // in bytes: one digit and one separator for each number
  if (static_cast<double>(tokens.bytes_left()) >= least_size) return;
  refuse(channel, kind, file, what + ", which are more than the file holds.");
}

void read_row(qv::token_source& tokens, double* row, int columns) {
  for (int j = 0; j < columns; ++j) {
    if (!tokens.separator() || !tokens.real(row[j])) return;
  }
}

void fill(qv::token_source& tokens, wave_table& wave) {
  const int rows = wave.wave_rows, columns = wave.wave_cols;
  for (int j = 0; j < columns; ++j) {
    if (j > 0) tokens.separator();
    if (!tokens.real(wave.wave_x[j])) return;
  }
  for (int i = 0; i < rows; ++i) {
    if (!tokens.real(wave.wave_time[i])) return;
    read_row(tokens, wave.wave_elevation[i], columns);
    read_row(tokens, wave.wave_velocity[i], columns);
  }
}

/// Lets the entry behind every row and column repeat the last one.
void close_table(number_table& table, int rows, int columns) {
  for (int i = 0; i < rows; ++i) table[i][columns] = table[i][columns - 1];
  for (int j = 0; j <= columns; ++j) table[rows][j] = table[rows - 1][j];
}

void read_current_table(qv::token_source& tokens, current_table& table, const named_file& file,
                        const fault_channel& channel) {
  const int count = read_count(tokens, "CURRENT", "keys", file, channel);
  tokens.separator();
  tokens.integer(table.mode);
  check_fits(tokens, "CURRENT", 16.0 * (count + 1.0), 2.0 * count, std::to_string(count) + " keys", file, channel);
  table.key.resize(count);
  table.value.assign(static_cast<std::size_t>(count) + 1, 0.0);
  for (int i = 0; i < count; ++i) {
    if (!tokens.real(table.key[i]) || !tokens.separator() || !tokens.real(table.value[static_cast<std::size_t>(i)]))
      break;
  }
  table.key.close();
  table.value.back() = table.value[static_cast<std::size_t>(count) - 1];
}

}  // namespace

bool named_file::open_as_named() { return data.open(qv::wcs_to_mbs(name)); }

bool named_file::open_beside(const std::wstring& model_path) {
  second_path = qv::beside_model(model_path, name);
  return !second_path.empty() && data.open(qv::wcs_to_mbs(second_path));
}

std::wstring fetch_file_name(void* handle, int id, const fault_channel& channel) {
  std::wstring name;
  int length = 0;
  if (!qv::fetch_string(handle, id, name, length)) {
    qv::fault(channel.prefix + ("The length of string " + std::to_string(id)) + " is " + std::to_string(length) +
                  "; it must lie between 0 and 1024.",
              channel.ierr, channel.msg);
  }
  return name;
}

bool open_wave_file(void* handle, named_file& file, std::wstring& model_path, const fault_channel& channel) {
  if (file.open_as_named()) return true;
  int length = 0;
  if (!qv::fetch_model_path(handle, model_path, length)) {
    qv::fault(channel.prefix + ("The length of the model file's path is " + std::to_string(length)) +
                  "; it must lie between 0 and 1024.",
              channel.ierr, channel.msg);
  }
  return file.open_beside(model_path);
}

void read_wave_file(named_file& file, wave_table& wave, const fault_channel& channel) {
  qv::token_source tokens(file.data);
  const int rows = read_count(tokens, "WAVE", "time rows", file, channel);
  tokens.separator();
  const int columns = read_count(tokens, "WAVE", "positions", file, channel);
  const double bytes = 16.0 * (rows + 1.0) * (columns + 1.0);
  const double numbers = columns + rows * (1.0 + 2.0 * columns);
  check_fits(tokens, "WAVE", bytes, numbers,
             std::to_string(rows) + " time rows of " + std::to_string(columns) + " positions", file, channel);
  wave.wave_rows = rows;
  wave.wave_cols = columns;
  wave.wave_time.resize(rows);
  wave.wave_x.resize(columns);
  wave.wave_elevation.resize(rows, columns);
  wave.wave_velocity.resize(rows, columns);
  fill(tokens, wave);
  wave.wave_time.close();
  wave.wave_x.close();
  close_table(wave.wave_elevation, rows, columns);
  close_table(wave.wave_velocity, rows, columns);
}

void read_current_file(named_file& file, current_table& first, current_table& second, const fault_channel& channel) {
  qv::token_source tokens(file.data);
  read_current_table(tokens, first, file, channel);
  read_current_table(tokens, second, file, channel);
}

}  // namespace qvhydro
