#pragma once

#include <iterator>
#include <stdexcept>
#include <vector>

#include "tests/solver/checks/sound_models.h"

/// A passage of a sound model, what it was turned into and what is then told first; and a change just inside the limit,
/// of which nothing is told. docs/bad-input.md shows the same rows.
struct oddity {
  const char* why;
  const char* from;
  const char* to;
  const char* inside;
  const char* message;
};

// clang-format off
inline const oddity k_on_road[] = {
    {"Few points around a wheel", "grid = [72, 5]", "grid = [36, 5]", "grid = [60, 5]", "model.toml:39:1: element 'tyre', grid: 36 points around the wheel make it a polygon that bumps along (with 36, results are 5 % off); take 60 or more"},
    {"A diameter for a wheel's radius", "radius = 0.5\nwidth", "radius = 0.9\nwidth", "radius = 0.7\nwidth", "model.toml:39:1: element 'tyre', radius: is 0.9, and the body 'wheel' is drawn with the radius 0.5; make the two agree"},
    {"A tyre wider than its wheel", "width = 0.2\n", "width = 0.31\n", "width = 0.29\n", "model.toml:39:1: element 'tyre', width: is 0.31, and the body 'wheel' is drawn with the length 0.2; make the two agree"},
    {"A plate longer than its body", "length = 0.4", "length = 0.7", "length = 0.59", "model.toml:49:1: element 'plate', length: is 0.7, and the body 'foot' is drawn with the largest edge 0.4; make the two agree"},
    {"A contact smaller than the triangles of an uneven road", "kind = \"flat\"", "kind = \"sine\"\namplitude = 0.1\nwavelength = 4", "kind = \"slope\"\ngrade = 0.01", "model.toml:51:1: element 'plate', length: is 0.4, less than the edges of the triangles of the uneven road 'field.rdf', about 0.5: the body meets single facets and their edges; make the road's spacing smaller"},
    {"An axle that stands up", "position = [0, 0, 0.48]", "position = [0, 0, 0.48]\nangles_deg = [35, 0, 0]", "position = [0, 0, 0.48]\nangles_deg = [29, 0, 0]", "model.toml:40:1: element 'tyre', marker: the y axis of 'wheel' is the wheel's axle, and it stands at 35 degrees to the road's plane (more than 30); turn the marker so that its y axis lies along the axle"},
    {"A wheel that starts buried", "[0, 0, 0.48]", "[0, 0, 0.2]", "[0, 0, 0.26]", "model.toml:39:1: element 'tyre', marker: the wheel starts 0.3 deep in the soil, more than half its radius (0.25): it will be thrown out; start the body 0.3 higher"},
    {"A plate that starts buried", "[2, 0, 0.025]", "[2, 0, -0.2]", "[2, 0, -0.12]", "model.toml:49:1: element 'plate', marker: the plate starts 0.225 deep in the soil, more than half its shorter edge (0.15): it will be thrown out; start the body 0.225 higher"},
    {"A wheel beside its road", "[0, 0, 0.48]", "[5, 0, 0.48]", "[3.9, 1.8, 0.48]", "model.toml:39:1: element 'tyre', road: the wheel's axle starts at x = 5, y = 0 beside the road 'field.rdf', which covers x = -4 to 4 and y = -2 to 2: no soil carries it; move the body or the road"},
    {"A wheel over the edge of its road", "[0, 0, 0.48]", "[0, 1.95, 0.48]", "[0, 1.89, 0.48]", "model.toml:39:1: element 'tyre', width: 0.2 reaches to x = 0, y = 2.05 at the start, over the edge of the road 'field.rdf', which covers x = -4 to 4 and y = -2 to 2: no soil carries what is beyond; make the road larger or move the body"},
    {"A plate over the end of its road", "[2, 0, 0.025]\naxis = \"x\"\nmotion = \"0.5*t\"", "[3.9, 0, 0.025]\naxis = \"z\"", "[3.79, 0, 0.025]\naxis = \"z\"", "model.toml:48:1: element 'plate', length: 0.4 reaches to x = 4.1, y = 0 at the start, over the edge of the road 'field.rdf', which covers x = -4 to 4 and y = -2 to 2: no soil carries what is beyond; make the road larger or move the body"},
    {"A motion that leaves the road", "motion = \"0.5*t\"", "motion = \"2*t\"", "motion = \"0.99*t\"", "model.toml:49:1: element 'plate', road: its motion carries the plate's middle to x = 4.04, y = 0 by the time 1.02, off the road 'field.rdf', which covers x = -4 to 4 and y = -2 to 2; make the road larger or the motion shorter"},
    {"A speed that leaves the road", "motion = \"0.5*t\"", "motion = { velocity = \"2*t\" }", "motion = { velocity = \"0.99*t\" }", "model.toml:49:1: element 'plate', road: its motion carries the plate's middle to x = 4.016, y = 0 by the time 1.42, off the road 'field.rdf', which covers x = -4 to 4 and y = -2 to 2; make the road larger or the motion shorter"},
    {"Gravity that pulls off the road", "gravity = [0, 0, -9.81]", "gravity = [0, 0, 9.81]", "gravity = [3, 0, -9]", "model.toml:39:1: element 'tyre', road: gravity = [0, 0, 9.81] pulls away from the road, whose up is the z axis of 'ground'; turn gravity or the marker"},
    {"Gravity along another axis than up", "gravity = [0, 0, -9.81]", "gravity = [0, -9.81, 0]", "gravity = [0, 0, 0]", "model.toml:39:1: element 'tyre', road: gravity = [0, -9.81, 0] pulls along the road, whose up is the z axis of 'ground'; turn gravity or the marker"},
    {"A start that a motion overrides", "motion = \"0.5*t\"", "motion = \"0.5*t\"\nstart = { travel = 0.1 }", "motion = \"0.1 + 0.5*t\"\nstart = { travel = 0.1 }", "model.toml:31:1: joint 'press', start: travel starts at 0.1, and its motion overrides that with 0; take one of the two out, or add the start to the motion"},
    {"A starting speed that a motion overrides", "motion = \"0.5*t\"", "motion = \"0.5*t\"\nstart_velocity = { travel = 1 }", "motion = \"0.5*t\"\nstart_velocity = { travel = 0.5 }", "model.toml:31:1: joint 'press', start_velocity: travel starts at 1, and its motion overrides that with 0.5; take one of the two out, or add the start to the motion"},
    {"A starting speed beside a given speed", "motion = \"0.5*t\"", "motion = { velocity = \"0.5\" }\nstart_velocity = { travel = 1 }", "motion = { velocity = \"0.5\" }\nstart = { travel = 0.2 }", "model.toml:31:1: joint 'press', start_velocity: travel starts at 1, and its motion overrides that with 0.5; take one of the two out, or add the start to the motion"},
    {"A revolute joint without an axis", "type = \"slider\"\nbody = \"foot\"\nposition = [2, 0, 0.025]\naxis = \"x\"", "type = \"revolute\"\nbody = \"foot\"\nposition = [2, 0, 0.025]", "type = \"revolute\"\nbody = \"foot\"\nposition = [2, 0, 0.025]\naxis = \"z\"", "model.toml:31:1: joint 'press': without 'axis' the body turns about the z axis of its parent; write axis = \"z\" if that is meant"},
    {"Rows beyond a million", "end_time = 2", "end_time = 2\noutput_step = 1e-6\nframe_step = 0.1", "end_time = 2\noutput_step = 2.1e-6\nframe_step = 0.1", "model.toml: simulation, output_step: 1e-06 makes 2e+06 rows of about 1.35e+03 MB in all; up to 10^6 and 2000 MB make sense, which 2e-06 or more keeps"},
    {"Pictures beyond 2 GB", "end_time = 2", "end_time = 2\noutput_step = 1e-5\nframe_step = 1e-5", "end_time = 2\noutput_step = 1e-5", "model.toml: simulation, frame_step: 1e-05 makes 2e+05 frames of about 4.09e+03 MB in all; up to 10^6 and 2000 MB make sense, which 2e-05 or more keeps"},
};

