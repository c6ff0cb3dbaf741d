/* What every entry of `par` and `result` of the thirteen subroutines is, each said once: the library reads and writes
 * by these names, the stand-alone solver checks and prints parameter lists by them, the tables of the documentation are
 * made from them. Usable from C and C++.
 *
 * A host fills a list as
 *
 *   double par[QV_SOIL_LENGTH] = {0};
 *   par[QV_SOIL_BODY_MARKER] = 7;
 *
 * Every list is a macro that calls X once per entry, in order, and hands its prefix P through:
 *
 *   parameters  X(P, name, kind, unit, meaning)
 *   results     X(P, name, values, column, quantity, meaning)
 *
 *   kind      number (a value, index, count or switch), marker, marker_or_none (0: none), body, file (a string that names
 *             a file), variable, equation, spline, force (a force or element, or a marker for the sum of the forces
 *             there): ids; unused: not read
 *   unit      of a number, in the model's units; "" for none
 *   values    how many entries of `result` belong together: 1, or 3 for a vector (x, y, z)
 *   column    name in the stand-alone solver's results.csv; "" is not recorded
 *   quantity  force, moment, length, area, volume, energy, speed, degrees, none: gives the unit
 *
 * Positions are enumerators: P followed by the name is an entry's position in `par` or, its first value's, in `result`;
 * P followed by LENGTH is the number of entries. Ids, indices, counts and switches are doubles, truncated toward zero. */
#ifndef QVBRISK_LAYOUTS_H
#define QVBRISK_LAYOUTS_H

#define QV_LAYOUT_PAR_POSITION(P, name, kind, unit, meaning) P##name,
#define QV_LAYOUT_RESULT_POSITION(P, name, values, column, quantity, meaning) \
  P##name, P##name##_LAST = P##name + (values)-1,

/* clang-format off */

/* ---- qvsoil_interaction: soil force on a plate or wheel ---- */
#define QV_SOIL_PAR(X, P) \
  X(P, ELEMENT,          number, "",       "element index: the number of this element among those on its road, from 0") \
  X(P, BODY_MARKER,      marker, "",       "body marker: the contact points are fixed in its axes") \
  X(P, UNUSED_2,         unused, "",       "not read") \
  X(P, ROAD,             number, "",       "road index: the number of the road, from 0") \
  X(P, ROAD_STRING,      file,   "",       "string: RDF road file") \
  X(P, ROAD_MARKER,      marker, "",       "road base marker: the road's mesh is given in its axes") \
  X(P, UNUSED_6,         unused, "",       "not read") \
  X(P, ELEMENTS_ON_ROAD, number, "",       "number of soil elements on this road") \
  X(P, ROAD_COUNT,       number, "",       "number of roads in the model") \
  X(P, SHAPE,            number, "",       "shape: 1 plate, any other value wheel") \
  X(P, SIZE,             number, "length", "a: plate length or wheel radius") \
  X(P, WIDTH,            number, "length", "w: width") \
  X(P, POINTS_ALONG,     number, "",       "nx: contact points along the plate or around the wheel") \
  X(P, POINTS_ACROSS,    number, "",       "ny: contact points across the width") \
  X(P, GROUND_MARKER,    marker, "",       "ground reference marker: motion is measured from it, in its axes")
#define QV_SOIL_RESULTS(X, P) \
  X(P, FORCE,  3, "force",  force,  "force on the body, ground axes") \
  X(P, MOMENT, 3, "moment", moment, "moment about the body marker, ground axes") \
  X(P, AREA,   1, "area",   area,   "contact area: sum over the points in contact")
/* Point k = i ny + j, i along or around, j across; behind the totals. */
#define QV_SOIL_POINT_RESULTS(X, P) \
  X(P, LOCAL_FORCE,     3, "", force,  "local force of point k: along t1 (a wheel's rolling direction), t2 and n; 0 out of contact") \
  X(P, POSITION,        3, "", length, "position of point k from the ground marker, ground axes; always") \
  X(P, SINKAGE,         1, "", length, "sinkage of point k along the triangle's normal, negative in the soil; 0 out of contact") \
  X(P, DYNAMIC_SINKAGE, 1, "", length, "dynamic sinkage of point k; 0 out of contact")

