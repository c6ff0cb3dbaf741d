#include "solver/model_file/layouts.h"

#include <cctype>
#include <stdexcept>

#include "qvbrisk/layouts.h"

namespace qvslv {

namespace {

ParSlot par_slot(ParKind kind, const std::string& unit, const std::string& meaning) {
  return {kind, unit.empty() ? meaning : meaning + " [" + unit + "]"};
}

// A row of qvbrisk/layouts.h as a slot.
#define QV_PAR_SLOT(P, name, kind, unit, meaning) par_slot(ParKind::kind, unit, meaning),
#define QV_RESULT_SLOT(P, name, values, column, quantity, meaning) \
  ResultSlot{values, column, ResultQuantity::quantity, meaning},
#define QV_PAR(list) \
  { list(QV_PAR_SLOT, ) }
#define QV_RESULTS(list) \
  { list(QV_RESULT_SLOT, ) }

/// A layout with these fixed parameters and results; the caller may add repeated ones.
SubroutineLayout layout_of(const char* name, ElementKind kind, std::vector<ParSlot> par,
                           std::vector<ResultSlot> results) {
  SubroutineLayout layout;
  layout.name = name;
  layout.kind = kind;
  layout.fixed_par = std::move(par);
  layout.fixed_results = std::move(results);
  return layout;
}

int count_in(const std::vector<double>& par, size_t position) {
  constexpr double k_most = 1e7;
  if (position >= par.size()) return 0;
  if (!(par[position] >= 0 && par[position] <= k_most))
    throw std::runtime_error("par[" + std::to_string(position) + "] is a count and must be 0 to 10000000");
  return static_cast<int>(par[position]);
}

template <size_t position>
int count_at(const std::vector<double>& par) {
  return count_in(par, position);
}

int once(const std::vector<double>&) { return 1; }

SubroutineLayout soil_layout() {
  SubroutineLayout layout =
      layout_of("qvsoil_interaction", ElementKind::force, QV_PAR(QV_SOIL_PAR), QV_RESULTS(QV_SOIL_RESULTS));
  layout.repeated_results = {QV_SOIL_RESULT_LENGTH, "8k", "k", QV_RESULTS(QV_SOIL_POINT_RESULTS), [](const auto& par) {
                               const double points = static_cast<double>(count_in(par, QV_SOIL_POINTS_ALONG)) *
                                                     count_in(par, QV_SOIL_POINTS_ACROSS);
                               return points < 1e8 ? static_cast<int>(points) : -1;
                             }};
  layout.marker_par = QV_SOIL_BODY_MARKER;
  layout.axes_par = QV_SOIL_GROUND_MARKER;
  layout.reaction_par = layout.road_marker_par = QV_SOIL_ROAD_MARKER;
  layout.road_string_par = QV_SOIL_ROAD_STRING;
  layout.contact_points = true;
  return layout;
}

/// Number of contact points; neighbouring spans share the points over their common node.
int track_points(const std::vector<double>& par) {
  const double along = count_in(par, QV_TRACK_POINTS_ALONG), nodes = count_in(par, QV_TRACK_NODE_COUNT);
  const double points = ((nodes - 1) * (along - 1) + 1) * count_in(par, QV_TRACK_POINTS_ACROSS);
  return points >= 0 && points < 1e8 ? static_cast<int>(points) : -1;
}

SubroutineLayout track_layout() {
  SubroutineLayout layout =
      layout_of("qvsoil_interaction_mtl", ElementKind::evaluated, QV_PAR(QV_TRACK_PAR), QV_RESULTS(QV_TRACK_RESULTS));
  layout.repeated_par = {{QV_TRACK_LENGTH, "2i", "i", QV_PAR(QV_TRACK_NODE_PAR), count_at<QV_TRACK_NODE_COUNT>}};
  layout.repeated_results = {QV_TRACK_RESULT_LENGTH, "8p", "p", QV_RESULTS(QV_TRACK_POINT_RESULTS), track_points};
  layout.marker_par = QV_TRACK_MARKER_I;
  layout.axes_par = QV_TRACK_MARKER_R;
  layout.road_string_par = QV_TRACK_ROAD_STRING;
  layout.road_marker_par = QV_TRACK_MARKER_J;
  layout.contact_points = true;
  return layout;
}

SubroutineLayout track_velocity_layout() {
  SubroutineLayout layout = layout_of("qvsoil_mtl_velocity", ElementKind::report, QV_PAR(QV_TRACK_VELOCITY_PAR),
                                      QV_RESULTS(QV_TRACK_VELOCITY_RESULTS));
  // Mode 1 reads the value of a variable, any other mode the derivative of an equation.
  layout.decide = [](const std::vector<double>& par, std::vector<ParSlot>& slots) {
    const double mode = par[QV_TRACK_VELOCITY_MODE];
    if (mode >= 1 && mode < 2) slots[QV_TRACK_VELOCITY_SOURCE].kind = ParKind::variable;
  };
  return layout;
}

/// Number of patches, which stands behind the nodes.
int hull_patches(const std::vector<double>& par) {
  const auto nodes = static_cast<size_t>(count_in(par, QV_HULL_NODE_COUNT));
  return count_in(par, QV_HULL_LENGTH + QV_HULL_NODE_LENGTH * nodes);
}

SubroutineLayout hull_layout() {
  SubroutineLayout layout =
      layout_of("qvhydro_force", ElementKind::force, QV_PAR(QV_HULL_PAR), QV_RESULTS(QV_HULL_RESULTS));
  layout.repeated_par = {{QV_HULL_LENGTH, "3i", "i", QV_PAR(QV_HULL_NODE_PAR), count_at<QV_HULL_NODE_COUNT>},
                         {QV_HULL_LENGTH, "3N", "", QV_PAR(QV_HULL_PATCH_COUNT_PAR), once},
                         {QV_HULL_LENGTH + 1, "3N + 3p", "p", QV_PAR(QV_HULL_PATCH_PAR), hull_patches}};
  layout.marker_par = QV_HULL_FORCE_MARKER;
  return layout;
}

SubroutineLayout hull_report_layout() {
  SubroutineLayout layout =
      layout_of("qvhydro_report", ElementKind::report, QV_PAR(QV_HULL_REPORT_PAR), QV_RESULTS(QV_HULL_REPORT_RESULTS));
  layout.repeated_par = {
      {QV_HULL_REPORT_LENGTH, "i", "i", QV_PAR(QV_HULL_REPORT_POINT_PAR), count_at<QV_HULL_REPORT_POINT_COUNT>}};
  layout.repeated_results = {QV_HULL_REPORT_RESULT_LENGTH, "4i", "i", QV_RESULTS(QV_HULL_REPORT_POINT_RESULTS),
                             count_at<QV_HULL_REPORT_POINT_COUNT>};
  return layout;
}

/// The mode decides whether spline and equation are read; the WAVE file is opened only if the wave switch is 1.
void decide_thrust_slots(const std::vector<double>& par, std::vector<ParSlot>& slots) {
  const double mode = par[QV_THRUST_MODE], wave_switch = par[QV_THRUST_WAVE_SWITCH];
  if (!(mode >= 3 && mode < 4)) slots[QV_THRUST_SPLINE].kind = ParKind::unused;
  if (mode >= 1 && mode < 2) slots[QV_THRUST_EQUATION].kind = ParKind::unused;
  if (!(wave_switch >= 1 && wave_switch < 2)) slots[QV_THRUST_WAVE_STRING].kind = ParKind::unused;
}

SubroutineLayout thrust_layout() {
  SubroutineLayout layout =
      layout_of("qvsoil_thrustforce", ElementKind::force, QV_PAR(QV_THRUST_PAR), QV_RESULTS(QV_THRUST_RESULTS));
  layout.decide = decide_thrust_slots;
  layout.marker_par = layout.axes_par = QV_THRUST_THRUST_MARKER;
  return layout;
}

SubroutineLayout balls_layout() {
  SubroutineLayout layout;
  layout.name = "qvballplacing_report";
  layout.fixed_par = QV_PAR(QV_BALLS_PAR);
  layout.repeated_par = {{QV_BALLS_LENGTH, "i", "i", QV_PAR(QV_BALLS_BODY_PAR), count_at<QV_BALLS_BALL_COUNT>},
                         {QV_BALLS_LENGTH, "n + i", "i", QV_PAR(QV_BALLS_DIAMETER_PAR), count_at<QV_BALLS_BALL_COUNT>}};
  layout.repeated_results = {0, "3i", "i", QV_RESULTS(QV_BALL_RESULTS), count_at<QV_BALLS_BALL_COUNT>};
  return layout;
}

bool is_word(const std::string& text, size_t at, size_t length) {
  const auto letter = [&](size_t k) {
    return k < text.size() && std::isalnum(static_cast<unsigned char>(text[k])) != 0;
  };
  return !(at > 0 && letter(at - 1)) && !letter(at + length);
}

/// The meaning of round `number`: "radius of node i" becomes "radius of node 3".
std::string numbered(std::string meaning, const std::string& index, int number) {
  if (index.empty()) return meaning;
  for (size_t at = meaning.find(index); at != std::string::npos; at = meaning.find(index, at + 1))
    if (is_word(meaning, at, index.size())) return meaning.replace(at, index.size(), std::to_string(number));
  return meaning;
}

int values_of(const std::vector<ResultSlot>& slots) {
  int values = 0;
  for (const ResultSlot& slot : slots) values += slot.values;
  return values;
}

}  // namespace

std::string unit_of(ResultQuantity quantity, const UnitSymbols& units) {
  switch (quantity) {
    case ResultQuantity::force:
      return units.force;
    case ResultQuantity::moment:
      return units.moment;
    case ResultQuantity::length:
      return units.length;
    case ResultQuantity::area:
      return units.area;
    case ResultQuantity::volume:
      return units.volume;
    case ResultQuantity::energy:
      return units.energy;
    case ResultQuantity::speed:
      return units.speed;
    case ResultQuantity::degrees:
      return "deg";
    case ResultQuantity::none:
      break;
  }
  return "";
}

const std::vector<SubroutineLayout>& subroutine_layouts() {
  static const std::vector<SubroutineLayout> layouts = {
      balls_layout(),
      hull_layout(),
      hull_report_layout(),
      track_layout(),
      layout_of("qvsoil_mtl_eom", ElementKind::report, QV_PAR(QV_TRACK_EOM_PAR), QV_RESULTS(QV_TRACK_EOM_RESULTS)),
      track_velocity_layout(),
      layout_of("qvsoil_shearforce_mtl", ElementKind::report, QV_PAR(QV_TRACK_SHEAR_PAR),
                QV_RESULTS(QV_TRACK_SHARE_RESULTS)),
      layout_of("qvsoil_normalforce_mtl", ElementKind::report, QV_PAR(QV_TRACK_NORMAL_PAR),
                QV_RESULTS(QV_TRACK_SHARE_RESULTS)),
      layout_of("qvsoil_interaction_mtl_sum", ElementKind::report, QV_PAR(QV_TRACK_SUM_PAR),
                QV_RESULTS(QV_TRACK_SUM_RESULTS)),
      soil_layout(),
      layout_of("qvsoil_interaction_Sum", ElementKind::report, QV_PAR(QV_SOIL_SUM_PAR),
                QV_RESULTS(QV_SOIL_SUM_RESULTS)),
      layout_of("qvsoil_error_velocity", ElementKind::report, QV_PAR(QV_SPEED_ERROR_PAR),
                QV_RESULTS(QV_SPEED_ERROR_RESULTS)),
      thrust_layout(),
  };
  return layouts;
}

const SubroutineLayout* find_layout(const std::string& subroutine) {
  for (const SubroutineLayout& layout : subroutine_layouts())
    if (subroutine == layout.name) return &layout;
  return nullptr;
}

std::vector<ParSlot> slots_of(const SubroutineLayout& layout, const std::vector<double>& par) {
  std::vector<ParSlot> slots = layout.fixed_par;
  if (par.size() < slots.size()) return slots;
  if (layout.decide != nullptr) layout.decide(par, slots);
  for (const Repeated<ParSlot>& repeated : layout.repeated_par) {
    const int rounds = repeated.count(par);
    for (int round = 0; round < rounds; ++round)
      for (const ParSlot& slot : repeated.slots)
        slots.push_back({slot.kind, numbered(slot.meaning, repeated.index, round)});
  }
  return slots;
}

int fixed_result_length(const SubroutineLayout& layout) { return values_of(layout.fixed_results); }

int repeated_result_length(const SubroutineLayout& layout) { return values_of(layout.repeated_results.slots); }

int result_length(const SubroutineLayout& layout, const std::vector<double>& par) {
  const int fixed = fixed_result_length(layout);
  if (layout.repeated_results.slots.empty()) return fixed;
  constexpr double k_most = 1e9;
  const int rounds = layout.repeated_results.count(par);
  const double length = fixed + static_cast<double>(rounds) * repeated_result_length(layout);
  return rounds >= 0 && length < k_most ? static_cast<int>(length) : 0;
}

std::string layout_text(const std::vector<ParSlot>& slots) {
  constexpr size_t k_shown = 40;
  std::string text;
  for (size_t i = 0; i < slots.size() && i < k_shown; ++i)
    text += "\n  par[" + std::to_string(i) + "]  " + slots[i].meaning;
  if (slots.size() > k_shown) text += "\n  ... up to par[" + std::to_string(slots.size() - 1) + "]";
  return text;
}

#undef QV_PAR_SLOT
#undef QV_RESULT_SLOT
#undef QV_PAR
#undef QV_RESULTS

}  // namespace qvslv
