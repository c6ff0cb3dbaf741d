#pragma once

#include <optional>
#include <string>
#include <vector>

#include "solver/data_files/find_data_file.h"
#include "solver/data_files/made_file.h"
#include "solver/model_file/contents.h"
#include "solver/model_file/names.h"
#include "solver/model_file/parameters.h"
#include "solver/model_file/toml_table.h"

namespace qvslv {

/// An entry of a `par` that holds the id of a force or element. With a `name` the entry gets the id of the thing that
/// has this name; without one the file gave the number `id`, which is only checked.
struct ForceReference {
  size_t element = 0;   ///< index into Model::elements
  size_t position = 0;  ///< in its `par`
  std::string name;
  double id = 0;
  std::string role;  ///< who asks, for messages
  FilePosition at;
};

/// An equation whose right-hand side is a subroutine's result. Its element is made after the elements of the file.
struct SubroutineEquation {
  /// An entry of `par` that gets the id of a force or element.
  struct NamedForce {
    size_t position;
    std::string name, role;
    FilePosition at;
  };
  size_t equation = 0;               ///< index into Model::equations
  std::optional<TableReader> table;  ///< of the equation; none if an element made it and filled in the rest
  std::string subroutine;
  std::vector<double> par;
  std::vector<NamedForce> forces;
};

/// The next id among variables or equations: one more than the largest so far.
template <class Entities>
int next_id_of(const Entities& entities) {
  int largest = 0;
  for (const auto& entity : entities) largest = entity.id > largest ? entity.id : largest;
  return largest + 1;
}

/// State that the readers of the single tables share while a model file is read.
struct Reading {
  ModelFile file;
  Parameters parameters;
  NameTable markers{"marker or body"};  ///< a body's name is also the marker on its centre of mass
  NameTable bodies{"body"};
  NameTable joints{"joint"};
  NameTable forces{"force"};
  NameTable strings{"string"};
  NameTable elements{"element"};
  NameTable roads{"road"};
  NameTable waves{"wave"};
  NameTable currents{"current"};
  NameTable variables{"variable"};
  NameTable equations{"equation"};
  NameTable splines{"spline"};
  std::vector<ForceReference> force_references;
  std::vector<SubroutineEquation> subroutine_equations;

  Model& model() { return file.model; }
  int next_id() const;  ///< bodies and markers are numbered together, from 1; forces and elements follow
  /// Index of the marker that a key names.
  int marker(const TableReader& table, const std::string& key) const;
  int marker_or(const TableReader& table, const std::string& key, int otherwise) const;
  /// Adds a marker that the file does not spell out; returns its index.
  int add_internal_marker(const std::string& name, int body, const Vec3& position, const Rotation& orientation,
                          const FilePosition& at);
  /// Id of the string with this text, made when there is none yet.
  int string_id(const std::string& text, const std::string& wished_name);
};

void read_units(const TableReader& root, Reading& reading);       // settings.cpp
void read_simulation(const TableReader& root, Reading& reading);  // settings.cpp
void read_bodies(const TableReader& root, Reading& reading);
void read_markers(const TableReader& root, Reading& reading);
void read_joints(const TableReader& root, Reading& reading);
void read_variables(const TableReader& root, Reading& reading);
void read_equations(const TableReader& root, Reading& reading);
void read_splines(const TableReader& root, Reading& reading);
void read_forces(const TableReader& root, Reading& reading);  // after all readers that add markers
void read_strings(const TableReader& root, Reading& reading);
void read_roads(const TableReader& root, Reading& reading);
void read_waves(const TableReader& root, Reading& reading);     // water.cpp
void read_currents(const TableReader& root, Reading& reading);  // water.cpp

/// The tables of a list such as [[body]]; none when the key is missing.
std::vector<TableReader> tables_of(const TableReader& root, const std::string& key,
                                   const std::vector<std::string>& known);

/// Fills in the paths of the strings that subroutines take for the names of files, and notes these files as inputs.
void resolve_file_strings(Reading& reading);

/// The wished name, or a similar one, that is not taken yet and that a file can refer to.
std::string free_name(const NameTable& names, std::string wish);

/// Path of the file that will be made for a table with these settings. Throws ModelError if the table names no file, or
/// one that another table of its kind describes.
template <class Recipe>
std::string path_of_recipe(const TableReader& table, const Reading& reading, const std::string& settings_line,
                           const char* kind, const std::vector<Recipe>& others) {
  const std::string file = table.text("file"), beside = path_beside(reading.file.model.path, file);
  if (file.empty()) table.fail("file", std::string("the ") + kind + " needs a file name");
  for (const Recipe& other : others)
    if (path_beside(reading.file.model.path, other.file) == beside)
      table.fail("file", std::string("another [[") + kind + "]] describes this file already");
  return made_path(reading.file.made_folder, file, settings_line);
}

/// Folder of the model, absolute.
std::string folder_of(const Model& model);

/// For messages: a hint if a file of this name is in the current folder, which is not looked into; else empty.
std::string where_else(const std::string& name);

/// Absolute path of a data file: of the one that a table describes, else of the one beside the model; empty if there is
/// neither.
std::string data_file_path(const std::string& name, const ModelFile& file);

/// The same; if there is neither, throws ModelError that says where the file was looked for and which `table` could
/// describe it.
std::string require_data_file(const std::string& name, const Reading& reading, const std::string& role,
                              const FilePosition& at, const std::string& table = "road");

/// Name of the file that an element's key means: the file of the [[road]], [[wave]] or [[current]] with this name,
/// otherwise the text itself. Throws ModelError if this file neither exists nor is described by a table.
std::string road_file_of(const TableReader& table, const char* key, const Reading& reading);
std::string wave_file_of(const TableReader& table, const char* key, const Reading& reading);
std::string current_file_of(const TableReader& table, const char* key, const Reading& reading);

}  // namespace qvslv
