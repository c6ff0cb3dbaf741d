#pragma once

#include <string>

/// The unit names that an RDF file may declare, and their SI values.
namespace qvsoilrdf {

enum class unit_kind { length, force, mass, time };

/// SI value of one unit of the kind; null for a name (upper case) that is not known.
const double* find_unit_factor(unit_kind kind, const std::string& name);

}  // namespace qvsoilrdf
