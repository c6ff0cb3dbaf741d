#include "solver/model_file/layouts.h"

#include <stdexcept>

namespace qvslv {

namespace {

constexpr ParKind N = ParKind::number, M = ParKind::marker, O = ParKind::other_marker, F = ParKind::file,
                  V = ParKind::variable, E = ParKind::equation, S = ParKind::spline, L = ParKind::force,
                  U = ParKind::unused;
constexpr int k_not_from_par = -1;

int counted(const std::vector<double>& par, size_t position) {
  constexpr double k_most = 1e7;
  if (!(par[position] >= 0 && par[position] <= k_most))
    throw std::runtime_error("par[" + std::to_string(position) + "] is a count and must be 0 to 10000000");
  return static_cast<int>(par[position]);
}

std::string numbered(const char* before, int number, const char* after = "") {
  return before + std::to_string(number) + after;
}

void add_track_nodes(const std::vector<double>& par, std::vector<ParSlot>& slots) {
  for (int i = 0; i < counted(par, 12); ++i) {
    slots.push_back({M, numbered("marker of node ", i)});
    slots.push_back({N, numbered("radius of node ", i, " [length]")});
  }
}

void add_hull_mesh(const std::vector<double>& par, std::vector<ParSlot>& slots) {
  const int nodes = counted(par, 20);
  for (int i = 0; i < nodes; ++i)
    for (const char* axis : {" x", " y", " z"}) slots.push_back({N, numbered("node ", i, axis)});
  const size_t patch_count_at = slots.size();
  slots.push_back({N, "number of patches"});
  if (par.size() <= patch_count_at) return;
  for (int i = 0; i < counted(par, patch_count_at); ++i)
    for (const char* corner : {", first node (from 0)", ", second node", ", third node"})
      slots.push_back({N, numbered("patch ", i, corner)});
}

void add_check_points(const std::vector<double>& par, std::vector<ParSlot>& slots) {
  for (int i = 0; i < counted(par, 11); ++i) slots.push_back({M, numbered("marker of check point ", i)});
}

void add_balls(const std::vector<double>& par, std::vector<ParSlot>& slots) {
  for (int i = 0; i < counted(par, 1); ++i) slots.push_back({ParKind::body, numbered("ball ", i)});
  for (int i = 0; i < counted(par, 1); ++i) slots.push_back({N, numbered("diameter of ball ", i, " [length]")});
}

/// The WAVE file of a thrust is only opened when the wave switch is on; spline and equation are asked for as the mode
/// tells.
void add_wave_string(const std::vector<double>& par, std::vector<ParSlot>& slots) {
  const double mode = par[6], wave_switch = par[13];
  if (!(mode >= 3 && mode < 4)) slots[7].kind = U;
  if (mode >= 1 && mode < 2) slots[9].kind = U;
  slots.push_back({wave_switch >= 1 && wave_switch < 2 ? F : U, "string: WAVE file (read when par[13] is 1)"});
}

/// The value is that of a variable, the derivative that of an equation.
void decide_velocity_slot(const std::vector<double>& par, std::vector<ParSlot>& slots) {
  if (par[0] >= 1 && par[0] < 2) slots[2].kind = V;
}

template <int length>
int fixed_length(const std::vector<double>&) {
  return length;
}

/// Lengths that no sensible model has come out as 0, which the reader refuses.
int bounded(double length) { return length >= 0 && length < 1e9 ? static_cast<int>(length) : 0; }

int soil_result(const std::vector<double>& par) {
  return bounded(7.0 + 8.0 * static_cast<int>(par[12]) * static_cast<int>(par[13]));
}

int track_result(const std::vector<double>& par) {
  const double rows = (counted(par, 12) - 1.0) * (counted(par, 9) - 1.0) + 1.0;
  return bounded(4.0 + 8.0 * rows * counted(par, 10));
}

int hull_report_result(const std::vector<double>& par) { return 18 + 4 * counted(par, 11); }
int ball_result(const std::vector<double>& par) { return 3 * counted(par, 1); }

SubroutineLayout soil_layout() {
  return {"qvsoil_interaction",
          ElementKind::force,
          {{N, "number of this element among those on its road, from 0"},
           {M, "body marker: the contact points are fixed in its axes"},
           {U, "not read"},
           {N, "number of the road, from 0"},
           {F, "string: RDF road file"},
           {M, "road base marker: the road's mesh is given in its axes"},
           {U, "not read"},
           {N, "number of soil elements on this road"},
           {N, "number of roads in the model"},
           {N, "shape: 1 plate, 2 wheel"},
           {N, "plate length or wheel radius [length]"},
           {N, "width [length]"},
           {N, "contact points along the plate or around the wheel"},
           {N, "contact points across the width"},
           {M, "ground reference marker"}},
          nullptr,
          soil_result,
          1,
          14,
          5};
}

SubroutineLayout track_layout() {
  return {"qvsoil_interaction_mtl",
          ElementKind::evaluated,
          {{N, "track index (0)"},
           {N, "number of the road, from 0"},
           {F, "string: RDF road file"},
           {M, "marker I, on the vehicle"},
           {M, "marker J, on the road"},
           {M, "marker R, whose axes express positions and velocities"},
           {N, "number of roads in the model"},
           {N, "belt thickness, added to every node radius [length]"},
           {N, "belt width [length]"},
           {N, "contact points along each span"},
           {N, "contact points across the belt"},
           {V, "variable: belt speed"},
           {N, "number of nodes"},
           {U, "read, not used"}},
          add_track_nodes,
          track_result,
          3,
          5,
          k_not_from_par};
}

SubroutineLayout track_eom_layout() {
  return {"qvsoil_mtl_eom",
          ElementKind::report,
          {{N, "track index (0)"},
           {U, "read, not used"},
           {V, "variable: driving input (its rate is that of the equation of this id)"},
           {N, "divisor of the right-hand side (inertia)"},
           {N, "divisor of the driving input (radius or ratio)"},
           {N, "number of the road, from 0"},
           {L, "first force: its id, or the marker it acts at"},
           {O, "first force: marker it reacts on, 0 for any"},
           {L, "second force: its id, or the marker it acts at"},
           {O, "second force: marker it reacts on, 0 for any"},
           {N, "coefficient of the soil shear"},
           {N, "coefficient of the resistance"},
           {U, "not read"},
           {U, "not read"},
           {U, "read, not used"}},
          nullptr,
          fixed_length<6>,
          k_not_from_par,
          k_not_from_par,
          k_not_from_par};
}

SubroutineLayout hull_layout() {
  return {"qvhydro_force",
          ElementKind::force,
          {{N, "number of this mesh within its hydro force, from 0"},
           {N, "number of meshes of this hydro force"},
           {N, "hydro force id"},
           {N, "number of hydro forces in the model"},
           {M, "force marker: force and torque act there"},
           {M, "water marker: frame of waves and currents, its z axis is up"},
           {M, "body marker: the nodes are given in its axes"},
           {F, "string: WAVE file"},
           {F, "string: CURRENT file"},
           {N, "mass of the mesh, for the report [mass]"},
           {N, "option, stored only"},
           {N, "reserve, stored only"},
           {N, "load scale factor, 0 switches the loads off"},
           {N, "start of the active interval [time]"},
           {N, "end of the active interval [time]"},
           {N, "fluid density"},
           {N, "gravitational acceleration"},
           {N, "tangential drag coefficient"},
           {N, "exponent of the tangential speed"},
           {N, "drag scale factor"},
           {N, "number of nodes"}},
          add_hull_mesh,
          fixed_length<34>,
          4,
          k_not_from_par,
          k_not_from_par};
}

SubroutineLayout hull_report_layout() {
  return {"qvhydro_report",
          ElementKind::report,
          {{U, "not read"},
           {N, "hydro force id"},
           {M, "body marker"},
           {M, "water marker"},
           {U, "not read"},
           {L, "force whose z component is reported"},
           {M, "marker of that force"},
           {U, "not read"},
           {U, "not read"},
           {U, "not read"},
           {U, "not read"},
           {N, "number of check points"}},
          add_check_points,
          hull_report_result,
          k_not_from_par,
          k_not_from_par,
          k_not_from_par};
}

SubroutineLayout thrust_layout() {
  return {"qvsoil_thrustforce",
          ElementKind::force,
          {{N, "thrust element id"},
           {N, "number of thrust elements"},
           {M, "thrust marker"},
           {U, "not read"},
           {M, "second marker, stored only"},
           {M, "water marker: frame of the WAVE file"},
           {N, "mode: 1 variable, 2 feedback zero with the variable, 3 feedback limited by a spline, other feedback"},
           {S, "spline (mode 3)"},
           {V, "variable"},
           {E, "differential equation (all modes but 1)"},
           {N, "gain of the first derivative"},
           {N, "gain of the second derivative"},
           {N, "gain of the state"},
           {N, "wave switch: 1 uses the WAVE file"}},
          add_wave_string,
          fixed_length<6>,
          2,
          2,
          k_not_from_par};
}

/// Layouts with a handful of entries and nothing counted.
SubroutineLayout report_layout(const char* name, std::vector<ParSlot> slots,
                               int (*length)(const std::vector<double>&)) {
  return {name, ElementKind::report, std::move(slots), nullptr, length, k_not_from_par, k_not_from_par, k_not_from_par};
}

std::vector<SubroutineLayout> made_layouts() {
  const ParSlot track{N, "track index (0)"}, road{N, "number of the road, from 0"};
  SubroutineLayout balls =
      report_layout("qvballplacing_report", {{U, "not read"}, {N, "number of balls"}}, ball_result);
  balls.add_counted_slots = add_balls;
  SubroutineLayout velocity = report_layout(
      "qvsoil_mtl_velocity", {{N, "mode: 1 value, other derivative"}, {N, "factor"}, {E, "equation or variable"}},
      fixed_length<1>);
  velocity.add_counted_slots = decide_velocity_slot;
  return {
      balls,
      hull_layout(),
      hull_report_layout(),
      track_layout(),
      track_eom_layout(),
      velocity,
      report_layout("qvsoil_shearforce_mtl", {track, road}, fixed_length<6>),
      report_layout("qvsoil_normalforce_mtl", {track, {N, "node, from 0"}, road}, fixed_length<6>),
      report_layout("qvsoil_interaction_mtl_sum", {road, track}, fixed_length<4>),
      soil_layout(),
      report_layout("qvsoil_interaction_Sum", {road}, fixed_length<4>),
      report_layout("qvsoil_error_velocity",
                    {{U, "not read"}, {M, "vehicle marker"}, {M, "reference marker"}, {V, "variable: commanded speed"}},
                    fixed_length<1>),
      thrust_layout()};
}

}  // namespace

const std::vector<SubroutineLayout>& subroutine_layouts() {
  static const std::vector<SubroutineLayout> layouts = made_layouts();
  return layouts;
}

const SubroutineLayout* find_layout(const std::string& subroutine) {
  for (const SubroutineLayout& layout : subroutine_layouts())
    if (subroutine == layout.name) return &layout;
  return nullptr;
}

std::vector<ParSlot> slots_of(const SubroutineLayout& layout, const std::vector<double>& par) {
  std::vector<ParSlot> slots = layout.fixed_slots;
  if (layout.add_counted_slots != nullptr && par.size() >= slots.size()) layout.add_counted_slots(par, slots);
  return slots;
}

std::string layout_text(const std::vector<ParSlot>& slots) {
  constexpr size_t k_shown = 40;
  std::string text;
  for (size_t i = 0; i < slots.size() && i < k_shown; ++i)
    text += "\n  par[" + std::to_string(i) + "]  " + slots[i].meaning;
  if (slots.size() > k_shown) text += "\n  ... up to par[" + std::to_string(slots.size() - 1) + "]";
  return text;
}

}  // namespace qvslv
