#include "tests/solver/data_files/water_library.h"

#include <memory>

#include "hydro/files.h"

namespace qvtest {

namespace {

template <class Read>
bool reads(const std::string& path, Read read, std::string& message) {
  char* slots[5] = {};
  int count = 0;
  qvhydro::named_file file;
  file.name = std::wstring(path.begin(), path.end());
  bool good = file.open_as_named();
  try {
    if (good) read(file, qv::fault_channel{"", count, slots});
  } catch (int) {
    good = false;
  }
  const std::unique_ptr<char[]> owned(slots[0]);
  message = owned ? owned.get() : "";
  return good;
}

}  // namespace

bool library_reads_wave(const std::string& path, qvhydro::wave_table& wave, std::string& message) {
  const auto read = [&](qvhydro::named_file& file, const qv::fault_channel& channel) {
    qvhydro::read_wave_file(file, wave, channel);
  };
  return reads(path, read, message);
}

bool library_reads_current(const std::string& path, qvhydro::current_table& along_x, qvhydro::current_table& along_y,
                           std::string& message) {
  const auto read = [&](qvhydro::named_file& file, const qv::fault_channel& channel) {
    qvhydro::read_current_file(file, along_x, along_y, channel);
  };
  return reads(path, read, message);
}

double library_elevation(qvhydro::wave_table& wave, double time, double x) {
  const qvhydro::time_blend when = qvhydro::blend_at(wave, time, false);
  const int j = wave.wave_x.find(x, 0);
  if (j < 0) return 0;
  const double a = (wave.wave_x[j + 1] - x) / (wave.wave_x[j + 1] - wave.wave_x[j]);
  return qvhydro::blended_rows(wave.wave_elevation, when).at(j, a, 1 - a);
}

}  // namespace qvtest
