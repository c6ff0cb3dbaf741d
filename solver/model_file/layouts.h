#pragma once

#include <string>
#include <vector>

#include "solver/model/model.h"

namespace qvslv {

/// What an entry of a parameter list is, for checks and for people.
enum class ParKind {
  number,        ///< a value, index, count or switch
  marker,        ///< id of a marker
  other_marker,  ///< the same, or 0 for none
  body,          ///< id of a body
  file,          ///< id of a string that names a file, which must be there
  variable,      ///< id of a variable; where none has it, of an equation, whose value is then read
  equation,      ///< id of a differential equation
  spline,        ///< id of a spline
  force,         ///< id of an element or applied force, or of a marker for the sum of the forces there
  unused         ///< not read
};

struct ParSlot {
  ParKind kind;
  std::string meaning;
};

/// One of the thirteen exported subroutines, as its callers see it. A function of `par` may rely on `par` being at
/// least as long as `fixed_slots`.
struct SubroutineLayout {
  const char* name;
  ElementKind kind;                  ///< what an element of it is unless the file says otherwise
  std::vector<ParSlot> fixed_slots;  ///< entries that every list has
  /// Adds the entries that follow, as counts among the fixed ones tell, and sets the kinds of those whose use a switch
  /// decides. Null: none.
  void (*add_counted_slots)(const std::vector<double>& par, std::vector<ParSlot>& slots);
  int (*result_length)(const std::vector<double>& par);
  int marker_par, axes_par, reaction_par;  ///< positions in par that the defaults come from, or -1
};

const std::vector<SubroutineLayout>& subroutine_layouts();
const SubroutineLayout* find_layout(const std::string& subroutine);

/// All slots of a list, counted ones included. Throws std::runtime_error when a count is no sensible number.
std::vector<ParSlot> slots_of(const SubroutineLayout& layout, const std::vector<double>& par);

/// "position 0: element index ..., from 0" line by line: the layout for a message.
std::string layout_text(const std::vector<ParSlot>& slots);

}  // namespace qvslv
