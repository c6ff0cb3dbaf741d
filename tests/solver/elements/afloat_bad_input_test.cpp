#include <gmock/gmock.h>

#include "tests/solver/elements/afloat_model.h"
#include "tests/solver/model_file/mistake.h"

namespace {

using testing::HasSubstr;

// clang-format off
const mistake k_mistakes[] = {
    // Variables, equations and splines
    {"A variable without its value", "value = \"2*speed\"\n", "", "model.toml:62:1: variable 'double_speed': the key 'value' is missing"},
    {"A variable that reads a later one", "value = \"step(t, 0, 0, 1, 2)\"", "value = \"double_speed/2\"", "model.toml:60:9: in the expression \"double_speed/2\": the variable 'double_speed' cannot be read here: a variable reads only those that stand before it"},
    {"A misspelt variable in an expression", "value = \"2*speed\"", "value = \"2*sped\"", "model.toml:64:9: in the expression \"2*sped\": 'sped' is no variable, equation, parameter or constant; did you mean 'speed'?"},
    {"A misspelt marker in an expression", "value = \"vx(barge)\"", "value = \"vx(barg)\"", "model.toml:68:9: in the expression \"vx(barg)\": vx needs the name of a marker or body; 'barg' is none, did you mean 'barge'?"},
    {"A misspelt function of a marker", "value = \"vx(barge)\"", "value = \"vxx(barge)\"", "model.toml:68:9: in the expression \"vxx(barge)\": there is no function 'vxx'; did you mean 'vx'?"},
    {"A spline that is not there", "value = \"2*speed\"", "value = \"spline(limits, t)\"", "model.toml:64:9: in the expression \"spline(limits, t)\": spline needs the name of a spline; 'limits' is none, did you mean 'limit'?"},
    {"Too many names for a quantity", "\"10 - 2*vx(barge)\"", "\"10 - 2*vx(barge, ground, ground, rail)\"", "model.toml:52:10: in the expression \"10 - 2*vx(barge, ground, ground, rail)\": vx takes one to three names: the marker, the one it is measured from, the one whose axes count"},
    {"Two variables of one name", "name = \"double_speed\"", "name = \"speed\"", "model.toml:63:8: the name 'speed' is taken: a variable has it (line 59)"},
    {"An equation with the name of a variable", "name = \"way\"", "name = \"speed\"", "model.toml:67:8: the name 'speed' is taken: a variable has it, and expressions could mean either"},
    {"A variable with the name of a parameter", "name = \"double_speed\"", "name = \"rho\"", "model.toml:63:8: variable 'rho': a parameter has this name; choose another"},
    {"A variable with the name of a function", "name = \"double_speed\"", "name = \"t\"", "model.toml:63:8: variable 't': expressions use this name already; choose another"},
    {"An order other than 1 and 2", "order = 2\n", "order = 3\n", "model.toml:72:9: equation 'swing', order: must be 1 (the value is the derivative) or 2 (the second derivative)"},
    {"Two starting values for order 1", "initial = 0.25", "initial = [0.25, 0]", "model.toml:78:11: equation 'error', initial: an equation of order 1 starts from one number"},
    {"One starting value for order 2", "initial = [1, 0]", "initial = 1", "model.toml:73:11: equation 'swing', initial: an equation of order 2 starts from two numbers, [value, derivative]"},
    {"An equation with value and subroutine", "initial = 0.25", "initial = 0.25\nvalue = \"t\"", "model.toml:79:9: equation 'error', value: give either a value or a subroutine, not both"},
    {"An equation with neither", "value = \"vx(barge)\"\n", "", "model.toml:66:1: equation 'way': the key 'value' is missing (or a 'subroutine' whose result 0 takes its place)"},
    {"A par without a subroutine", "value = \"vx(barge)\"", "value = \"vx(barge)\"\npar = [1]", "model.toml:69:7: equation 'way', par: belongs to a subroutine, and there is none"},
    {"An unknown subroutine in an equation", "\"qvsoil_error_velocity\"", "\"qvsoil_eror_velocity\"", "model.toml:79:14: equation 'error', subroutine: 'qvsoil_eror_velocity' is not known; did you mean 'qvsoil_error_velocity'? (one of your own library needs the key result_length)"},
    {"An unknown variable in par", "\"variable:speed\"", "\"variable:sped\"", "model.toml:80:48: equation 'error', par[3]: there is no variable 'sped'; did you mean 'speed'?"},
    {"A spline where a variable is expected in par", "\"variable:speed\"", "\"spline:limit\"", "model.toml:80:48: equation 'error', par[3] (variable: commanded speed): 'spline:limit' is no variable; write \"variable:name\""},
    {"An element with the name of an equation of a subroutine", "name = \"screw\"", "name = \"error\"", "model.toml:100:8: the name 'error' is taken: an element has it (line 77)"},
    {"A spline of one point", "x = [0, 1, 2]\ny = [500, 1000, 1500]", "x = [0]\ny = [500]", "model.toml:84:5: spline 'limit', x: a spline needs two points or more"},
    {"A spline whose x does not increase", "x = [0, 1, 2]", "x = [0, 1, 1]", "model.toml:84:12: spline 'limit', x: the values must increase, 1 follows 1"},
    {"A spline with too few y", "y = [500, 1000, 1500]", "y = [500, 1000]", "model.toml:85:5: spline 'limit', y: a list of 3 numbers is expected, not a list of 2 values"},
    // Hulls and thrusters
    {"A hull without its mesh", "mesh = { shape = \"box\", size = [4, 2, 1], divisions = [2, 1, 1] }\n", "", "model.toml:87:1: element 'hull': the key 'mesh' is missing"},
    {"A mesh file that is not there", "mesh = { shape = \"box\", size = [4, 2, 1], divisions = [2, 1, 1] }", "mesh = \"barge.stl\"", "model.toml:91:8: element 'hull', mesh: there is no file 'barge.stl' beside the model in <folder> (an STL, OBJ or PLY file is expected, or mesh = { shape = \"box\", size = [..] })"},
    {"An unknown shape of a mesh", "shape = \"box\", size", "shape = \"bocks\", size", "model.toml:91:18: element 'hull', mesh, shape: 'bocks' is not known; known: box, wedge_barge, cylinder, sphere"},
    {"A key of another shape", "shape = \"box\", size = [4, 2, 1]", "shape = \"box\", size = [4, 2, 1], radius = 1", "model.toml:91:52: element 'hull', mesh, radius: a box has no such key"},
    {"A size of 0", "size = [4, 2, 1]", "size = [4, 0, 1]", "model.toml:91:32: element 'hull', mesh, size: the edge lengths must be greater than 0"},
    {"Divisions that are no whole numbers", "divisions = [2, 1, 1]", "divisions = [2, 0.5, 1]", "model.toml:91:55: element 'hull', mesh, divisions: whole numbers from 1 to 1000 are expected, not 0.5"},
    {"Divisions that make millions of triangles", "divisions = [2, 1, 1]", "divisions = [1000, 1000, 1]", "model.toml:91:55: element 'hull', mesh, divisions: these make 4008000 triangles; at most 2e+06 are expected"},
    {"Rakes that leave no bottom", "shape = \"box\", size = [4, 2, 1]", "shape = \"wedge_barge\", size = [4, 2, 1], bow = 2, stern = 2", "model.toml:91:40: element 'hull', mesh, size: the rakes of bow and stern leave nothing of the bottom's length"},
    {"A shape that is turned inside out", "density = \"rho\"", "density = \"rho\"\nflip = true", "model.toml:96:8: element 'hull', flip: the mesh faces outwards as it is; take this out"},
    {"A scale for a shape", "density = \"rho\"", "density = \"rho\"\nmesh_scale = 0.001", "model.toml:96:14: element 'hull', mesh_scale: belongs to a mesh file; a shape has its size"},
    {"A hull on an unknown body", "type = \"hull\"\nbody = \"barge\"", "type = \"hull\"\nbody = \"barg\"", "model.toml:90:8: element 'hull', body: there is no body 'barg'; did you mean 'barge'?"},
    {"A force marker on another body", "density = \"rho\"", "density = \"rho\"\nmarker = \"buoy\"", "model.toml:96:10: element 'hull', marker: 'buoy' is not on the body 'barge', which the hull belongs to"},
    {"A WAVE file that is not there", "water = \"water\"\nwave = \"sea\"\ncurrent", "water = \"water\"\nwave = \"see.wave\"\ncurrent", "model.toml:93:8: element 'hull', wave: there is no file 'see.wave' beside the model in <folder> (a [[wave]] table could describe it)"},
    {"No CURRENT file", "current = \"stream\"\n", "", "model.toml:87:1: element 'hull': the key 'current' is missing"},
    {"No density", "density = \"rho\"\n", "", "model.toml:87:1: element 'hull': the key 'density' is missing"},
    {"No gravity for a hull", "gravity = [0, 0, -9.81]\n\n[simulation]\nend_time = 2.0\n\n[parameters]\nrho = 1000\n\n[[wave]]\nname = \"sea\"\nfile = \"sea.wave\"\nkind = \"regular\"\nheight = 0.2\nperiod = 3\nextent = 60", "gravity = [0, 0, 0]\n\n[simulation]\nend_time = 2.0\n\n[parameters]\nrho = 1000\n\n[[wave]]\nname = \"sea\"\nfile = \"sea.wave\"\nkind = \"regular\"\nheight = 0.2\nperiod = 3\nextent = 60\ngravity = 9.81", "model.toml:88:1: element 'hull': the model has no gravity to lift the hull; give it as 'gravity'"},
    {"An active interval that ends before it starts", "density = \"rho\"", "density = \"rho\"\nactive = [2, 1]", "model.toml:96:10: element 'hull', active: the end must be later than the start"},
    {"Skin drag without its exponent", "coefficient = 5, exponent = 2", "coefficient = 5", "model.toml:96:14: element 'hull', tangential: the key 'exponent' is missing"},
    {"More parts than triangles", "density = \"rho\"", "density = \"rho\"\nparts = 30", "model.toml:96:9: element 'hull', parts: there are only 20 triangles to share"},
    {"A report of an unknown force", "force = \"wind\", force_marker", "force = \"wnd\", force_marker", "model.toml:97:20: element 'hull', report, force: there is no force or element 'wnd'; did you mean 'wind'?"},
    {"A report of a hull in parts as one force", "report = { force = \"wind\",", "parts = 2\nreport = { force = \"hull\",", "model.toml:98:20: element 'hull', report, force: 'hull' has several parts; name one of them ('hull_1', ...)"},
    {"A check point that is not there", "\"rail\", \"propeller\"]", "\"rai\", \"propeller\"]", "model.toml:97:61: element 'hull', report, points: there is no marker or body 'rai'; did you mean 'rail'?"},
    {"A key of a hull for a thruster", "mode = \"limited\"", "mode = \"limited\"\nmesh = \"a.stl\"", "model.toml:104:8: element 'screw', mesh: a thruster has no such key; known: name, type, marker, mode, variable, equation, speed_control, gains, limit, wave, water"},
    {"An unknown mode", "mode = \"limited\"", "mode = \"limitd\"", "model.toml:103:8: element 'screw', mode: 'limitd' is not known; did you mean 'limited'?"},
    {"A feedback mode without an equation", "equation = \"error\"\n", "", "model.toml:99:1: element 'screw': the key 'equation' is missing (or 'speed_control', which makes one for a commanded speed)"},
    {"A feedback mode without gains", "gains = { p = 800, i = 100, d = 5 }\n", "", "model.toml:99:1: element 'screw': the key 'gains' is missing"},
    {"Gains that the mode does not use", "mode = \"limited\"\nvariable = \"speed\"\nequation = \"error\"", "mode = \"variable\"\nvariable = \"speed\"", "model.toml:105:9: element 'screw', gains: is used by the feedback modes only"},
    {"A limit that the mode does not use", "mode = \"limited\"", "mode = \"feedback\"", "model.toml:107:9: element 'screw', limit: is used by the mode \"limited\" only"},
    {"An equation and speed control", "equation = \"error\"", "equation = \"error\"\nspeed_control = { command = \"speed\" }", "model.toml:106:17: element 'screw', speed_control: makes an equation itself; give either it or 'equation'"},
    {"A limit that is no spline", "limit = \"limit\"", "limit = \"limits\"", "model.toml:107:9: element 'screw', limit: there is no spline 'limits'; did you mean 'limit'?"},
    {"A water marker without a WAVE file", "limit = \"limit\"\nwave = \"sea\"\n", "limit = \"limit\"\n", "model.toml:108:9: element 'screw', water: is the frame of a WAVE file; give that as 'wave'"},
    {"A plain thrust beside a thruster", "[[string]]", "[[element]]\nname = \"jet\"\ntype = \"subroutine\"\nsubroutine = \"qvsoil_thrustforce\"\npar = [2, 2, \"marker:rail\", 0, \"marker:rail\", \"marker:rail\", 1, 0, \"variable:speed\", 0, 0, 0, 0, 0, 0]\n\n[[string]]", "model.toml:54:1: element 'jet': qvsoil_thrustforce beside a thruster; thrust element ids are counted over all thrusters, so write either all of them plain or all as thruster"},
};
// clang-format on

TEST(BadInputAfloat, ModelItselfHasNoMistake) { EXPECT_EQ(message_of(k_afloat_model, {}), "no mistake was found"); }

TEST(BadInputAfloat, EveryMistakeIsNamedAtItsPlace) {
  for (const mistake& row : k_mistakes) {
    SCOPED_TRACE(row.why);
    EXPECT_EQ(comparable(message_of(changed_afloat(row.from, row.to), {})), row.message);
  }
}

TEST(BadInputAfloat, PageShowsEveryMistakeAndItsMessage) {
  const std::string text = bad_input_page();
  for (const mistake& row : k_mistakes) {
    EXPECT_THAT(text, HasSubstr(std::string("| ") + row.why + " |"));
    EXPECT_THAT(text, HasSubstr("`" + in_table(row.message) + "`"));
  }
}

}  // namespace
