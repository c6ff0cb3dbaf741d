#pragma once

#include <string>
#include <vector>

#include "solver/model_file/layouts.h"
#include "solver/model_file/reading.h"

namespace qvslv {

/// The list [[element]] of a model file; to be read behind everything else.
void read_elements(const TableReader& root, Reading& reading);

/// The readers of the element layers. Every readable layer makes plain elements: a subroutine and its `par`.

/// type = "subroutine": the plain layer.
Element read_plain_element(const TableReader& table, Reading& reading);

/// An equation's subroutine, called with the forces for the right-hand side.
Element read_equation_element(const TableReader& table, Reading& reading);

/// type = "balls": one qvballplacing_report.
Element read_balls(const TableReader& table, Reading& reading);

/// type = "soil_contact": a qvsoil_interaction each. Road numbers, element numbers and their counts need all of the
/// model's contacts, so they are filled in by `number_soil_contacts`.
struct SoilContact {
  size_t element = 0;  ///< index into Model::elements
  std::string road;    ///< file
  bool sum = false;    ///< asks for the road's qvsoil_interaction_Sum
};
Element read_soil_contact(const TableReader& table, Reading& reading, SoilContact& contact);
void number_soil_contacts(const std::vector<SoilContact>& contacts, Reading& reading);

/// The file that the key `road` means: that of a [[road]] with this name, else the text itself.
std::string road_file_of(const TableReader& table, const Reading& reading);

/// Sets what an element of a known subroutine has unless the file says otherwise: result length, columns, points,
/// and marker, axes and reaction from the ids in `par`.
void set_defaults(Element& element, const SubroutineLayout& layout, const Model& model);

/// Columns of a known subroutine's result, names and units.
std::vector<ResultColumn> default_columns(const Element& element, const Model& model);

/// "m/s"
std::string speed_symbol(const Units& units);

/// Index of the marker or body with an id, or -1.
int marker_with_id(const Model& model, double id);
int body_with_id(const Model& model, double id);

}  // namespace qvslv