enum { QV_SOIL_PAR(QV_LAYOUT_PAR_POSITION, QV_SOIL_) QV_SOIL_LENGTH };
enum { QV_SOIL_RESULTS(QV_LAYOUT_RESULT_POSITION, QV_SOIL_RESULT_) QV_SOIL_RESULT_LENGTH };
enum { QV_SOIL_POINT_RESULTS(QV_LAYOUT_RESULT_POSITION, QV_SOIL_POINT_) QV_SOIL_POINT_LENGTH };

/* ---- qvsoil_interaction_Sum: sums over all elements of a road ---- */
#define QV_SOIL_SUM_PAR(X, P) \
  X(P, ROAD, number, "", "road index, from 0")
#define QV_SOIL_SUM_RESULTS(X, P) \
  X(P, FORCE, 3, "force", force, "force summed over the road's elements, ground axes") \
  X(P, AREA,  1, "area",  area,  "contact area")

enum { QV_SOIL_SUM_PAR(QV_LAYOUT_PAR_POSITION, QV_SOIL_SUM_) QV_SOIL_SUM_LENGTH };
enum { QV_SOIL_SUM_RESULTS(QV_LAYOUT_RESULT_POSITION, QV_SOIL_SUM_RESULT_) QV_SOIL_SUM_RESULT_LENGTH };

/* ---- qvsoil_interaction_mtl: soil force on a track ---- */
#define QV_TRACK_PAR(X, P) \
  X(P, TRACK,         number,   "",       "track index: 0, as a road carries one track") \
  X(P, ROAD,          number,   "",       "road index: the number of the road, from 0") \
  X(P, ROAD_STRING,   file,     "",       "string: RDF road file") \
  X(P, MARKER_I,      marker,   "",       "marker I, on the vehicle") \
  X(P, MARKER_J,      marker,   "",       "marker J, on the road") \
  X(P, MARKER_R,      marker,   "",       "marker R, whose axes express positions and velocities") \
  X(P, ROAD_COUNT,    number,   "",       "number of roads in the model") \
  X(P, THICKNESS,     number,   "length", "belt thickness, added to every node's radius") \
  X(P, WIDTH,         number,   "length", "b: belt width") \
  X(P, POINTS_ALONG,  number,   "",       "nLong: contact points along each span, 2 or more") \
  X(P, POINTS_ACROSS, number,   "",       "nLat: contact points across the belt, 2 or more") \
  X(P, BELT_SPEED,    variable, "",       "variable: belt speed [length/time]") \
  X(P, NODE_COUNT,    number,   "",       "nNode: number of nodes, 2 or more") \
  X(P, UNUSED_13,     unused,   "",       "read, not used")
/* Node i, i = 0 .. nNode - 1, behind the entries above. */
#define QV_TRACK_NODE_PAR(X, P) \
  X(P, MARKER, marker, "",       "marker of node i") \
  X(P, RADIUS, number, "length", "radius of node i")
#define QV_TRACK_RESULTS(X, P) \
  X(P, SHEAR_1, 1, "shear_1", force, "sum of the points' local forces along t1, each along its own") \
  X(P, SHEAR_2, 1, "shear_2", force, "the same along t2") \
  X(P, NORMAL,  1, "normal",  force, "the same along n") \
  X(P, ZERO,    1, "",        none,  "always 0")
