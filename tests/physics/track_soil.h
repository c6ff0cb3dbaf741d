#pragma once

#include <string>
#include <vector>

#include "tests/cli/process.h"

/// Models of one belt over a row of wheels on level ground, for tests that hold it against closed forms.
namespace qvtest {

/// Values of a soil that the closed forms need [SI, rad].
struct track_soil {
  const char* preset;
  double n, kc, kphi, cohesion, friction_angle, shear_displacement;  ///< the last is Wong's K

  /// Bekker's pressure at depth z under a footprint whose shorter side is b; 0 above the ground.
  double pressure(double z, double b) const;
  /// Shear strength under a pressure.
  double strength(double pressure) const;
};

/// Presets of `qvbrisk make road`, soft to firm, whose depths differ by an order of magnitude.
extern const track_soil k_track_soils[5];

/// Wong's shear curve, as a share of the strength, at a displacement of r times the shear displacement K.
/// @param sensitivity  strength at r = 1 over that after long slip
double shear_curve(double r, double sensitivity);

/// Belt of the models and the places of its wheels [m]. The hull's frame is midway between the axles, on their level.
struct belt {
  int wheels = 4;
  double spacing = 0.5, width = 0.3, thickness = 0.02;
  double radius = 0.3;  ///< of the first wheel
  double growth = 0.0;  ///< of the radius from wheel to wheel; the belt is then straight and leans
  int along = 6, across = 3;

  double sine() const { return growth / spacing; }
  double cosine() const;
  /// Length of every span; as all of them lie in one line, that of the belt is (wheels - 1) times it.
  double span() const { return spacing * cosine(); }
  double shorter_side() const { return span() < width ? span() : width; }
  double area() const { return (wheels - 1) * span() * width; }
  /// Depth under level ground at z = 0 of the belt at `way` behind the start of the first span, the axles at `height`.
  double depth(double height, double way) const;
};

/// A model of a hull of 1000 kg with this belt, called "belt"; gravity is 10 m/s^2 downwards.
/// @param simulation  lines of [simulation]
/// @param road        further lines of the [[road]]
/// @param joint       the lines that say how the hull's joint "guide" is and moves
/// @param drive       key of the track: how its belt moves
/// @param more        further tables
std::string belt_model(const belt& gear, const track_soil& soil, const std::string& simulation, const std::string& road,
                       const std::string& joint, const std::string& drive, const std::string& more = "");

/// Runs a model text in a folder of its own; fails the test if the run fails or gives any message.
ResultTable run_belt(const std::string& model);

/// Forces that the points of a span hand over, as integrals along it.
///
/// A span has N rows from its first to its last point, and each counts as an N-th of it: the two rows at its ends weigh
/// as much as any other. The sum is the trapezoid rule times (N - 1)/N, and the mean of both ends for the N-th that is
/// left. The tolerance is the error of the trapezoid rule itself, h^2/12 times the change of slope.
struct span_loads {
  double total = 0, end = 0;  ///< of all points, and the part that the wheel at the span's end gets [N]
  double tolerance = 0;       ///< of either [N]
};
span_loads normal_loads(const belt& gear, const track_soil& soil, double height, int span);

}  // namespace qvtest
