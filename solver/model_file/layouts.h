#pragma once

#include <string>
#include <vector>

#include "solver/model/model.h"
#include "solver/model/units.h"

/// The thirteen exported subroutines as their callers see them: what stands in `par`, what comes back in `result`.
/// Entries, units and meanings are those of qvbrisk/layouts.h.
namespace qvslv {

/// What an entry of a parameter list is, for checks and for people. The names are those of qvbrisk/layouts.h.
enum class ParKind {
  number,          ///< a value, index, count or switch
  marker,          ///< id of a marker
  marker_or_none,  ///< the same, or 0 for none
  body,            ///< id of a body
  file,            ///< id of a string that names a file, which must be there
  variable,        ///< id of a variable; if none has it, of an equation, whose value is then read
  equation,        ///< id of a differential equation
  spline,          ///< id of a spline
  force,           ///< id of an element or applied force, or of a marker for the sum of the forces there
  unused           ///< not read
};

/// An entry of a parameter list; `meaning` ends with its unit in brackets if it has one.
struct ParSlot {
  ParKind kind = ParKind::number;
  std::string meaning;
};

/// What kind of number a result is, which gives its unit.
enum class ResultQuantity { none, force, moment, length, area, volume, energy, speed, degrees };
std::string unit_of(ResultQuantity quantity, const UnitSymbols& units);

/// An entry of a result array, or the three entries of a vector.
struct ResultSlot {
  int values = 1;      ///< 1, or 3 for x, y and z
  std::string column;  ///< name in results.csv, empty: not recorded; "%" stands for the point or body it belongs to
  ResultQuantity quantity = ResultQuantity::none;
  std::string meaning;
};

/// A group of entries that is repeated `count` times behind the fixed ones. Group i, counted from 0, begins at `first`
/// plus `step`: {14, "2i"} stands for 14 + 2i. In a meaning the word `index` stands for the number of the group.
template <class Slot>
struct Repeated {
  int first = 0;
  const char* step = "";
  const char* index = "";
  std::vector<Slot> slots;
  int (*count)(const std::vector<double>& par) = nullptr;
};

/// One of the thirteen exported subroutines. The functions that take `par` may rely on its fixed entries being there;
/// they throw std::runtime_error if a count among the entries is no sensible number.
struct SubroutineLayout {
  std::string name;
  ElementKind kind = ElementKind::report;  ///< kind of its elements unless the file says otherwise
  std::vector<ParSlot> fixed_par;
  std::vector<Repeated<ParSlot>> repeated_par;  ///< groups that follow one another
  /// Sets the kinds of entries whose use another entry decides; null if there are none.
  void (*decide)(const std::vector<double>& par, std::vector<ParSlot>& slots) = nullptr;
  std::vector<ResultSlot> fixed_results;
  Repeated<ResultSlot> repeated_results;  ///< without slots if there are none

  static constexpr int k_not_in_par = -1;
  // Positions in `par`.
  int marker_par = k_not_in_par;       ///< of the marker that the force acts on
  int axes_par = k_not_in_par;         ///< of the marker in whose axes results come
  int reaction_par = k_not_in_par;     ///< of the marker that the force reacts on
  int road_string_par = k_not_in_par;  ///< of the string that names the road under the contact points
  int road_marker_par = k_not_in_par;  ///< of the marker that carries this road
  bool contact_points = false;         ///< the repeated results are points of a contact grid
};

const std::vector<SubroutineLayout>& subroutine_layouts();
/// Layout of a subroutine; null if it is not one of the thirteen.
const SubroutineLayout* find_layout(const std::string& subroutine);

/// All slots of a list, repeated ones included. Throws std::runtime_error when a count is no sensible number.
std::vector<ParSlot> slots_of(const SubroutineLayout& layout, const std::vector<double>& par);

/// Entries of the fixed results, and of one round of the repeated ones.
int fixed_result_length(const SubroutineLayout& layout);
int repeated_result_length(const SubroutineLayout& layout);
/// Length of the result array; 0 when it would be longer than any sensible model needs. Throws as slots_of does.
int result_length(const SubroutineLayout& layout, const std::vector<double>& par);

/// "par[0]  element index ..." line by line: the layout for a message.
std::string layout_text(const std::vector<ParSlot>& slots);

}  // namespace qvslv