/* Points follow each other across the belt, then along it; behind the totals. */
#define QV_TRACK_POINT_RESULTS(X, P) \
  X(P, FORCE,           3, "", force,  "force of point p, axes of R; to the first point's x the area of all points is added") \
  X(P, POSITION,        3, "", length, "position of point p from R, its axes; always") \
  X(P, SINKAGE,         1, "", length, "sinkage of point p, negative in the soil; 0 out of contact") \
  X(P, DYNAMIC_SINKAGE, 1, "", length, "dynamic sinkage of point p; 0 out of contact")

enum { QV_TRACK_PAR(QV_LAYOUT_PAR_POSITION, QV_TRACK_) QV_TRACK_LENGTH };
enum { QV_TRACK_NODE_PAR(QV_LAYOUT_PAR_POSITION, QV_TRACK_NODE_) QV_TRACK_NODE_LENGTH };
enum { QV_TRACK_RESULTS(QV_LAYOUT_RESULT_POSITION, QV_TRACK_RESULT_) QV_TRACK_RESULT_LENGTH };
enum { QV_TRACK_POINT_RESULTS(QV_LAYOUT_RESULT_POSITION, QV_TRACK_POINT_) QV_TRACK_POINT_LENGTH };

/* ---- qvsoil_mtl_eom: right-hand side of the drive's equation of motion ---- */
#define QV_TRACK_EOM_PAR(X, P) \
  X(P, TRACK,                 number,         "", "track index (0)") \
  X(P, UNUSED_1,              unused,         "", "read, not used") \
  X(P, DRIVE,                 variable,       "", "variable of the drive, and equation of result 5: one id for both") \
  X(P, INERTIA,               number,         "", "inertia: divisor of the right-hand side") \
  X(P, RATIO,                 number,         "", "ratio: divisor of the drive (a radius or gear ratio)") \
  X(P, ROAD,                  number,         "", "road index, from 0") \
  X(P, FIRST_FORCE,           force,          "", "FM1: id of the first force, or the marker it acts at") \
  X(P, FIRST_FORCE_REACTION,  marker_or_none, "", "FM1: marker it reacts on, 0 for any") \
  X(P, SECOND_FORCE,          force,          "", "FM2: id of the second force, or the marker it acts at") \
  X(P, SECOND_FORCE_REACTION, marker_or_none, "", "FM2: marker it reacts on, 0 for any") \
  X(P, SOIL_FACTOR,           number,         "", "factor of the soil's shear S") \
  X(P, RESISTANCE_FACTOR,     number,         "", "factor of the resistance FM1 + FM2") \
  X(P, UNUSED_12,             unused,         "", "not read") \
  X(P, UNUSED_13,             unused,         "", "not read") \
  X(P, UNUSED_14,             unused,         "", "read, not used")
#define QV_TRACK_EOM_RESULTS(X, P) \
  X(P, STATE_RATE, 1, "state_rate", none, "(drive/ratio - factor S - resistance (FM1 + FM2))/inertia") \
  X(P, FORCE,      1, "force",      none, "FM1 + FM2") \
  X(P, VARIABLE,   1, "variable",   none, "drive: the variable's value (\"VARVAL\")") \
  X(P, SOIL_SHEAR, 1, "soil_shear", none, "factor S, S being the x component of the track's shear sum") \
  X(P, RESISTANCE, 1, "resistance", none, "resistance (FM1 + FM2)") \
  X(P, DERIVATIVE, 1, "derivative", none, "the equation's first derivative (\"DIF21\")")

enum { QV_TRACK_EOM_PAR(QV_LAYOUT_PAR_POSITION, QV_TRACK_EOM_) QV_TRACK_EOM_LENGTH };
enum { QV_TRACK_EOM_RESULTS(QV_LAYOUT_RESULT_POSITION, QV_TRACK_EOM_RESULT_) QV_TRACK_EOM_RESULT_LENGTH };

/* ---- qvsoil_mtl_velocity: the drive's value or derivative, scaled ---- */
#define QV_TRACK_VELOCITY_PAR(X, P) \
  X(P, MODE,   number,   "", "mode: 1 value (\"VARVAL\"), any other first derivative (\"DIF21\")") \
  X(P, FACTOR, number,   "", "factor") \
  X(P, SOURCE, equation, "", "equation or variable")
