#pragma once

#include <array>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "solver/model/vectors.h"

/// A model as the engine needs it: every name resolved, every value checked. It is plain data, made by the reader of
/// model files (solver/read_model.h) and used by the engine, the recorder and `qvbrisk expand`. All values are in the
/// model's units, angles in radians.
namespace qvslv {

/// A place in a model file, for messages. Line and column count from 1; 0 means "not known".
struct FilePosition {
  std::string file;
  int line = 0;
  int column = 0;
};

/// "file:line:column: text", without the parts of the place that are 0 or empty.
std::string placed(const FilePosition& at, const std::string& text);

/// A mistake in a model file. what() reads "file:line:column: text"; the text says what is wrong and what is meant.
class ModelError : public std::runtime_error {
public:
  ModelError(const FilePosition& at, const std::string& text);
  FilePosition at;
  std::string text;  ///< without the place
};

constexpr int k_ground = -1;  ///< body index of the ground
constexpr int k_none = -1;    ///< "no such index" for markers and joints

/// A scalar function as a text, checked by the reader. In motions it is a function of the time `t` alone; in variables,
/// equations and applied forces also of variables, equations and marker quantities. expression.h and state_expression.h
/// list what the text may hold.
struct Expression {
  std::string text = "0";
  FilePosition at;
  std::shared_ptr<const std::map<std::string, double>> parameters;  ///< constants of [parameters]; null: none
};

/// Inertia about the centre of mass, in the body's axes [mass length^2], as entries of the inertia matrix:
/// xx = integral of (y^2 + z^2) dm, xy = minus the integral of x y dm.
struct Inertia {
  double xx = 0, yy = 0, zz = 0, xy = 0, xz = 0, yz = 0;
};

enum class ShapeKind { none, box, cylinder, sphere };

/// How a body is drawn. The shape is centred on the body's centre of mass; a model file may derive mass and inertia
/// from it.
struct Shape {
  ShapeKind kind = ShapeKind::none;
  Vec3 size = {0, 0, 0};  ///< box: full edge lengths
  double radius = 0;      ///< cylinder, sphere
  double length = 0;      ///< cylinder
  int axis = 1;           ///< cylinder: 0 x, 1 y, 2 z
};

struct Body {
  int id = 0;  ///< also the id of a marker on its centre of mass with the body's axes
  std::string name;
  double mass = 0;
  Vec3 center = {0, 0, 0};  ///< centre of mass, in the body's frame
  Inertia inertia;
  Shape shape;
  // Where a free body (one that no joint carries) starts: position, axes and velocities of the body's frame in ground
  // axes. Position and velocity are those of the frame's origin, not of the centre of mass.
  Vec3 position = {0, 0, 0};
  Rotation orientation = k_identity;
  Vec3 velocity = {0, 0, 0};
  Vec3 angular_velocity = {0, 0, 0};
  FilePosition at;
};

struct Marker {
  int id = 0;
  std::string name;
  int body = k_ground;                ///< index into Model::bodies, or k_ground
  Vec3 position = {0, 0, 0};          ///< of its origin, in the body's frame
  Rotation orientation = k_identity;  ///< its axes seen in the body's
  FilePosition at;
};

/// Kinds of joints between two markers. Their coordinates [rad, length], in this order, are
///   weld         none
///   revolute     angle about z
///   slider       travel along x
///   cylindrical  angle about z, travel along z
///   universal    angle about x, angle about the new y
///   planar       angle about z, travel along the parent marker's x and y
///   ball         body-fixed angles about x, y, z
///   free         body-fixed angles about x, y, z, then travel along the parent marker's x, y, z
/// The speeds are the coordinates' rates; but those of ball and free joints are the child marker's angular velocity and
/// then (free) its velocity, in the parent marker's axes.
enum class JointType { free, planar, slider, revolute, cylindrical, universal, ball, weld };

enum class MotionLevel { position, velocity };

struct Motion {
  int coordinate = 0;
  MotionLevel level = MotionLevel::position;
  Expression value;
};

struct Joint {
  std::string name;
  JointType type = JointType::free;
  int parent_marker = k_none;    ///< index into Model::markers
  int child_marker = k_none;     ///< index into Model::markers; its body hangs on this joint
  std::vector<double> position;  ///< initial coordinates, one per degree of freedom
  std::vector<double> velocity;  ///< initial speeds, one per degree of freedom
  std::vector<Motion> motions;   ///< at most one per coordinate; not on ball and free joints
  FilePosition at;
};

struct AppliedForce {
  int id = 0;  ///< elements and applied forces are numbered together with bodies and markers
  std::string name;
  int marker = k_none;    ///< the force acts at this marker's origin
  int reaction = k_none;  ///< the opposite acts on this marker's body, at the same point; k_none: on nothing
  int axes = k_none;      ///< marker whose axes express the components; k_none: ground axes
  std::array<Expression, 3> force;
  std::array<Expression, 3> torque;
  FilePosition at;
};

struct StringEntity {
  int id = 0;
  std::string name;
  std::string text;  ///< as the model gives it
  std::string path =
      {};  ///< if a subroutine takes the text for a file: the absolute path of this file, which it is told
};

enum class ElementKind {
  force,      ///< result 0-2 is a force on `marker`, 3-5 a torque about it, in the axes of `axes`
  evaluated,  ///< called whenever forces are, in file order, but not applied; others read what the call leaves behind
  report      ///< result is only recorded
};

/// A value that subroutines ask for by its id ("VARVAL") and expressions by its name.
struct Variable {
  int id = 0;  ///< variables, equations and splines are each numbered from 1
  std::string name;
  Expression value;
  FilePosition at;
};

/// A differential equation y' = f (order 1) or y'' = f (order 2). "DIF20", "DIF21" and "DIF22" are y, y' and y''.
struct Equation {
  int id = 0;
  std::string name;
  int order = 1;
  Expression right_side;  ///< f, unless an element gives it
  int element = k_none;   ///< index into Model::elements, of kind `evaluated`: f is its result 0
  double value = 0;       ///< y at time 0
  double rate = 0;        ///< y' at time 0 (order 2)
  FilePosition at;
};

/// A curve through points, interpolated after Akima (1970): "AKISPL". x increases strictly.
struct Spline {
  int id = 0;
  std::string name;
  std::vector<double> x, y;
  FilePosition at;
};

/// Where the points of a contact grid stand in a result array, for pictures. A point is eight values: local force
/// (shear 1, shear 2, normal), position x, y, z, sinkage, dynamic sinkage.
struct ContactPoints {
  int first = 0;  ///< index of the first point's first value
  int count = 0;  ///< number of points; 0: the element has none
};

/// One column of an element in results.csv.
struct ResultColumn {
  int index = 0;  ///< into the result array
  std::string name;
  std::string unit;
};

struct Element {
  int id = 0;  ///< see AppliedForce
  std::string name;
  std::string subroutine;  ///< exported name
  ElementKind kind = ElementKind::force;
  std::vector<double> par;
  std::vector<std::string> par_names;  ///< of a plain element: "marker:wheel" if the entry was a name, else empty
  int marker = k_none;                 ///< forces: as in AppliedForce, and so the next two
  int reaction = k_none;
  int axes = k_none;
  int result_length = 0;
  std::vector<ResultColumn> columns;
  ContactPoints points;
  int road_string = 0;       ///< for pictures: id of the string that names the road file, 0: none
  int road_marker = k_none;  ///< for pictures: marker whose axes are the road's
  FilePosition at;
};

/// Only runge_kutta_merson controls its error: it may reject a step and go back in time.
enum class Integrator { runge_kutta_merson, runge_kutta_fixed, semi_explicit_euler };
const char* integrator_name(Integrator integrator);  ///< its name in model files

/// What a run writes beside its record, run.json.
struct ResultKinds {
  bool table = true;   ///< results.csv
  bool frames = true;  ///< frames.pvd and frames/
  bool page = true;    ///< report.html
};

struct Simulation {
  // Times in model units.
  double end_time = 0;
  double output_step = 0;  ///< time between two rows of results.csv
  double frame_step = 0;   ///< time between two frames of the picture; 0: chosen, see find_frame_step
  ResultKinds results;
  Integrator integrator = Integrator::runge_kutta_merson;
  double accuracy = 1e-5;      ///< runge_kutta_merson: its error tolerance, relative to what moves
  double smallest_motion = 0;  ///< runge_kutta_merson: shorter ways do not count; 0: a share of the bodies' sizes
  double step = 0;             ///< all others: their fixed step
  double max_step = 0;         ///< runge_kutta_merson: longest step; 0: none
};

constexpr int k_default_frames = 500;  ///< a model that asks for no frame_step gets no more frames than these

/// Time between two frames: the one that is asked for, or else that of so many outputs that there are no more than
/// k_default_frames frames. The end is a frame in any case.
double find_frame_step(const Simulation& simulation);
/// Whether frames are left out that nobody asked to leave out.
bool thins_frames(const Simulation& simulation);

/// The model's units: their names as in road files (upper case), and what one of each is in SI.
struct Units {
  std::string length = "METER", mass = "KILOGRAM", time = "SECOND", force = "NEWTON", angle = "RADIAN";
  double length_factor = 1, mass_factor = 1, time_factor = 1, force_factor = 1, angle_factor = 1;
};

struct Model {
  std::string path;  ///< path of the model file
  std::string title;
  Simulation simulation;
  Units units;
  Vec3 gravity = {0, 0, 0};
  int ground_id = 0;  ///< id of the ground marker at the origin (Model::markers[0])
  std::vector<Body> bodies;
  std::vector<Marker> markers;  ///< [0] is the ground's origin; one on each body's centre of mass follows
  std::vector<Joint> joints;    ///< tree order: a joint's parent body is ground or hangs on an earlier joint
  std::vector<AppliedForce> forces;
  std::vector<StringEntity> strings;
  std::vector<Variable> variables;  ///< a variable reads only those before it
  std::vector<Equation> equations;
  std::vector<Spline> splines;
  std::vector<Element> elements;  ///< in file order
};

/// Index into Model::markers of the marker with an id, k_none if no marker has it. A body's id is also that of the
/// marker on its centre of mass.
int find_marker(const Model& model, int id);
/// Index into Model::bodies of the body with an id, k_none if no body has it.
int find_body(const Model& model, int id);

}  // namespace qvslv
