#include "solver/model/units.h"

#include <gmock/gmock.h>

#include <cctype>
#include <fstream>
#include <set>

#include "soilrdf/rdf_units.h"

namespace {

using qvslv::UnitQuantity;
using qvslv::Units;
using qvslv::UnitSymbols;

struct kind_pair {
  UnitQuantity in_models;
  qvsoilrdf::unit_kind in_roads;
};
constexpr kind_pair k_kinds[] = {{UnitQuantity::length, qvsoilrdf::unit_kind::length},
                                 {UnitQuantity::mass, qvsoilrdf::unit_kind::mass},
                                 {UnitQuantity::time, qvsoilrdf::unit_kind::time},
                                 {UnitQuantity::force, qvsoilrdf::unit_kind::force}};

/// Every word of capitals on the page of the road file, and every one of up to three letters.
std::set<std::string> candidate_names() {
  std::set<std::string> names;
  std::ifstream page(QVBRISK_RDF_PAGE);
  EXPECT_TRUE(page) << QVBRISK_RDF_PAGE;
  std::string word;
  for (char c; page.get(c);) {
    if (std::isupper(static_cast<unsigned char>(c)) != 0) {
      word += c;
    } else {
      names.insert(word);
      word.clear();
    }
  }
  for (char a = 'A'; a <= 'Z'; ++a)
    for (char b = 'A'; b <= 'Z'; ++b) {
      names.insert({a});
      names.insert({a, b});
      for (char c = 'A'; c <= 'Z'; ++c) names.insert({a, b, c});
    }
  return names;
}

TEST(UnitNames, ARoadFileAcceptsWhatAModelFileAcceptsWithTheSameFactor) {
  for (const kind_pair& kind : k_kinds)
    for (const std::string& name : qvslv::all_unit_names(kind.in_models)) {
      const double* factor = qvsoilrdf::find_unit_factor(kind.in_roads, name);
      ASSERT_NE(factor, nullptr) << name;
      EXPECT_EQ(*factor, qvslv::find_unit(kind.in_models, name)->factor) << name;
    }
}

TEST(UnitNames, AModelFileAcceptsWhatARoadFileAccepts) {
  int accepted = 0;
  for (const std::string& name : candidate_names())
    for (const kind_pair& kind : k_kinds) {
      if (qvsoilrdf::find_unit_factor(kind.in_roads, name) == nullptr) continue;
      ++accepted;
      EXPECT_NE(qvslv::find_unit(kind.in_models, name), nullptr) << name;
    }
  EXPECT_GE(accepted, 45) << "the page lists the names that are longer than three letters";
}

TEST(UnitSymbols, ProductsHaveABlankAndPowersACaret) {
  Units units;
  units.length = "MILIMETER";
  units.mass = "TON";
  units.force = "NEWTON";
  const UnitSymbols symbols(units);
  EXPECT_EQ(symbols.energy, "t mm^2/s^2");
  EXPECT_EQ(symbols.moment, "N mm");
  EXPECT_EQ(symbols.area, "mm^2");
  EXPECT_EQ(symbols.spin, "rad/s");
}

TEST(UnitSymbols, EnergyIsInJoulesInKilogramsMetresAndSeconds) { EXPECT_EQ(UnitSymbols(Units{}).energy, "J"); }

}  // namespace
