#pragma once

#include <string>

#include "solver/model_file/layouts.h"
#include "solver/model_file/reading.h"

namespace qvslv {

/// Reads the list `par` of a plain element or of an equation: numbers, expressions, and names that stand for ids
/// ("marker:hub"). The element is the one that will stand at the end of Model::elements.
/// With a layout, length and ids are checked against it; without one the list is taken as it is written.
void read_par(const TableReader& table, const SubroutineLayout* layout, Element& element, Reading& reading);

/// Asks for the id of a force by name, wherever it stands in the file; `element` and `position` say which entry of a
/// `par` gets it.
void ask_for_force(Reading& reading, size_t element, size_t position, const std::string& name, const std::string& role,
                   const FilePosition& at);

/// Numbers the elements, behind the applied forces, and answers what was asked for by name. To be called once all
/// elements are there.
void number_elements(Reading& reading);

/// "marker:wheel" for an entry that holds an id, "body:", "string:", "variable:", "equation:", "spline:" or "force:"
/// likewise; empty when nothing has this id.
std::string name_behind(const Model& model, const ParSlot& slot, double value);

}  // namespace qvslv
