#include "solver/model_file/reading.h"

namespace qvslv {

namespace {

/// Expressions read variables and equations by name, so the two must not share a name.
void add_state_name(NameTable& own, const NameTable& other, const char* what, const char* other_what, int index,
                    const TableReader& table, const Reading& reading) {
  const std::string name = table.text("name");
  const FilePosition& at = table.position("name");
  own.add(name, index, at);
  if (other.has(name))
    throw ModelError(at, std::string("the name '") + name + "' is taken: " + other_what + " has it, and expressions " +
                             "could mean either");
  reading.parameters.check_name_is_free(name, what, at);
}

/// A variable and an equation may share an id: subroutines that ask for a value and a derivative by one id then find
/// both.
template <class Entities>
int read_id(const TableReader& table, const Entities& entities) {
  if (!table.has("id")) return next_id_of(entities);
  const int id = table.count("id");
  for (const auto& entity : entities)
    if (entity.id == id) table.fail("id", "'" + entity.name + "' has the id " + std::to_string(id) + " already");
  return id;
}

void read_initial(const TableReader& table, Equation& equation) {
  if (!table.has("initial")) return;
  if (equation.order == 1) {
    if (table.value("initial").kind == Value::Kind::list)
      table.fail("initial", "an equation of order 1 starts from one number");
    equation.value = table.number("initial");
    return;
  }
  if (table.value("initial").kind != Value::Kind::list || table.value("initial").list.size() != 2)
    table.fail("initial", "an equation of order 2 starts from two numbers, [value, derivative]");
  const std::vector<double> initial = table.numbers("initial");
  equation.value = initial[0];
  equation.rate = initial[1];
}

/// The right-hand side is an expression or a subroutine's result; the subroutine is read with the elements.
void read_right_side(const TableReader& table, size_t index, Equation& equation, Reading& reading) {
  const bool subroutine = table.has("subroutine");
  if (subroutine && table.has("value")) table.fail("value", "give either a value or a subroutine, not both");
  if (!subroutine) {
    for (const char* key : {"par", "result_length"})
      if (table.has(key)) table.fail(key, "belongs to a subroutine, and there is none");
    if (!table.has("value"))
      table.fail("the key 'value' is missing (or a 'subroutine' whose result 0 takes its place)");
    equation.right_side = table.state_expression("value");
    return;
  }
  equation.right_side.at = table.position("subroutine");
  reading.elements.add(equation.name, k_none, table.position("name"));  // its element is made after the others
  reading.subroutine_equations.push_back({index, table, "", {}, {}});
}

}  // namespace

void read_variables(const TableReader& root, Reading& reading) {
  for (const TableReader& table : tables_of(root, "variable", {"name", "id", "value"})) {
    Variable variable;
    variable.at = table.at();
    variable.name = table.text("name");
    variable.id = read_id(table, reading.model().variables);
    add_state_name(reading.variables, reading.equations, "variable", "an equation",
                   static_cast<int>(reading.model().variables.size()), table, reading);
    variable.value = table.state_expression("value");
    reading.model().variables.push_back(std::move(variable));
  }
}

void read_equations(const TableReader& root, Reading& reading) {
  const std::vector<std::string> keys = {"name",  "id",         "order", "initial",
                                         "value", "subroutine", "par",   "result_length"};
  for (const TableReader& table : tables_of(root, "equation", keys)) {
    Equation equation;
    equation.at = table.at();
    equation.name = table.text("name");
    const size_t index = reading.model().equations.size();
    equation.id = read_id(table, reading.model().equations);
    add_state_name(reading.equations, reading.variables, "equation", "a variable", static_cast<int>(index), table,
                   reading);
    if (table.has("order")) equation.order = table.count("order");
    if (equation.order > 2) table.fail("order", "must be 1 (the value is the derivative) or 2 (the second derivative)");
    read_initial(table, equation);
    read_right_side(table, index, equation, reading);
    reading.model().equations.push_back(std::move(equation));
  }
}

void read_splines(const TableReader& root, Reading& reading) {
  for (const TableReader& table : tables_of(root, "spline", {"name", "x", "y"})) {
    Spline spline;
    spline.at = table.at();
    spline.name = table.text("name");
    spline.id = static_cast<int>(reading.model().splines.size()) + 1;
    reading.splines.add(spline.name, spline.id - 1, table.position("name"));
    spline.x = table.numbers("x");
    if (spline.x.size() < 2) table.fail("x", "a spline needs two points or more");
    for (size_t i = 1; i < spline.x.size(); ++i)
      if (!(spline.x[i] > spline.x[i - 1]))
        throw ModelError(table.value("x").list[i].at, table.what() + ", x: the values must increase, " +
                                                          number_text(spline.x[i]) + " follows " +
                                                          number_text(spline.x[i - 1]));
    spline.y = table.numbers("y", spline.x.size());
    reading.model().splines.push_back(std::move(spline));
  }
}

}  // namespace qvslv