inline const oddity k_on_tracks[] = {
    {"A short last span", "position = [1, 1, 0]", "position = [0.3, 1, 0]", "position = [0.92, 1, 0]", "model.toml:71:1: element 'left', wheels: the belt from wheel 1 to 2 is 1 long and counts with the length of the last span, 0.2993: its area comes out 3.3 times too small; space the wheels so that all spans differ by less than 10 %"},
    {"A driven track off the reference's axis", "position = [-3, 0, 0.33]", "position = [-3, 0, 0.33]\nangles_deg = [0, 0, 20]", "position = [-3, 0, 0.33]\nangles_deg = [0, 0, 14]", "model.toml:72:1: element 'left', reference: the track heads 20 degrees off the x axis of 'lane', and its drive feels only the shear along that axis; name a marker on the ground as 'reference' whose x axis is the track's heading (within 15 degrees)"},
    {"A vehicle that starts buried", "[-3, 0, 0.33]", "[-3, 0, 0.1]", "[-3, 0, 0.18]", "model.toml:71:1: element 'left', wheels: the belt under wheel 1 starts 0.23 deep in the soil, more than half the wheel's radius (0.165): the vehicle will be thrown out; start it 0.23 higher"},
    {"A belt over the edge of its road", "size = [12, 6]", "size = [12, 2.4]", "size = [12, 2.51]", "model.toml:71:1: element 'left', width: 0.5 reaches to x = -4, y = 1.25 at the start, over the edge of the road 'field.rdf', which covers x = -6 to 6 and y = -1.2 to 1.2: no soil carries what is beyond; make the road larger or move the body"},
    {"A vehicle beside its road", "[-3, 0, 0.33]", "[-5.5, 0, 0.33]", "[-4.9, 0, 0.33]", "model.toml:71:1: element 'left', road: wheel 1 starts at x = -6.5, y = 1 beside the road 'field.rdf', which covers x = -6 to 6 and y = -3 to 3: no soil carries it; move the body or the road"},
};

