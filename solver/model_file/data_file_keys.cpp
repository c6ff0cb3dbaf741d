#include <filesystem>

#include "solver/model_file/reading.h"

/// Reads keys that name a data file: by the name of the file, or by the name of the table that describes it.
namespace qvslv {

namespace fs = std::filesystem;

namespace {

template <class Recipe>
std::string named_file(const TableReader& table, const char* key, const Reading& reading, const NameTable& names,
                       const std::vector<Recipe>& recipes) {
  const std::string text = table.text(key);
  if (names.has(text)) {
    const int index = names.find(text, table.what(), table.position(key));
    return fs::path(recipes[static_cast<size_t>(index)].file).lexically_normal().string();
  }
  require_data_file(text, reading, table.what() + ", " + key, table.position(key), key);
  return fs::path(text).lexically_normal().string();
}

}  // namespace

std::string road_file_of(const TableReader& table, const char* key, const Reading& reading) {
  return named_file(table, key, reading, reading.roads, reading.file.roads);
}

std::string wave_file_of(const TableReader& table, const char* key, const Reading& reading) {
  return named_file(table, key, reading, reading.waves, reading.file.waves);
}

std::string current_file_of(const TableReader& table, const char* key, const Reading& reading) {
  return named_file(table, key, reading, reading.currents, reading.file.currents);
}

}  // namespace qvslv