#define QV_TRACK_VELOCITY_RESULTS(X, P) \
  X(P, VALUE, 1, "value", none, "factor times the value or derivative")

enum { QV_TRACK_VELOCITY_PAR(QV_LAYOUT_PAR_POSITION, QV_TRACK_VELOCITY_) QV_TRACK_VELOCITY_LENGTH };
enum { QV_TRACK_VELOCITY_RESULTS(QV_LAYOUT_RESULT_POSITION, QV_TRACK_VELOCITY_RESULT_) QV_TRACK_VELOCITY_RESULT_LENGTH };

/* ---- qvsoil_shearforce_mtl: shear of the whole track, for the hull ---- */
#define QV_TRACK_SHEAR_PAR(X, P) \
  X(P, TRACK, number, "", "track index (0)") \
  X(P, ROAD,  number, "", "road index, from 0")
/* ---- qvsoil_normalforce_mtl: normal force of one node, for its wheel ---- */
#define QV_TRACK_NORMAL_PAR(X, P) \
  X(P, TRACK, number, "", "track index (0)") \
  X(P, NODE,  number, "", "node, from 0") \
  X(P, ROAD,  number, "", "road index, from 0")
/* Of both. */
#define QV_TRACK_SHARE_RESULTS(X, P) \
  X(P, FORCE,  3, "force",  force,  "shear of the track, or normal share of the node, axes of R") \
  X(P, TORQUE, 3, "torque", moment, "always 0")
/* ---- qvsoil_interaction_mtl_sum: force and area of a step, once ---- */
#define QV_TRACK_SUM_PAR(X, P) \
  X(P, ROAD,  number, "", "road index, from 0") \
  X(P, TRACK, number, "", "track index (0)")
#define QV_TRACK_SUM_RESULTS(X, P) \
  X(P, FORCE, 3, "force", force, "sum of the points' forces, axes of R") \
  X(P, AREA,  1, "area",  area,  "contact area")

enum { QV_TRACK_SHEAR_PAR(QV_LAYOUT_PAR_POSITION, QV_TRACK_SHEAR_) QV_TRACK_SHEAR_LENGTH };
enum { QV_TRACK_NORMAL_PAR(QV_LAYOUT_PAR_POSITION, QV_TRACK_NORMAL_) QV_TRACK_NORMAL_LENGTH };
enum { QV_TRACK_SHARE_RESULTS(QV_LAYOUT_RESULT_POSITION, QV_TRACK_SHARE_) QV_TRACK_SHARE_LENGTH };
enum { QV_TRACK_SUM_PAR(QV_LAYOUT_PAR_POSITION, QV_TRACK_SUM_) QV_TRACK_SUM_LENGTH };
enum { QV_TRACK_SUM_RESULTS(QV_LAYOUT_RESULT_POSITION, QV_TRACK_SUM_RESULT_) QV_TRACK_SUM_RESULT_LENGTH };

