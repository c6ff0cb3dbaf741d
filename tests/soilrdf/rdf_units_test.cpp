#include "soilrdf/rdf_units.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

using qvsoilrdf::find_unit_factor;
using qvsoilrdf::unit_kind;

struct row {
  unit_kind kind;
  const char* name;
  double factor;
};

constexpr auto L = unit_kind::length, F = unit_kind::force, M = unit_kind::mass, T = unit_kind::time;

const row k_rows[] = {
    {L, "MILIMETER", 0.001},
    {L, "MM", 0.001},
    {L, "MICROMETER", 1e-06},
    {L, "UM", 1e-06},
    {L, "KILOMETER", 1000.0},
    {L, "KM", 1000.0},
    {L, "METER", 1.0},
    {L, "M", 1.0},
    {L, "CM", 0.01},
    {L, "IN", 0.0254},
    {L, "FT", 0.3048},
    {L, "MI", 1609.3},
    {F, "NEWTON", 1.0},
    {F, "N", 1.0},
    {F, "MICRONEWTON", 1e-06},
    {F, "UN", 1e-06},
    {F, "MILINEWTON", 0.001},
    {F, "MN", 0.001},
    {F, "KILONEWTON", 1000.0},
    {F, "KN", 1000.0},
    {F, "DYNE", 1e-05},
    {F, "KGF", 9.80665},
    {F, "OZMF", 0.2780139},
    {F, "LBF", 4.4482},
    {F, "KLBF", 4448.2},
    {M, "KILOGRAM", 1.0},
    {M, "KG", 1.0},
    {M, "GRAM", 0.001},
    {M, "G", 0.001},
    {M, "MILIGRAM", 1e-06},
    {M, "MG", 1e-06},
    {M, "TON", 1000.0},
    {M, "T", 1000.0},
    {M, "SG", 14.594},
    {M, "OZM", 0.02835},
    {M, "BLOB", 175.126},
    {M, "LB", 0.45359237},
    {M, "LBM", 0.45359237},
    {M, "KLB", 453.59237},
    {T, "SECOND", 1.0},
    {T, "SEC", 1.0},
    {T, "MILISECOND", 0.001},
    {T, "MSEC", 0.001},
    {T, "MIN", 60.0},
    {T, "HR", 3600.0},
};

TEST(RdfUnits, EveryNameHasItsFactor) {
  for (const row& r : k_rows) {
    const double* factor = find_unit_factor(r.kind, r.name);
    ASSERT_NE(factor, nullptr) << r.name;
    EXPECT_EQ(*factor, r.factor) << r.name;
  }
}

TEST(RdfUnits, ANameBelongsToItsOwnKindOnly) {
  std::set<std::pair<unit_kind, std::string>> known;
  for (const row& r : k_rows) known.insert({r.kind, r.name});
  for (const row& r : k_rows) {
    for (unit_kind kind : {L, F, M, T}) {
      EXPECT_EQ(find_unit_factor(kind, r.name) != nullptr, known.count({kind, r.name}) == 1) << r.name;
    }
  }
}

TEST(RdfUnits, CorrectSpellingsAndOtherNamesAreNotKnown) {
  const row unknown[] = {
      {L, "MILLIMETER", 0}, {F, "MILLINEWTON", 0}, {M, "MILLIGRAM", 0}, {T, "MILLISECOND", 0}, {L, "mm", 0},
      {L, "", 0},           {L, " M", 0},          {L, "M ", 0},        {L, "INCH", 0},        {L, "FOOT", 0},
      {F, "LB", 0},         {M, "SLUG", 0},        {T, "MINUTE", 0},    {T, "HOUR", 0},        {T, "S", 0},
      {L, "METERS", 0}};
  for (const row& r : unknown) EXPECT_EQ(find_unit_factor(r.kind, r.name), nullptr) << '"' << r.name << '"';
}

}  // namespace
