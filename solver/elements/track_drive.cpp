#include "solver/elements/track_drive.h"

#include <algorithm>
#include <cctype>

#include "qvbrisk/layouts.h"

namespace qvslv {

namespace {

/// A name that can stand in an expression: the track's, with an underscore for every other character.
std::string made_name(const TableReader& track, const char* ending, const Reading& reading) {
  std::string name = track.text("name");
  for (char& c : name)
    if (std::isalnum(static_cast<unsigned char>(c)) == 0) c = '_';
  if (std::isdigit(static_cast<unsigned char>(name[0])) != 0) name = "track_" + name;
  name += ending;
  while (reading.variables.has(name) || reading.equations.has(name) || reading.elements.has(name)) name += "_";
  reading.parameters.check_name_is_free(name, "the made variable or equation", track.position("name"));
  return name;
}

double add_variable(const std::string& name, int id, Expression value, Reading& reading) {
  Model& model = reading.model();
  Variable variable;
  variable.id = id;
  variable.name = name;
  variable.at = value.at;
  variable.value = std::move(value);
  reading.variables.add_internal(name, static_cast<int>(model.variables.size()));
  model.variables.push_back(std::move(variable));
  return id;
}

/// Id of the variable that `belt_speed` names, or of one that is made for its expression.
double given_speed(const TableReader& track, Reading& reading) {
  Expression value = track.state_expression("belt_speed");
  const Model& model = reading.model();
  if (reading.variables.has(value.text))
    return model
        .variables[static_cast<size_t>(reading.variables.find(value.text, track.what(), track.position("belt_speed")))]
        .id;
  return add_variable(made_name(track, "_belt_speed", reading), next_id_of(model.variables), std::move(value), reading);
}

double positive_or_zero(const TableReader& table, const char* key) {
  const double value = table.number(key, 0);
  if (value < 0) table.fail(key, "must not be negative, is " + number_text(value));
  return value;
}

/// Fills in the two forces whose magnitudes resist. The subroutine always asks for two: without resistance they are the
/// track's shear force, which always exists, with the factor 0; a single force stands in both places with half the
/// factor.
void read_resistance(const TableReader& track, const TableReader& drive, SubroutineEquation& motion) {
  motion.par[QV_TRACK_EOM_RESISTANCE_FACTOR] = positive_or_zero(drive, "resistance");
  std::vector<std::string> forces;
  FilePosition at = track.position("drive");
  if (drive.has("forces")) {
    if (!drive.has("resistance")) drive.fail("forces", "resist the sprocket by a 'resistance', which is missing");
    forces = drive.texts("forces");
    at = drive.position("forces");
    if (forces.empty() || forces.size() > 2)
      drive.fail("forces", "one or two forces are expected, not " + std::to_string(forces.size()));
  } else if (drive.has("resistance")) {
    drive.fail("resistance", "is that by one or two 'forces', which are missing (a track's wheels are called '" +
                                 track.text("name") + "_wheel_1', ...)");
  }
  if (forces.size() == 1) motion.par[QV_TRACK_EOM_RESISTANCE_FACTOR] /= 2;
  if (forces.empty()) forces = {track.text("name") + "_shear"};
  motion.forces = {{QV_TRACK_EOM_FIRST_FORCE, forces.front(), drive.what() + ", forces", at},
                   {QV_TRACK_EOM_SECOND_FORCE, forces.back(), drive.what() + ", forces", at}};
}

}  // namespace

BeltDrive read_belt_drive(const TableReader& track, double sprocket_radius, int slot, Reading& reading) {
  if (track.has("belt_speed") && track.has("drive"))
    track.fail("drive", "makes the belt's speed itself; give either it or 'belt_speed'");
  if (!track.has("belt_speed") && !track.has("drive"))
    track.fail("the key 'belt_speed' is missing (or 'drive', for a belt that a torque drives)");
  BeltDrive made;
  if (track.has("belt_speed")) {
    made.speed_variable = given_speed(track, reading);
    return made;
  }
  const TableReader drive =
      track.table("drive", {"torque", "inertia", "ratio", "radius", "speed", "resistance", "forces"});
  Model& model = reading.model();
  made.radius = drive.positive("radius", sprocket_radius);

  SubroutineEquation motion{model.equations.size(), std::nullopt, "qvsoil_mtl_eom", {}, {}};
  motion.par.assign(QV_TRACK_EOM_LENGTH, 0.0);
  motion.par[QV_TRACK_EOM_INERTIA] = drive.positive("inertia");
  motion.par[QV_TRACK_EOM_RATIO] = drive.positive("ratio", 1);
  motion.par[QV_TRACK_EOM_ROAD] = slot;
  motion.par[QV_TRACK_EOM_SOIL_FACTOR] = made.radius;
  read_resistance(track, drive, motion);

  Equation equation;
  equation.name = made_name(track, "_turn", reading);
  equation.order = 2;
  equation.rate = drive.number("speed", 0) / made.radius;
  equation.at = equation.right_side.at = track.position("drive");
  // One id for both: qvsoil_mtl_eom asks for the torque as a variable and for the rate as an equation of that id.
  equation.id = std::max(next_id_of(model.variables), next_id_of(model.equations));
  made.equation = equation.id;
  motion.par[QV_TRACK_EOM_DRIVE] =
      add_variable(made_name(track, "_drive", reading), equation.id, drive.state_expression("torque"), reading);
  reading.equations.add_internal(equation.name, static_cast<int>(model.equations.size()));
  reading.elements.add_internal(equation.name, k_none);
  Expression speed;
  speed.at = equation.at;
  speed.text = number_text(made.radius) + "*dif1(" + equation.name + ")";
  model.equations.push_back(std::move(equation));
  reading.subroutine_equations.push_back(std::move(motion));
  made.speed_variable =
      add_variable(made_name(track, "_belt_speed", reading), next_id_of(model.variables), std::move(speed), reading);
  return made;
}

}  // namespace qvslv