inline const oddity k_afloat[] = {
    {"A density that no water has", "rho = 1000", "rho = 99", "rho = 101", "model.toml:87:1: element 'hull', density: 99 is 99 kg/m^3, and water has 1000 to 1030; in the model's units that is 1000 and more"},
    {"A density in other units", "[parameters]", "[units]\nmass = \"ton\"\nforce = \"kN\"\n\n[parameters]", "[units]\nmass = \"kg\"\n\n[parameters]", "model.toml:91:1: element 'hull', density: 1000 is 1e+06 kg/m^3, and water has 1000 to 1030; in the model's units that is 1 and more"},
    {"A hull heavier than its whole displacement", "mass = 500", "mass = 8001", "mass = 7999", "model.toml:87:1: element 'hull', body: 'barge' and what hangs on it have the mass 8001, and the whole mesh under water lifts 8000: it sinks; check mass, density and the mesh's scale"},
    {"A coarse mesh at the waterline", "divisions = [8, 4, 32]", "divisions = [8, 4, 16]", "divisions = [8, 4, 28]", "model.toml:87:1: element 'hull', mesh: the triangles at the waterline are 0.0625 high at a draught of 0.0625: the drag may come out between 0.0 and 1.5 of its value; take divisions that make them 0.0375 high or less (0.00625 for drag within 10 %)"},
    {"A hull that starts beside its water", "position = [30, 0, 0]", "position = [1.9, 0, 0]", "position = [2.1, 0, 0]", "model.toml:87:1: element 'hull': at the start the hull reaches from x = -0.10000000000000009 to 3.9 in the axes of 'water', and 'sea.wave' has water from 0 to 60: corners beyond get no drag, triangles beyond no buoyancy; move the water marker or the body"},
    {"A thruster beside its water", "position = [-1.8, 0, -0.4]", "position = [-31, 0, -0.4]", "position = [-29.9, 0, -0.4]", "model.toml:99:1: element 'screw', wave: at the time 0 'propeller' is at x = -1 in the axes of 'water', and 'sea.wave' has water from 0 to 60: beyond there is no thrust; move the water marker or the body"},
    {"A motion that leaves the water", "position = [30, 0, 0]", "\n[[joint]]\nname = \"tow\"\ntype = \"slider\"\nbody = \"barge\"\nposition = [30, 0, 0]\naxis = \"x\"\nmotion = \"15*t\"", "\n[[joint]]\nname = \"tow\"\ntype = \"slider\"\nbody = \"barge\"\nposition = [30, 0, 0]\naxis = \"x\"\nmotion = \"10*t\"", "model.toml:94:1: element 'hull': moved as prescribed, at the time 1.88 the hull reaches from x = 56.2 to 60.2 in the axes of 'water', and 'sea.wave' has water from 0 to 60: corners beyond get no drag, triangles beyond no buoyancy; move the water marker or the body"},
};

// clang-format on

struct odd_model {
  std::string text;
  std::vector<oddity> oddities;
};

inline std::vector<odd_model> odd_models() {
  return {{k_wheel_model, {std::begin(k_on_road), std::end(k_on_road)}},
          {k_track_model, {std::begin(k_on_tracks), std::end(k_on_tracks)}},
          {sound_afloat_model(), {std::begin(k_afloat), std::end(k_afloat)}}};
}

/// The model with one passage replaced; the passage must be there.
inline std::string odd(const odd_model& model, const oddity& row, const char* to) {
  std::string text = model.text;
  const std::string from = row.from;
  const size_t at = text.find(from);
  if (at == std::string::npos) throw std::invalid_argument("the model does not hold: " + from);
  return text.replace(at, from.size(), to);
}
