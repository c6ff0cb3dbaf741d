#pragma once

#include <string>
#include <vector>

#include "solver/model_file.h"
#include "solver/model_names.h"
#include "solver/model_parameters.h"
#include "solver/toml_table.h"

namespace qvslv {

/// What the readers of the single tables share while a model file is read.
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

  Model& model() { return file.model; }
  int next_id() const;  ///< bodies and markers are numbered together, from 1
  /// Index of the marker that a key names.
  int marker(const TableReader& table, const std::string& key) const;
  int marker_or(const TableReader& table, const std::string& key, int otherwise) const;
  /// Adds a marker that the file does not spell out; returns its index.
  int add_internal_marker(const std::string& name, int body, const Vec3& position, const Rotation& orientation,
                          const FilePosition& at);
  /// Id of the string with this text, made when there is none yet.
  int string_id(const std::string& text, const std::string& wished_name);
};

void read_bodies(const TableReader& root, Reading& reading);
void read_markers(const TableReader& root, Reading& reading);
void read_joints(const TableReader& root, Reading& reading);
void read_forces(const TableReader& root, Reading& reading);
void read_strings(const TableReader& root, Reading& reading);
void read_roads(const TableReader& root, Reading& reading);
void read_elements(const TableReader& root, Reading& reading);  // elements.cpp

/// The tables of a list such as [[body]]; none when the key is missing.
std::vector<TableReader> tables_of(const TableReader& root, const std::string& key,
                                   const std::vector<std::string>& known);

/// A name like the wished one that is not taken yet and that a file can refer to.
std::string free_name(const NameTable& names, std::string wish);

/// The file as the library will find it, or ModelError saying where it was looked for.
std::string require_data_file(const std::string& name, const Reading& reading, const std::string& role,
                              const FilePosition& at);

}  // namespace qvslv
