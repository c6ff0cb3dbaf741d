#pragma once

#include <Simbody.h>

#include <array>
#include <vector>

#include "solver/engine/multibody.h"

namespace qvslv {

/// What the error of a step is held against: how far and how fast things have moved in this run. So a model answers
/// the same in metres and in millimetres, in seconds and in milliseconds.
///
/// Each joint and each free body has one scale. A place is held against the way from the start so far, at most the size
/// of the body and at least the smallest motion that counts; a speed against the greatest so far. An angle counts as
/// the way of a point at the body's size. A state of an equation is held against its own greatest value.
class MotionScales {
public:
  /// @param start  realized to Velocity. The multibody system must outlive this object.
  MotionScales(const Multibody& multibody, const SimTK::State& start);

  /// Largest error of a step as a share of what the model's accuracy allows; not finite if the state is not.
  /// @param end    end of the step, realized to Velocity
  /// @param error  estimated errors of all q, u and z, in the order of the state
  double find_error_share(const SimTK::State& end, const SimTK::Vector& error) const;

  /// Takes the end of an accepted step, realized to Velocity, into the scales.
  void extend(const SimTK::State& end);

  double first_step() const;  ///< a step to begin with [model time]

  /// The longest step in which no body with a shape moves by more than half its radius or turns by more than half a
  /// radian, if the model has forces of subroutines: so what is thin is met, however smooth the way there. Infinite
  /// without them. [model time]
  double find_longest_step(const SimTK::State& state) const;

private:
  /// Coordinates of one mobilizer that make up a vector: all its angles, or all its travels.
  struct Vectorial {
    int first_q = 0, q_count = 0, first_u = 0, u_count = 0;
    double unit = 1;  ///< what a coordinate of 1 is as a way [length]: of an angle the body's size, of a travel 1
    bool is_angle = false;
    bool place_is_free = true, speed_is_free = true;  ///< false: prescribed, and so without an error
    std::array<double, 4> start = {};
  };
  /// A joint or a free body.
  struct Mover {
    std::vector<Vectorial> parts;
    double size = 0;            ///< of the body [length]
    double shape = 0;           ///< radius of what is drawn of it [length]; 0: nothing
    double smallest = 0;        ///< the smallest way that counts [length]
    double way = 0, speed = 0;  ///< greatest so far [length, length per model time]
  };

  void add_mobilizer(Mover& mover, const SimTK::State& start, SimTK::MobilizedBodyIndex index, bool is_angle) const;
  void add_part(Mover& mover, const SimTK::State& start, Vectorial part, bool is_angle) const;
  Mover make_mover(const Body& body, double size, double largest) const;
  void mark_prescribed(const SimTK::State& start);
  double find_mover_share(const Mover& mover, const SimTK::State& end, const SimTK::Vector& places,
                          const SimTK::Vector& speeds) const;
  double find_equation_share(const SimTK::State& end, const SimTK::Vector& error) const;

  const Multibody& m_multibody;
  double m_accuracy;
  double m_time = 0;  ///< [model time] in which gravity moves a body by its size, at most that of the run
  bool m_has_forces = false;
  std::vector<Mover> m_movers;
  std::vector<double> m_equations;  ///< per state z: its greatest value so far

  static double way_of(const Vectorial& part, const SimTK::State& state);
  static double way_of(const Mover& mover, const SimTK::State& state);
  static double speed_of(const Mover& mover, const SimTK::State& state);
};

/// Radius of a body about its centre of mass, from its shape, its markers and its inertia [length]; 0 if it has none.
double find_body_size(const Model& model, int body);

}  // namespace qvslv
