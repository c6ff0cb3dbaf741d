#include "soilrdf/rdf_units.h"

#include <cstddef>

namespace qvsoilrdf {
namespace {

struct unit {
  const char* name;
  double factor;
};

// Kept: the prefixes are spelled with one L ("MILIMETER"), and the correct spellings are refused. The values keep the
// digits that they have here: existing road files were made with them.
constexpr unit k_lengths[] = {{"MILIMETER", 0.001},  {"MM", 0.001},  {"MICROMETER", 1e-06}, {"UM", 1e-06},
                              {"KILOMETER", 1000.0}, {"KM", 1000.0}, {"METER", 1.0},        {"M", 1.0},
                              {"CM", 0.01},          {"IN", 0.0254}, {"FT", 0.3048},        {"MI", 1609.3}};
constexpr unit k_forces[] = {{"NEWTON", 1.0},       {"N", 1.0},       {"MICRONEWTON", 1e-06}, {"UN", 1e-06},
                             {"MILINEWTON", 0.001}, {"MN", 0.001},    {"KILONEWTON", 1000.0}, {"KN", 1000.0},
                             {"DYNE", 1e-05},       {"KGF", 9.80665}, {"OZMF", 0.2780139},    {"LBF", 4.4482},
                             {"KLBF", 4448.2}};
constexpr unit k_masses[] = {{"KILOGRAM", 1.0},   {"KG", 1.0},       {"GRAM", 0.001},   {"G", 0.001},
                             {"MILIGRAM", 1e-06}, {"MG", 1e-06},     {"TON", 1000.0},   {"T", 1000.0},
                             {"SG", 14.594},      {"OZM", 0.02835},  {"BLOB", 175.126}, {"LB", 0.45359237},
                             {"LBM", 0.45359237}, {"KLB", 453.59237}};
constexpr unit k_times[] = {{"SECOND", 1.0}, {"SEC", 1.0},  {"MILISECOND", 0.001},
                            {"MSEC", 0.001}, {"MIN", 60.0}, {"HR", 3600.0}};

template <std::size_t N>
const double* find(const unit (&table)[N], const std::string& name) {
  for (const unit& row : table)
    if (name == row.name) return &row.factor;
  return nullptr;
}

}  // namespace

const double* find_unit_factor(unit_kind kind, const std::string& name) {
  switch (kind) {
    case unit_kind::length:
      return find(k_lengths, name);
    case unit_kind::force:
      return find(k_forces, name);
    case unit_kind::mass:
      return find(k_masses, name);
    case unit_kind::time:
      return find(k_times, name);
  }
  return nullptr;
}

}  // namespace qvsoilrdf