/* ---- qvhydro_force: buoyancy and drag on a hull ---- */
#define QV_HULL_PAR(X, P) \
  X(P, PART,                   number, "",                       "number of this mesh within its hydro force, from 0") \
  X(P, PART_COUNT,             number, "",                       "number of meshes of this hydro force") \
  X(P, FORCE_ID,               number, "",                       "hydro force id") \
  X(P, FORCE_COUNT,            number, "",                       "number of hydro forces in the model: ids from 0 to this number") \
  X(P, FORCE_MARKER,           marker, "",                       "force marker: force and torque act there") \
  X(P, WATER_MARKER,           marker, "",                       "water marker: frame of waves and currents, its z axis is up") \
  X(P, BODY_MARKER,            marker, "",                       "body marker: the nodes are given in its axes") \
  X(P, WAVE_STRING,            file,   "",                       "string: WAVE file") \
  X(P, CURRENT_STRING,         file,   "",                       "string: CURRENT file") \
  X(P, MASS,                   number, "mass",                   "mass of the mesh, for the report") \
  X(P, OPTION,                 number, "",                       "option, stored only") \
  X(P, RESERVE,                number, "",                       "reserve, stored only") \
  X(P, LOAD_SCALE,             number, "",                       "scale of every load; 0 switches the loads off") \
  X(P, ACTIVE_FROM,            number, "time",                   "start of the active interval") \
  X(P, ACTIVE_TO,              number, "time",                   "end of the active interval; an end at or before the start: always active") \
  X(P, DENSITY,                number, "mass/length^3",          "density of the water") \
  X(P, GRAVITY,                number, "length/time^2",          "acceleration of gravity") \
  X(P, TANGENTIAL_COEFFICIENT, number, "",                       "tangential drag coefficient") \
  X(P, TANGENTIAL_EXPONENT,    number, "",                       "exponent of the tangential speed") \
  X(P, DRAG_SCALE,             number, "",                       "scale of all drag") \
  X(P, NODE_COUNT,             number, "",                       "N: number of nodes")
/* Node i, i = 0 .. N - 1, behind the entries above; then the number of patches P; then patch p, p = 0 .. P - 1. */
#define QV_HULL_NODE_PAR(X, P) \
  X(P, X, number, "length", "x of node i, in the body marker's axes") \
  X(P, Y, number, "length", "y of node i") \
  X(P, Z, number, "length", "z of node i")
#define QV_HULL_PATCH_COUNT_PAR(X, P) \
  X(P, COUNT, number, "", "P: number of patches")
#define QV_HULL_PATCH_PAR(X, P) \
  X(P, FIRST,  number, "", "patch p: number of its first node, from 0; N names a spare node at the origin") \
  X(P, SECOND, number, "", "patch p: second node") \
  X(P, THIRD,  number, "", "patch p: third node")
#define QV_HULL_RESULTS(X, P) \
  X(P, FORCE,                  3, "force",                  force,  "total force: drag and buoyancy") \
  X(P, TORQUE,                 3, "torque",                 moment, "total torque about the force marker") \
  X(P, BUOYANCY,               3, "buoyancy",               force,  "buoyancy") \
  X(P, BUOYANCY_CENTRE,        3, "buoyancy_centre",        length, "centre of buoyancy; the force marker's position when nothing is under water") \
  X(P, DRAG_FORCE,             3, "drag_force",             force,  "drag") \
  X(P, DRAG_TORQUE,            3, "drag_torque",            moment, "its torque") \
  X(P, NORMAL_DRAG_FORCE,      3, "normal_drag_force",      force,  "normal drag") \
  X(P, NORMAL_DRAG_TORQUE,     3, "normal_drag_torque",     moment, "its torque") \
  X(P, TANGENTIAL_DRAG_FORCE,  3, "tangential_drag_force",  force,  "tangential drag") \
  X(P, TANGENTIAL_DRAG_TORQUE, 3, "tangential_drag_torque", moment, "its torque") \
  X(P, FORCE_MARKER,           3, "force_marker",           length, "position of the force marker") \
  X(P, SUBMERGED_VOLUME,       1, "submerged_volume",       volume, "volume under water")

enum { QV_HULL_PAR(QV_LAYOUT_PAR_POSITION, QV_HULL_) QV_HULL_LENGTH };
enum { QV_HULL_NODE_PAR(QV_LAYOUT_PAR_POSITION, QV_HULL_NODE_) QV_HULL_NODE_LENGTH };
enum { QV_HULL_PATCH_PAR(QV_LAYOUT_PAR_POSITION, QV_HULL_PATCH_) QV_HULL_PATCH_LENGTH };
enum { QV_HULL_RESULTS(QV_LAYOUT_RESULT_POSITION, QV_HULL_RESULT_) QV_HULL_RESULT_LENGTH };

