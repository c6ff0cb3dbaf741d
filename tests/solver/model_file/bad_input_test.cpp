#include <gmock/gmock.h>

#include "tests/solver/model_file/base_model.h"
#include "tests/solver/model_file/mistake.h"

namespace {

using testing::HasSubstr;

// clang-format off
const mistake k_mistakes[] = {
    // The file as a whole
    {"A quote is missing at the end of a text", "title = \"base\"", "title = \"base", "model.toml:1:14: Error while parsing string: unescaped control characters other than TAB (U+0009) are explicitly prohibited"},
    {"A key is given twice", "end_time = 2.0", "end_time = 2.0\nend_time = 3.0", "model.toml:6:12: Error while parsing key-value pair: cannot redefine existing floating-point 'end_time'"},
    {"A key is misspelt", "end_time = 2.0", "endtime = 2.0", "model.toml:5:1: simulation: unknown key 'endtime'; did you mean 'end_time'?"},
    {"A key that does not exist, with nothing like it", "mass = 3", "weight = 3", "model.toml:38:1: body 'ball': unknown key 'weight'; known: name, mass, density, center, inertia, shape, position, angles, angles_deg, velocity, angular_velocity"},
    {"A table is misspelt", "[simulation]", "[simulaton]", "model.toml:4:2: model: unknown key 'simulaton'; did you mean 'simulation'?"},
    {"A single bracket for a list of tables", "[[force]]", "[force]", "model.toml:64:1: write [[force]] in double brackets: a model may have several"},
    {"A required key is missing", "end_time = 2.0\n", "", "model.toml:4:1: simulation: the key 'end_time' is missing"},
    {"No gravity", "gravity = [0, 0, -9.81]\n", "", "model.toml:1:1: model: the key 'gravity' is missing"},
    {"A text where a number is expected", "mass = 3", "mass = \"3 kg\"", "model.toml:38:8: in the expression \"3 kg\": 'kg' is no parameter, constant or function; parameters: f, m0, rate"},
    {"true where a number is expected", "mass = 3", "mass = true", "model.toml:38:8: body 'ball', mass: a number or an expression in quotes is expected, not true"},
    {"A number where a text is expected", "name = \"hub\"", "name = 7", "model.toml:44:8: marker 1, name: a text in quotes is expected, not a number"},
    {"A list of the wrong length", "gravity = [0, 0, -9.81]", "gravity = [0, -9.81]", "model.toml:2:11: gravity: a list of 3 numbers is expected, not a list of 2 values"},
    {"A list where a number is expected", "mass = 3", "mass = [3]", "model.toml:38:8: body 'ball', mass: a number or an expression in quotes is expected, not a list of 1 value"},
    {"A number that is not finite", "mass = 3", "mass = inf", "model.toml:38:8: body 'ball', mass: a finite number is expected"},
    // Simulation and units
    {"The end time is 0", "end_time = 2.0", "end_time = 0", "model.toml:5:12: simulation, end_time: must be greater than 0, is 0"},
    {"A negative output step", "output_step = 0.1", "output_step = -0.1", "model.toml:6:15: simulation, output_step: must be greater than 0, is -0.1"},
    {"An unknown integrator", "end_time = 2.0", "end_time = 2.0\nintegrator = \"runge-kuta-merson\"", "model.toml:6:14: simulation, integrator: 'runge-kuta-merson' is not known; did you mean 'runge-kutta-merson'?"},
    {"A kind of results that is none", "end_time = 2.0", "end_time = 2.0\nresults = \"page, frame\"", "model.toml:6:11: simulation, results: 'frame' is no kind of results; did you mean 'frames'?"},
    {"The fixed-step integrator without a step", "end_time = 2.0", "end_time = 2.0\nintegrator = \"semi-explicit\"", "model.toml:6:14: simulation, integrator: the semi-explicit integrator needs a 'step' as well"},
    {"An accuracy of 1 or more", "end_time = 2.0", "end_time = 2.0\naccuracy = 5", "model.toml:6:12: simulation, accuracy: must be less than 1 (1e-5 is a good start)"},
    {"An unknown unit", "length = \"m\"", "length = \"millimeter\"", "model.toml:9:10: units, length: 'millimeter' is no unit known here; did you mean 'MILIMETER'?"},
    {"Units that do not belong together", "length = \"m\"", "length = \"mm\"", "model.toml:8:1: units: the force unit NEWTON is not the one that belongs to KILOGRAM, MILIMETER and SECOND (force = mass length / time^2); with these a mass in TON would fit"},
    // Numbers and expressions
    {"An expression that breaks off", "\"m0*sin(t)\"", "\"m0*sin(t\"", "model.toml:67:13: in the expression \"m0*sin(t\": Missing parenthesis (at \")\")"},
    {"A misspelt parameter in an expression", "mass = \"2*m0\"", "mass = \"2*m1\"", "model.toml:32:8: in the expression \"2*m1\": 'm1' is no parameter, constant or function; did you mean 'm0'?"},
    {"A misspelt function", "\"m0*sin(t)\"", "\"m0*sinus(t)\"", "model.toml:67:13: in the expression \"m0*sinus(t)\": there is no function 'sinus'; did you mean 'sin'?"},
    {"A number that depends on time", "mass = \"2*m0\"", "mass = \"2*t\"", "model.toml:32:8: in the expression \"2*t\": a number is expected here, it cannot depend on the time t"},
    {"A number that is none", "mass = \"2*m0\"", "mass = \"1/(m0-12)\"", "model.toml:32:8: in the expression \"1/(m0-12)\": the value is not a finite number"},
    {"A parameter that depends on itself", "f = 0.5", "f = \"rate/2\"", "model.toml:14:8: parameter 'rate' depends on itself (rate, f)"},
    {"A parameter with the name of a function", "f = 0.5", "sin = 0.5\nf = 0.5", "model.toml:15:1: parameter 'sin': expressions use this name already; choose another"},
    // Bodies and markers
    {"A negative mass", "mass = 3", "mass = -3", "model.toml:38:8: body 'ball', mass: must be greater than 0, is -3"},
    {"A mass of 0", "mass = 3", "mass = 0", "model.toml:38:8: body 'ball', mass: must be greater than 0, is 0"},
    {"Moments of inertia that no body has", "inertia = [1.0, 2.0, 1.5]", "inertia = [1.0, 4.0, 1.5]", "model.toml:33:11: body 'wheel', inertia: no body has these: moments must be positive and each at most the sum of the other two, and products not larger than the moments allow"},
    {"Products of inertia too large", "inertia = [1.0, 2.0, 1.5]", "inertia = [1.0, 2.0, 1.5, 0, 1.4, 0]", "model.toml:33:11: body 'wheel', inertia: no body has these: moments must be positive and each at most the sum of the other two, and products not larger than the moments allow"},
    {"The wrong number of moments", "inertia = [1.0, 2.0, 1.5]", "inertia = [1.0, 2.0]", "model.toml:33:11: body 'wheel', inertia: [xx, yy, zz] or [xx, yy, zz, xy, xz, yz] is expected, not 2 numbers"},
    {"Neither inertia nor shape", "shape = { sphere = { radius = 0.1 } }\n", "", "model.toml:36:1: body 'ball': the key 'inertia' is missing (or a 'shape' to compute it from)"},
    {"Both mass and density", "mass = 3", "mass = 3\ndensity = 7800", "model.toml:39:11: body 'ball', density: give either mass or density, not both"},
    {"A density without a shape", "mass = \"2*m0\"\ninertia = [1.0, 2.0, 1.5]\nshape = { cylinder = { radius = 0.5, length = 0.2 } }", "density = 1000\ninertia = [1.0, 2.0, 1.5]", "model.toml:32:11: body 'wheel', density: a density needs a shape to fill"},
    {"An unknown shape", "{ sphere = { radius = 0.1 } }", "{ spere = { radius = 0.1 } }", "model.toml:39:11: body 'ball', shape: unknown key 'spere'; did you mean 'sphere'?"},
    {"A radius of 0", "radius = 0.1", "radius = 0", "model.toml:39:31: body 'ball', shape, sphere, radius: must be greater than 0, is 0"},
    {"An unknown axis of a cylinder", "length = 0.2 }", "length = 0.2, axis = \"w\" }", "model.toml:34:59: body 'wheel', shape, cylinder, axis: 'w' is not known; known: x, y, z"},
    {"Two bodies of one name", "name = \"ball\"", "name = \"arm\"", "model.toml:37:8: the name 'arm' is taken: a body has it (line 26)"},
    {"A marker with the name of a body", "name = \"hub\"", "name = \"ball\"", "model.toml:44:8: the name 'ball' is taken: a marker or body has it (line 37)"},
    {"A body called ground", "name = \"ball\"", "name = \"ground\"", "model.toml:37:8: body 'ground', name: the ground is there already; a body needs another name"},
    {"A name with a dot", "name = \"hub\"", "name = \"wheel.hub\"", "model.toml:44:8: the name 'wheel.hub' of a marker or body may hold none of . : , ; and no quotes"},
    {"A marker on an unknown body", "name = \"hub\"\nbody = \"wheel\"", "name = \"hub\"\nbody = \"weel\"", "model.toml:45:8: marker 'hub', body: there is no body 'weel'; did you mean 'wheel'?"},
    {"Angles in radians and in degrees", "angles_deg = [0, 0, 90]", "angles_deg = [0, 0, 90]\nangles = [0, 0, 1]", "model.toml:41:14: body 'ball', angles_deg: give either angles [rad] or angles_deg, not both"},
    // Joints and forces
    {"An unknown joint type", "name = \"pivot\"\ntype = \"revolute\"", "name = \"pivot\"\ntype = \"hinge\"", "model.toml:59:8: joint 'pivot', type: 'hinge' is not known; known: free, planar, slider, revolute, cylindrical, universal, ball, weld"},
    {"An axis of length 0", "name = \"pivot\"\ntype = \"revolute\"\nbody = \"arm\"\naxis = \"y\"", "name = \"pivot\"\ntype = \"revolute\"\nbody = \"arm\"\naxis = [0, 0, 0]", "model.toml:61:8: joint 'pivot', axis: has length 0; give the direction, for instance \"z\" or [0, 0, 1]"},
    {"An axis for a joint that has none", "name = \"pivot\"\ntype = \"revolute\"", "name = \"pivot\"\ntype = \"weld\"", "model.toml:61:8: joint 'pivot', axis: a weld joint has no axis"},
    {"A joint on an unknown body", "body = \"arm\"\naxis", "body = \"arms\"\naxis", "model.toml:60:8: joint 'pivot', body: there is no body 'arms'; did you mean 'arm'?"},
    {"A body on two joints", "name = \"pivot\"\ntype = \"revolute\"\nbody = \"arm\"", "name = \"pivot\"\ntype = \"revolute\"\nbody = \"wheel\"", "model.toml:57:1: joint 'pivot': the body 'wheel' hangs on joint 'axle' already; joints form a tree, a body hangs on one joint at most"},
    {"Joints in a circle", "name = \"pivot\"\ntype = \"revolute\"\nbody = \"arm\"", "name = \"pivot\"\ntype = \"revolute\"\nbody = \"arm\"\nparent = \"wheel\"", "model.toml:48:1: joint 'axle' is part of a circle: its parent hangs, joint by joint, on its own body"},
    {"Two joints of one name", "name = \"pivot\"", "name = \"axle\"", "model.toml:58:8: the name 'axle' is taken: a joint has it (line 49)"},
    {"A place for a body that a joint carries", "density = 7800", "density = 7800\nposition = [0, 0, 1]", "model.toml:28:12: body 'arm', position: the body hangs on joint 'pivot', whose position, start and start_velocity say where it starts"},
    {"A coordinate the joint does not have", "start = { angle_deg = 30 }", "start = { travel = 30 }", "model.toml:62:11: joint 'pivot', start: unknown key 'travel'; known: angle, angle_deg"},
    {"A motion without its coordinate", "name = \"axle\"\ntype = \"revolute\"", "name = \"axle\"\ntype = \"cylindrical\"", "model.toml:55:10: joint 'axle', motion: which coordinate? write motion = { coordinate = \"angle\", position = \"...\" }"},
    {"A motion on a ball joint", "name = \"axle\"\ntype = \"revolute\"\nbody = \"wheel\"\nparent = \"arm\"\nposition = [0.5, 0, 0]\naxis = \"y\"", "name = \"axle\"\ntype = \"ball\"\nbody = \"wheel\"\nparent = \"arm\"\nposition = [0.5, 0, 0]", "model.toml:54:10: joint 'axle', motion: a ball joint cannot be given a motion; use one with an axis"},
    {"A motion that gives position and velocity", "motion = \"rate*t\"", "motion = { position = \"t\", velocity = \"1\" }", "model.toml:55:39: joint 'axle', motion, velocity: give one of position, position_deg, velocity, velocity_deg, not two"},
    {"Markers and a body for one joint", "axis = \"y\"\nmotion", "marker = \"hub\"\nparent_marker = \"ground\"\nmotion", "model.toml:51:8: joint 'axle', body: the joint's two markers say this already"},
    {"A force on an unknown marker", "marker = \"hub\"", "marker = \"hubb\"", "model.toml:66:10: force 'push', marker: there is no marker or body 'hubb'; did you mean 'hub'?"},
    {"A force that is none", "force = [0, \"m0*sin(t)\", 0]\n", "", "model.toml:64:1: force 'push': give a force or a torque (or both)"},
    {"A force with two components", "force = [0, \"m0*sin(t)\", 0]", "force = [0, 10]", "model.toml:67:9: force 'push', force: a list of 3 numbers or expressions is expected, not a list of 2 values"},
    // Roads and elements
    {"A road file that is not there", "road = \"field\"", "road = \"feild.rdf\"", "model.toml:78:8: element 'tyre', road: there is no file 'feild.rdf' beside the model in <folder> (a [[road]] table could describe it)"},
    {"An unknown soil", "soil = \"dry_sand\"", "soil = \"dry_snad\"", "model.toml:23:8: road 'field', soil: 'dry_snad' is not known; did you mean 'dry_sand'?"},
    {"A road with more than 20 million triangles", "spacing = 0.5", "spacing = 0.0005", "model.toml:17:1: road 'field': this makes more than 20 million triangles; widen the spacing"},
    {"A sine road without its amplitude", "kind = \"flat\"", "kind = \"sine\"\nwavelength = 2", "model.toml:17:1: road 'field': a sine road needs an amplitude"},
    {"An unknown element type", "type = \"soil_contact\"", "type = \"soilcontact\"", "model.toml:75:8: element 'tyre', type: 'soilcontact' is not known; did you mean 'soil_contact'?"},
    {"A key of another element type", "type = \"soil_contact\"", "type = \"soil_contact\"\npar = [1]", "model.toml:76:7: element 'tyre', par: a soil_contact has no such key; known: name, type, shape, marker, road, road_marker, radius, length, width, grid, sum"},
    {"A length for a wheel", "radius = 0.5\nwidth", "length = 0.5\nwidth", "model.toml:79:10: element 'tyre', length: a wheel has a radius instead"},
    {"A grid that is no whole number", "grid = [12, 3]", "grid = [12, 0]", "model.toml:81:8: element 'tyre', grid: two whole numbers, 1 or more, are expected: points along (or around) and across"},
    {"An unknown subroutine", "\"qvballplacing_report\"", "\"qvballplacing_reprot\"", "model.toml:87:14: element 'energies', subroutine: 'qvballplacing_reprot' is not known; did you mean 'qvballplacing_report'? (one of your own library needs the keys kind and result_length)"},
    {"Too few parameters for a known subroutine", "par = [0, 1, \"body:ball\", 0.2]", "par = [0, 1, \"body:ball\"]", "model.toml:88:7: element 'energies', par: qvballplacing_report takes 4 numbers, not 3:"},
    {"An unknown body in par", "\"body:ball\"", "\"body:bal\"", "model.toml:88:14: element 'energies', par[2]: there is no body 'bal'; did you mean 'ball'?"},
    {"A marker where a body is expected in par", "\"body:ball\"", "\"marker:hub\"", "model.toml:88:14: element 'energies', par[2] (body of ball 0): 'marker:hub' is no body; write \"body:name\""},
    {"An id that nothing has", "\"body:ball\"", "77", "model.toml:88:14: element 'energies', par[2] (body of ball 0): 77 is no body; write \"body:name\""},
    {"A name of no known kind in par", "\"body:ball\"", "\"bdoy:ball\"", "model.toml:88:14: element 'energies', par[2]: 'bdoy:' is no kind of name; did you mean 'body'?"},
    {"Results cut short", "subroutine = \"qvballplacing_report\"", "subroutine = \"qvballplacing_report\"\nresult_length = 2", "model.toml:88:17: element 'energies', result_length: these parameters make qvballplacing_report write 3 results"},
    {"A plain soil element beside a readable one", "subroutine = \"qvballplacing_report\"\npar = [0, 1, \"body:ball\", 0.2]", "subroutine = \"qvsoil_interaction\"\npar = [0, \"marker:ball\", 0, 0, \"string:file\", \"marker:ground\", 0, 1, 1, 1, 1, 1, 2, 2, \"marker:ground\"]\n[[string]]\nname = \"file\"\ntext = \"field.rdf\"", "model.toml:84:1: element 'energies': qvsoil_interaction beside a soil_contact; road and element numbers are counted over all contacts, so write either all of them plain or all as soil_contact"},
};

struct override_mistake {
  const char* why;
  const char* option;
  const char* message;
};

const override_mistake k_override_mistakes[] = {
    {"`--set` without an equals sign", "simulation.end_time", "--set simulation.end_time: key=value is expected, for instance simulation.end_time=2"},
    {"`--set` on an entry that is not there", "body.weel.mass=5", "--set body.weel.mass=5: there is no 'weel' in body; did you mean 'wheel'?"},
    {"`--set` on a table that is not there", "simulaton.end_time=5", "--set simulaton.end_time=5: there is no 'simulaton' in the model file; did you mean 'simulation'?"},
    {"`--set` on a misspelt key", "body.wheel.mas=5", "--set body.wheel.mas=5: body 'wheel': unknown key 'mas'; did you mean 'mass'?"},
    {"`--set` on an unknown parameter", "parameters.m1=5", "--set parameters.m1=5: there is no 'm1' in parameters; did you mean 'm0'?"},
    {"`--set` with a value of the wrong kind", "body.wheel.mass=[1]", "--set body.wheel.mass=[1]: body 'wheel', mass: a number or an expression in quotes is expected, not a list of 1 value"},
    {"`--set` with a value out of range", "body.wheel.mass=-1", "--set body.wheel.mass=-1: body 'wheel', mass: must be greater than 0, is -1"},
    {"`--set` with a broken list", "gravity=[0,0", "--set gravity=[0,0: Error while parsing array: encountered end-of-file"},
};
// clang-format on

TEST(BadInput, BaseModelItselfHasNoMistake) { EXPECT_EQ(message_of(k_base_model, {}), "no mistake was found"); }

TEST(BadInput, EveryMistakeIsNamedAtItsPlace) {
  for (const mistake& row : k_mistakes) {
    SCOPED_TRACE(row.why);
    EXPECT_EQ(comparable(message_of(changed(row.from, row.to), {})), row.message);
  }
}

TEST(BadInput, MistakenOverridePointsAtTheOption) {
  for (const override_mistake& row : k_override_mistakes) {
    SCOPED_TRACE(row.why);
    EXPECT_EQ(comparable(message_of(k_base_model, {row.option})), row.message);
  }
}

TEST(BadInput, PageShowsEveryMistakeAndItsMessage) {
  const std::string text = bad_input_page();
  for (const mistake& row : k_mistakes) {
    EXPECT_THAT(text, HasSubstr(std::string("| ") + row.why + " |"));
    EXPECT_THAT(text, HasSubstr("`" + in_table(row.message) + "`"));
  }
  for (const override_mistake& row : k_override_mistakes) EXPECT_THAT(text, HasSubstr(in_table(row.message)));
}

TEST(BadInput, ParameterListOfTheWrongLengthShowsTheExpectedLayout) {
  const std::string message =
      message_of(changed("par = [0, 1, \"body:ball\", 0.2]", "par = [0, 1, \"body:ball\"]"), {});
  EXPECT_THAT(
      message,
      HasSubstr("\n  par[1]  n: number of balls\n  par[2]  body of ball 0\n  par[3]  diameter of ball 0 [length]"));
}

TEST(BadInput, FileThatIsNotThereIsSaidSo) {
  try {
    qvslv::read_model_file("no_such_model.toml");
    FAIL() << "read";
  } catch (const qvslv::ModelError& error) {
    EXPECT_STREQ(error.what(), "no_such_model.toml: there is no such model file");
  }
}

}  // namespace
