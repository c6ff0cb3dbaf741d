#pragma once

#include <muParser.h>

#include <string>

#include "solver/model/model.h"

namespace qvslv {

/// What every expression may use whatever it depends on: `pi`, step(), the model's parameters.
void define_common_names(mu::Parser& parser, const Expression& expression);

/// The parser knows assignments, models do not: throws ModelError for a text with a single `=`.
void refuse_assignment(const Expression& expression);

/// Compiles and evaluates the parser's text once; the parser finds mistakes only then.
/// @param shown  the expression as its author wrote it, for messages
/// Throws mu::Parser::exception_type, and ModelError when it has not exactly one value.
void evaluate_once(mu::Parser& parser, const Expression& shown);

/// "in the expression "...": what the parser says", without its full stop.
std::string parser_complaint(const std::string& expression, const std::string& message, const std::string& token);

}  // namespace qvslv