/* ---- qvhydro_report: centres, attitude and levers of a floating body ---- */
#define QV_HULL_REPORT_PAR(X, P) \
  X(P, UNUSED_0,              unused, "", "not read") \
  X(P, FORCE_ID,              number, "", "hydro force id") \
  X(P, BODY_MARKER,           marker, "", "body marker") \
  X(P, WATER_MARKER,          marker, "", "water marker") \
  X(P, UNUSED_4,              unused, "", "not read") \
  X(P, REPORTED_FORCE,        force,  "", "force whose z component is reported (\"TFORCE\")") \
  X(P, REPORTED_FORCE_MARKER, marker, "", "marker of that force") \
  X(P, UNUSED_7,              unused, "", "not read") \
  X(P, UNUSED_8,              unused, "", "not read") \
  X(P, UNUSED_9,              unused, "", "not read") \
  X(P, UNUSED_10,             unused, "", "not read") \
  X(P, POINT_COUNT,           number, "", "number of check points")
/* Check point i, behind the entries above. */
#define QV_HULL_REPORT_POINT_PAR(X, P) \
  X(P, MARKER, marker, "", "marker of check point i")
#define QV_HULL_REPORT_RESULTS(X, P) \
  X(P, BUOYANCY,        1, "buoyancy",        force,   "buoyancy: the sum of the meshes' magnitudes") \
  X(P, BUOYANCY_CENTRE, 3, "buoyancy_centre", length,  "centre of buoyancy B") \
  X(P, ROLL,            1, "roll",            degrees, "roll, about the level frame's x axis, 0 to 360") \
  X(P, LEVER_Y,         1, "lever_y",         length,  "lever along the level frame's y axis: the righting lever of a heeled body, without its sign") \
  X(P, LEVER_Y_POINT,   3, "lever_y_point",   length,  "centre of mass, moved by that lever") \
  X(P, PITCH,           1, "pitch",           degrees, "pitch, 0 to 360") \
  X(P, LEVER_X,         1, "lever_x",         length,  "lever along the level frame's x axis, without its sign") \
  X(P, LEVER_X_POINT,   3, "lever_x_point",   length,  "centre of mass, moved by that lever") \
  X(P, FORCE_Z,         1, "force_z",         force,   "z component of the force named") \
  X(P, MASS_CENTRE,     3, "mass_centre",     length,  "centre of mass G: the force markers' positions weighted by the masses")
#define QV_HULL_REPORT_POINT_RESULTS(X, P) \
  X(P, HEIGHT,   1, "height", length, "height of check point i over the water marker") \
  X(P, POSITION, 3, "",       length, "its position")

enum { QV_HULL_REPORT_PAR(QV_LAYOUT_PAR_POSITION, QV_HULL_REPORT_) QV_HULL_REPORT_LENGTH };
enum { QV_HULL_REPORT_RESULTS(QV_LAYOUT_RESULT_POSITION, QV_HULL_REPORT_RESULT_) QV_HULL_REPORT_RESULT_LENGTH };
enum { QV_HULL_REPORT_POINT_RESULTS(QV_LAYOUT_RESULT_POSITION, QV_HULL_REPORT_POINT_) QV_HULL_REPORT_POINT_LENGTH };

