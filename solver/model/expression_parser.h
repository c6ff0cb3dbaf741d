#pragma once

#include <muParser.h>

#include <string>

#include "solver/model/model.h"

namespace qvslv {

/// Defines the names that every expression may use, whatever it depends on: `pi`, step() and the model's parameters.
void define_common_names(mu::Parser& parser, const Expression& expression);

/// Throws ModelError for a text with a single `=`. The parser would take it for an assignment, which models do not
/// have.
void refuse_assignment(const Expression& expression);

/// Compiles and evaluates the parser's text once, because the parser finds mistakes only then.
/// @param shown  the expression as its author wrote it, for messages
/// Throws mu::Parser::exception_type, and ModelError if the text does not have exactly one value.
void evaluate_once(mu::Parser& parser, const Expression& shown);

/// "in the expression "...": what the parser says", without its full stop.
/// @param place  of the fault in the expression; negative if the parser does not know it
std::string parser_complaint(const std::string& expression, const std::string& message, const std::string& token,
                             int place);

}  // namespace qvslv
