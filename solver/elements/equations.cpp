#include "solver/elements/equations.h"

#include "solver/elements/defaults.h"
#include "solver/elements/plain.h"
#include "solver/model_file/par.h"

namespace qvslv {

namespace {

/// The call of an equation that was made by a readable element, such as the drive of a track.
Element made_call(const SubroutineEquation& from, const Model& model) {
  Element element;
  element.kind = ElementKind::evaluated;
  element.subroutine = from.subroutine;
  element.par = from.par;
  set_defaults(element, model);
  return element;
}

}  // namespace

void add_equation_elements(Reading& reading) {
  Model& model = reading.model();
  for (const SubroutineEquation& from : reading.subroutine_equations) {
    for (const SubroutineEquation::NamedForce& force : from.forces)
      ask_for_force(reading, model.elements.size(), force.position, force.name, force.role, force.at);
    Equation& equation = model.equations[from.equation];
    Element element = from.table ? read_equation_call(*from.table, reading) : made_call(from, model);
    element.name = equation.name;
    element.at = equation.at;
    equation.element = static_cast<int>(model.elements.size());
    reading.elements.add_internal(element.name, equation.element);
    model.elements.push_back(std::move(element));
  }
}

}  // namespace qvslv
