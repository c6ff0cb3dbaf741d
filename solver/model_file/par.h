#pragma once

#include <string>

#include "solver/model_file/layouts.h"
#include "solver/model_file/reading.h"

namespace qvslv {

/// Reads the list `par` of a plain element or of an equation: numbers, expressions, and names that stand for ids
/// ("marker:hub"). The element is the one that will stand at the end of Model::elements.
/// With a layout, length and ids are checked against it; without one the list is taken as it is written.
void read_par(const TableReader& table, const SubroutineLayout* layout, Element& element, Reading& reading);

/// The table that can describe a file with this meaning in a `par`: "road", "wave" or "current".
std::string table_for(const std::string& meaning);

/// Notes that an entry of a `par` gets the id of a force or element, which may stand anywhere in the file;
/// number_elements fills it in.
/// @param element   index into Model::elements, of the element whose `par` it is
/// @param position  of the entry in `par`
/// @param name      of the force or element; `role` and `at` say in a message who asks and where
void ask_for_force(Reading& reading, size_t element, size_t position, const std::string& name, const std::string& role,
                   const FilePosition& at);

/// Gives the elements their ids, which follow the ids of the applied forces, and fills in the ids that ask_for_force
/// noted. Call it when all elements are there.
void number_elements(Reading& reading);

/// Name of the thing whose id an entry of `par` holds, with its kind in front: "marker:wheel". The kinds are marker,
/// body, string, variable, equation, spline and force. Empty if nothing has this id, or if the entry holds no id.
std::string name_behind(const Model& model, const ParSlot& slot, double value);

}  // namespace qvslv
