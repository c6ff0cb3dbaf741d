#include <filesystem>

#include "qvbrisk/layouts.h"
#include "solver/elements/defaults.h"
#include "solver/elements/kinds.h"

/// type = "thruster": one qvsoil_thrustforce, which pushes along its marker's x axis; with `speed_control` also the
/// equation whose right-hand side is qvsoil_error_velocity.
namespace qvslv {

namespace {

/// The modes with the subroutine's numbers.
enum ThrustMode { feedback = 0, variable_itself = 1, feedback_or_off = 2, limited = 3 };

ThrustMode read_mode(const TableReader& table) {
  const std::string word = table.choice("mode", {"variable", "feedback", "feedback_or_off", "limited"});
  if (word == "variable") return variable_itself;
  if (word == "feedback_or_off") return feedback_or_off;
  return word == "limited" ? limited : feedback;
}

double variable_id(const TableReader& table, const std::string& key, const Reading& reading) {
  const int index = reading.variables.find(table.text(key), table.what() + ", " + key, table.position(key));
  return reading.file.model.variables[static_cast<size_t>(index)].id;
}

/// Throws if the table has a key that its mode does not read.
void check_keys_of_mode(const TableReader& table, ThrustMode mode) {
  const auto only = [&](const char* key, bool used, const char* by) {
    if (!used && table.has(key)) table.fail(key, std::string("is used by ") + by + " only");
  };
  const bool feeds_back = mode != variable_itself;
  for (const char* key : {"equation", "gains", "speed_control"}) only(key, feeds_back, "the feedback modes");
  only("limit", mode == limited, "the mode \"limited\"");
  if (table.has("equation") && table.has("speed_control"))
    table.fail("speed_control", "makes an equation itself; give either it or 'equation'");
}

/// The equation whose value is the integral of the velocity error of the thrust marker along its x axis.
double add_speed_equation(const TableReader& thruster, double marker, Reading& reading) {
  const TableReader table = thruster.table("speed_control", {"command", "reference"});
  Model& model = reading.model();
  const double reference = marker_id(model, reading.marker_or(table, "reference", 0));
  const double command = variable_id(table, "command", reading);
  Equation equation;
  equation.at = thruster.position("speed_control");
  equation.right_side.at = equation.at;
  equation.name = free_name(reading.equations, thruster.text("name") + "_error");
  while (reading.variables.has(equation.name) || reading.elements.has(equation.name)) equation.name += "_";
  equation.id = next_id_of(model.equations);
  reading.equations.add_internal(equation.name, static_cast<int>(model.equations.size()));
  reading.elements.add_internal(equation.name, k_none);
  std::vector<double> par(QV_SPEED_ERROR_LENGTH, 0.0);
  par[QV_SPEED_ERROR_VEHICLE_MARKER] = marker;
  par[QV_SPEED_ERROR_REFERENCE_MARKER] = reference;
  par[QV_SPEED_ERROR_COMMAND] = command;
  reading.subroutine_equations.push_back(
      {model.equations.size(), std::nullopt, "qvsoil_error_velocity", std::move(par), {}});
  model.equations.push_back(std::move(equation));
  return model.equations.back().id;
}

double equation_id(const TableReader& table, double marker, Reading& reading) {
  if (table.has("speed_control")) return add_speed_equation(table, marker, reading);
  if (!table.has("equation"))
    table.fail("the key 'equation' is missing (or 'speed_control', which makes one for a commanded speed)");
  const int index =
      reading.equations.find(table.text("equation"), table.what() + ", equation", table.position("equation"));
  return reading.model().equations[static_cast<size_t>(index)].id;
}

/// Thrust is -(p y' + i y + d y'') with y' the error.
void read_gains(const TableReader& thruster, std::vector<double>& par) {
  const TableReader table = thruster.table("gains", {"p", "i", "d"});
  if (!table.has("p") && !table.has("i") && !table.has("d")) thruster.fail("gains", "give at least one of p, i and d");
  par[QV_THRUST_FIRST_DERIVATIVE_GAIN] = table.number("p", 0);
  par[QV_THRUST_SECOND_DERIVATIVE_GAIN] = table.number("d", 0);
  par[QV_THRUST_STATE_GAIN] = table.number("i", 0);
}

void read_feedback(const TableReader& table, ThrustMode mode, Reading& reading, std::vector<double>& par) {
  par[QV_THRUST_EQUATION] = equation_id(table, par[QV_THRUST_THRUST_MARKER], reading);
  read_gains(table, par);
  if (mode != limited) return;
  const int spline = reading.splines.find(table.text("limit"), table.what() + ", limit", table.position("limit"));
  par[QV_THRUST_SPLINE] = reading.model().splines[static_cast<size_t>(spline)].id;
}

/// Id of the commanded variable: the one that is named, otherwise the command of `speed_control`.
double command_id(const TableReader& table, const Reading& reading) {
  if (!table.has("variable") && table.has("speed_control"))
    return variable_id(table.table("speed_control", {"command", "reference"}), "command", reading);
  return variable_id(table, "variable", reading);
}

Element read_thruster(const TableReader& table, Reading& reading) {
  const ThrustMode mode = read_mode(table);
  check_keys_of_mode(table, mode);
  const Model& model = reading.model();
  Element element;
  element.subroutine = "qvsoil_thrustforce";
  element.kind = ElementKind::force;
  std::vector<double>& par = element.par;
  par.assign(QV_THRUST_LENGTH, 0.0);
  par[QV_THRUST_THRUST_MARKER] = marker_id(model, reading.marker(table, "marker"));
  par[QV_THRUST_SECOND_MARKER] = par[QV_THRUST_WATER_MARKER] = marker_id(model, reading.marker_or(table, "water", 0));
  par[QV_THRUST_MODE] = mode;
  par[QV_THRUST_VARIABLE] = command_id(table, reading);
  if (mode != variable_itself) read_feedback(table, mode, reading, par);
  if (table.has("wave")) {
    const std::string wave = wave_file_of(table, "wave", reading);
    par[QV_THRUST_WAVE_SWITCH] = 1;
    par[QV_THRUST_WAVE_STRING] = reading.string_id(wave, std::filesystem::path(wave).stem().string());
  } else if (table.has("water")) {
    table.fail("water", "is the frame of a WAVE file; give that as 'wave'");
  }
  set_defaults(element, model);
  return element;
}

class ThrusterReader : public KindReader {
public:
  std::vector<Element> read(const TableReader& table, Reading& reading) override {
    m_elements.push_back(reading.model().elements.size());
    return {read_thruster(table, reading)};
  }

  void finish(Reading& reading) override {
    for (size_t i = 0; i < m_elements.size(); ++i) {
      std::vector<double>& par = reading.model().elements[m_elements[i]].par;
      par[QV_THRUST_ELEMENT] = static_cast<double>(i + 1);
      par[QV_THRUST_ELEMENT_COUNT] = static_cast<double>(m_elements.size());
    }
  }

private:
  std::vector<size_t> m_elements;  ///< indices into Model::elements
};

}  // namespace

ReadableKind thruster_kind() {
  return {"thruster",
          {"marker", "mode", "variable", "equation", "speed_control", "gains", "limit", "wave", "water"},
          make_kind_reader<ThrusterReader>,
          {"qvsoil_thrustforce"},
          "thrust element ids are counted over all thrusters"};
}

}  // namespace qvslv
