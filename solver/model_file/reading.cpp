#include "solver/model_file/reading.h"

#include <filesystem>

namespace qvslv {

namespace fs = std::filesystem;

int Reading::next_id() const { return static_cast<int>(file.model.markers.size()) + 1; }

int Reading::marker(const TableReader& table, const std::string& key) const {
  return markers.find(table.text(key), table.what() + ", " + key, table.position(key));
}

int Reading::marker_or(const TableReader& table, const std::string& key, int otherwise) const {
  return table.has(key) ? marker(table, key) : otherwise;
}

int Reading::add_internal_marker(const std::string& name, int body, const Vec3& position, const Rotation& orientation,
                                 const FilePosition& at) {
  const int index = static_cast<int>(file.model.markers.size());
  file.model.markers.push_back({next_id(), name, body, position, orientation, at});
  markers.add_internal(name, index);
  return index;
}

std::string free_name(const NameTable& names, std::string wish) {
  for (char& c : wish)
    if (std::string(".:,;\"'").find(c) != std::string::npos) c = '_';
  std::string name = wish;
  for (int i = 2; names.has(name); ++i) name = wish + "_" + std::to_string(i);
  return name;
}

int Reading::string_id(const std::string& text, const std::string& wished_name) {
  std::vector<StringEntity>& entities = file.model.strings;
  for (const StringEntity& entity : entities)
    if (entity.text == text) return entity.id;
  const std::string name = free_name(strings, wished_name);
  strings.add_internal(name, static_cast<int>(entities.size()));
  entities.push_back({static_cast<int>(entities.size()) + 1, name, text});
  return entities.back().id;
}

std::string folder_of(const Model& model) { return fs::path(path_beside(model.path, ".")).parent_path().string(); }

std::string where_else(const std::string& name) {
  std::error_code failure;
  if (!fs::is_regular_file(name, failure)) return "";
  return "; the one in the current folder is not taken: names are meant from the model's folder";
}

std::vector<TableReader> tables_of(const TableReader& root, const std::string& key,
                                   const std::vector<std::string>& known) {
  std::vector<TableReader> result;
  if (!root.has(key)) return result;
  if (root.value(key).kind == Value::Kind::table)
    throw ModelError(root.position(key), "write [[" + key + "]] in double brackets: a model may have several");
  result = root.tables(key, known);
  return result;
}

std::string data_file_path(const std::string& name, const ModelFile& file) {
  const std::string beside = path_beside(file.model.path, name);
  std::string made;
  const auto look_in = [&](const auto& recipes) {
    for (const auto& recipe : recipes)
      if (path_beside(file.model.path, recipe.file) == beside) made = recipe.path;
  };
  look_in(file.roads);
  look_in(file.waves);
  look_in(file.currents);
  return made.empty() ? find_data_file(name, file.model.path) : made;
}

std::string require_data_file(const std::string& name, const Reading& reading, const std::string& role,
                              const FilePosition& at, const std::string& table) {
  std::string path = data_file_path(name, reading.file);
  if (!path.empty()) return path;
  throw ModelError(at, role + ": there is no file '" + name + "' beside the model in " + folder_of(reading.file.model) +
                           where_else(name) + " (a [[" + table + "]] table could describe it)");
}

}  // namespace qvslv