/* ---- qvsoil_thrustforce: thrust ---- */
#define QV_THRUST_PAR(X, P) \
  X(P, ELEMENT,                number,   "", "thrust element id") \
  X(P, ELEMENT_COUNT,          number,   "", "number of thrust elements: ids from 0 to this number; read at the first call of the library") \
  X(P, THRUST_MARKER,          marker,   "", "thrust marker: the point that must be in the water") \
  X(P, UNUSED_3,               unused,   "", "not read") \
  X(P, SECOND_MARKER,          marker,   "", "second marker, stored only") \
  X(P, WATER_MARKER,           marker,   "", "water marker: frame of the WAVE file, z up") \
  X(P, MODE,                   number,   "", "mode: 1 variable, 2 feedback zero with the variable, 3 feedback limited by a spline, other feedback") \
  X(P, SPLINE,                 spline,   "", "spline (mode 3)") \
  X(P, VARIABLE,               variable, "", "variable, its value is v") \
  X(P, EQUATION,               equation, "", "differential equation (all modes but 1), its value and derivatives are d0, d1, d2") \
  X(P, FIRST_DERIVATIVE_GAIN,  number,   "", "gain of d1") \
  X(P, SECOND_DERIVATIVE_GAIN, number,   "", "gain of d2") \
  X(P, STATE_GAIN,             number,   "", "gain of d0") \
  X(P, WAVE_SWITCH,            number,   "", "wave switch: 1 needs the water of a WAVE file") \
  X(P, WAVE_STRING,            file,     "", "string: WAVE file (read when the wave switch is 1)")
#define QV_THRUST_RESULTS(X, P) \
  X(P, FORCE,  3, "force",  force,  "thrust T, 0, 0") \
  X(P, TORQUE, 3, "torque", moment, "always 0")

enum { QV_THRUST_PAR(QV_LAYOUT_PAR_POSITION, QV_THRUST_) QV_THRUST_LENGTH };
enum { QV_THRUST_RESULTS(QV_LAYOUT_RESULT_POSITION, QV_THRUST_RESULT_) QV_THRUST_RESULT_LENGTH };

/* ---- qvsoil_error_velocity: error of a speed control ---- */
#define QV_SPEED_ERROR_PAR(X, P) \
  X(P, UNUSED_0,         unused,   "", "not read") \
  X(P, VEHICLE_MARKER,   marker,   "", "vehicle marker") \
  X(P, REFERENCE_MARKER, marker,   "", "reference marker") \
  X(P, COMMAND,          variable, "", "variable: the velocity commanded [length/time]")
#define QV_SPEED_ERROR_RESULTS(X, P) \
  X(P, VALUE, 1, "velocity_error", speed, "velocity along the vehicle marker's x axis less the command; 0 while the command is exactly 0")

enum { QV_SPEED_ERROR_PAR(QV_LAYOUT_PAR_POSITION, QV_SPEED_ERROR_) QV_SPEED_ERROR_LENGTH };
enum { QV_SPEED_ERROR_RESULTS(QV_LAYOUT_RESULT_POSITION, QV_SPEED_ERROR_RESULT_) QV_SPEED_ERROR_RESULT_LENGTH };

/* ---- qvballplacing_report: diameter and energies of balls ---- */
#define QV_BALLS_PAR(X, P) \
  X(P, UNUSED_0,   unused, "", "not read") \
  X(P, BALL_COUNT, number, "", "n: number of balls")
/* The bodies of all balls, behind the entries above; then all diameters. */
#define QV_BALLS_BODY_PAR(X, P) \
  X(P, BODY, body, "", "ball i: its body")
#define QV_BALLS_DIAMETER_PAR(X, P) \
  X(P, DIAMETER, number, "length", "diameter d of ball i")
#define QV_BALL_RESULTS(X, P) \
  X(P, DIAMETER,             1, "diameter",             length, "diameter of ball i, as given") \
  X(P, TRANSLATIONAL_ENERGY, 1, "translational_energy", energy, "its translational kinetic energy") \
  X(P, ROTATIONAL_ENERGY,    1, "rotational_energy",    energy, "its rotational kinetic energy")

enum { QV_BALLS_PAR(QV_LAYOUT_PAR_POSITION, QV_BALLS_) QV_BALLS_LENGTH };
enum { QV_BALL_RESULTS(QV_LAYOUT_RESULT_POSITION, QV_BALL_RESULT_) QV_BALL_RESULT_LENGTH };

/* clang-format on */

#undef QV_LAYOUT_PAR_POSITION
#undef QV_LAYOUT_RESULT_POSITION

#endif
