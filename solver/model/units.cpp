#include "solver/model/units.h"

#include <cctype>

namespace qvslv {

namespace {

// The units that road files know. They spell "MILI.." with one L, and model files do the same.
const std::vector<UnitName> k_length = {{"METER", "M", "m", 1.0},          {"MILIMETER", "MM", "mm", 0.001},
                                        {"MICROMETER", "UM", "um", 1e-06}, {"KILOMETER", "KM", "km", 1000.0},
                                        {"CM", nullptr, "cm", 0.01},       {"IN", nullptr, "in", 0.0254},
                                        {"FT", nullptr, "ft", 0.3048},     {"MI", nullptr, "mi", 1609.3}};
const std::vector<UnitName> k_mass = {
    {"KILOGRAM", "KG", "kg", 1.0},      {"GRAM", "G", "g", 0.001},       {"MILIGRAM", "MG", "mg", 1e-06},
    {"TON", "T", "t", 1000.0},          {"SG", nullptr, "slug", 14.594}, {"OZM", nullptr, "oz", 0.02835},
    {"BLOB", nullptr, "blob", 175.126}, {"LB", "LBM", "lb", 0.45359237}, {"KLB", nullptr, "klb", 453.59237}};
const std::vector<UnitName> k_time = {{"SECOND", "SEC", "s", 1.0},
                                      {"MILISECOND", "MSEC", "ms", 0.001},
                                      {"MIN", nullptr, "min", 60.0},
                                      {"HR", nullptr, "h", 3600.0}};
const std::vector<UnitName> k_force = {
    {"NEWTON", "N", "N", 1.0},           {"MICRONEWTON", "UN", "uN", 1e-06}, {"MILINEWTON", "MN", "mN", 0.001},
    {"KILONEWTON", "KN", "kN", 1000.0},  {"DYNE", nullptr, "dyn", 1e-05},    {"KGF", nullptr, "kgf", 9.80665},
    {"OZMF", nullptr, "ozf", 0.2780139}, {"LBF", nullptr, "lbf", 4.4482},    {"KLBF", nullptr, "klbf", 4448.2}};
const std::vector<UnitName> k_angle = {{"RADIAN", "RAD", "rad", 1.0}, {"DEGREE", "DEG", "deg", 0.017453292519943295}};

}  // namespace

const std::vector<UnitName>& unit_names(UnitQuantity quantity) {
  switch (quantity) {
    case UnitQuantity::length:
      return k_length;
    case UnitQuantity::mass:
      return k_mass;
    case UnitQuantity::time:
      return k_time;
    case UnitQuantity::force:
      return k_force;
    case UnitQuantity::angle:
      break;
  }
  return k_angle;
}

const UnitName* find_unit(UnitQuantity quantity, const std::string& name) {
  const std::string wanted = upper_case(name);
  for (const UnitName& unit : unit_names(quantity))
    if (wanted == unit.name || (unit.alias != nullptr && wanted == unit.alias)) return &unit;
  return nullptr;
}

std::vector<std::string> all_unit_names(UnitQuantity quantity) {
  std::vector<std::string> names;
  for (const UnitName& unit : unit_names(quantity)) {
    names.emplace_back(unit.name);
    if (unit.alias != nullptr) names.emplace_back(unit.alias);
  }
  return names;
}

std::string upper_case(std::string text) {
  for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return text;
}

namespace {

std::string symbol(UnitQuantity quantity, const std::string& name) {
  const UnitName* unit = find_unit(quantity, name);
  return unit == nullptr ? name : unit->symbol;
}

}  // namespace

UnitSymbols::UnitSymbols(const Units& units)
    : length(symbol(UnitQuantity::length, units.length)),
      mass(symbol(UnitQuantity::mass, units.mass)),
      time(symbol(UnitQuantity::time, units.time)),
      force(symbol(UnitQuantity::force, units.force)),
      area(length + "^2"),
      volume(length + "^3"),
      speed(length + "/" + time),
      spin("rad/" + time),
      moment(force + " " + length),
      energy(mass == "kg" && speed == "m/s" ? "J" : mass + " " + length + "^2/" + time + "^2") {}

}  // namespace qvslv
