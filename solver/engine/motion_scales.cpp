#include "solver/engine/motion_scales.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace qvslv {

namespace {

/// The smallest motion that counts unless the model names one, as a share of the body's size. A body that has hardly
/// moved yet is otherwise held against nothing but rounding.
constexpr double k_smallest_share = 1e-4;

/// A state of an equation below this is held to nothing: it has been 0 so far, but for rounding.
constexpr double k_smallest_value = 1e-9;

/// Estimated errors below so many roundings of a value cannot be made smaller by a smaller step.
constexpr double k_roundings = 64 * std::numeric_limits<double>::epsilon();

double distance(const Vec3& a, const Vec3& b) { return std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]); }

/// 0 of a body without a shape.
double shape_radius(const Shape& shape) {
  switch (shape.kind) {
    case ShapeKind::box:
      return 0.5 * std::hypot(shape.size[0], shape.size[1], shape.size[2]);
    case ShapeKind::cylinder:
      return std::hypot(shape.radius, 0.5 * shape.length);
    case ShapeKind::sphere:
      return shape.radius;
    case ShapeKind::none:
      break;
  }
  return 0;
}

double norm(const SimTK::Vector& values, int first, int count) {
  double sum = 0;
  for (int k = first; k < first + count; ++k) sum += values[k] * values[k];
  return std::sqrt(sum);
}

/// The larger one; not finite if one of them is not.
double larger(double a, double b) { return a > b || std::isnan(a) ? a : b; }

bool has_forces(const Model& model) {
  return std::any_of(model.elements.begin(), model.elements.end(),
                     [](const Element& element) { return element.kind == ElementKind::force; });
}

}  // namespace

double find_body_size(const Model& model, int body) {
  const Body& from = model.bodies[static_cast<size_t>(body)];
  double size = shape_radius(from.shape);
  for (const Marker& marker : model.markers)
    if (marker.body == body) size = std::max(size, distance(marker.position, from.center));
  const double inertia = std::max({from.inertia.xx, from.inertia.yy, from.inertia.zz});
  return from.mass > 0 ? std::max(size, std::sqrt(inertia / from.mass)) : size;
}

MotionScales::MotionScales(const Multibody& multibody, const SimTK::State& start)
    : m_multibody(multibody),
      m_accuracy(multibody.model().simulation.accuracy),
      m_has_forces(has_forces(multibody.model())) {
  const Model& model = multibody.model();
  std::vector<double> sizes;
  for (size_t i = 0; i < model.bodies.size(); ++i) sizes.push_back(find_body_size(model, static_cast<int>(i)));
  const double largest = sizes.empty() ? 0 : *std::max_element(sizes.begin(), sizes.end());
  m_time = model.simulation.end_time;
  const double gravity = to_vec3(model.gravity).norm();
  if (gravity > 0 && largest > 0) m_time = std::min(m_time, std::sqrt(largest / gravity));

  std::vector<bool> on_joint(model.bodies.size(), false);
  for (const BuiltJoint& built : multibody.joints()) {
    const auto body = static_cast<size_t>(model.markers[static_cast<size_t>(built.joint->child_marker)].body);
    on_joint[body] = true;
    Mover mover = make_mover(model.bodies[body], sizes[body], largest);
    const std::vector<JointCoordinate>& coordinates = joint_coordinates(built.joint->type);
    for (size_t k = 0; k < built.mobilizers.size(); ++k)
      add_mobilizer(mover, start, built.mobilizers[k],
                    k < coordinates.size() && coordinates[k].kind == CoordinateKind::angle);
    m_movers.push_back(std::move(mover));
  }
  for (size_t i = 0; i < model.bodies.size(); ++i) {
    if (on_joint[i]) continue;
    m_movers.push_back(make_mover(model.bodies[i], sizes[i], largest));
    add_mobilizer(m_movers.back(), start, multibody.body(static_cast<int>(i)).getMobilizedBodyIndex(), true);
  }
  mark_prescribed(start);
  m_equations.assign(static_cast<size_t>(start.getNZ()), 0.0);
  extend(start);
}

/// A point without extent is measured by the largest body; if no body has any, ways are held against themselves.
MotionScales::Mover MotionScales::make_mover(const Body& body, double size, double largest) const {
  const double named = m_multibody.model().simulation.smallest_motion;
  const double extent = size > 0 ? size : largest;
  Mover mover;
  mover.shape = shape_radius(body.shape);
  mover.size = extent > 0 ? extent : std::numeric_limits<double>::infinity();
  mover.smallest = named > 0 ? named : k_smallest_share * extent;
  return mover;
}

/// A mobilizer has one coordinate, or three angles, or these and three travels behind them.
void MotionScales::add_mobilizer(Mover& mover, const SimTK::State& start, SimTK::MobilizedBodyIndex index,
                                 bool is_angle) const {
  const SimTK::MobilizedBody& body = m_multibody.matter().getMobilizedBody(index);
  Vectorial part;
  part.first_q = body.getFirstQIndex(start);
  part.q_count = body.getNumQ(start);
  part.first_u = body.getFirstUIndex(start);
  part.u_count = body.getNumU(start);
  if (part.u_count == 0) return;
  if (part.u_count < 6) return add_part(mover, start, part, is_angle);
  Vectorial travels = part;
  part.u_count = travels.u_count = travels.q_count = 3;
  part.q_count -= 3;
  travels.first_q += part.q_count;
  travels.first_u += 3;
  add_part(mover, start, part, true);
  add_part(mover, start, travels, false);
}

void MotionScales::add_part(Mover& mover, const SimTK::State& start, Vectorial part, bool is_angle) const {
  part.is_angle = is_angle;
  if (is_angle && std::isfinite(mover.size)) part.unit = mover.size;
  for (int k = 0; k < part.q_count; ++k) part.start[static_cast<size_t>(k)] = start.getQ()[part.first_q + k];
  mover.parts.push_back(part);
}

void MotionScales::mark_prescribed(const SimTK::State& start) {
  std::vector<bool> free_q(static_cast<size_t>(start.getNQ()), false),
      free_u(static_cast<size_t>(start.getNU()), false);
  for (const SimTK::QIndex q : m_multibody.matter().getFreeQIndex(start)) free_q[static_cast<size_t>(int(q))] = true;
  for (const SimTK::UIndex u : m_multibody.matter().getFreeUIndex(start)) free_u[static_cast<size_t>(int(u))] = true;
  for (Mover& mover : m_movers)
    for (Vectorial& part : mover.parts) {
      part.place_is_free = free_q[static_cast<size_t>(part.first_q)];
      part.speed_is_free = free_u[static_cast<size_t>(part.first_u)];
    }
}

/// Way from the start. Of a quaternion it is the angle, while that is small: beyond 1 rad it does not count.
double MotionScales::way_of(const Vectorial& part, const SimTK::State& state) {
  double away = 0, opposite = 0;
  for (int k = 0; k < part.q_count; ++k) {
    const double now = state.getQ()[part.first_q + k], then = part.start[static_cast<size_t>(k)];
    away += (now - then) * (now - then);
    opposite += (now + then) * (now + then);
  }
  return part.unit * (part.q_count == 4 ? 2 * std::sqrt(std::min(away, opposite)) : std::sqrt(away));
}

double MotionScales::way_of(const Mover& mover, const SimTK::State& state) {
  double way = 0;
  for (const Vectorial& part : mover.parts) way = larger(way, way_of(part, state));
  return way;
}

double MotionScales::speed_of(const Mover& mover, const SimTK::State& state) {
  double speed = 0;
  for (const Vectorial& part : mover.parts)
    speed = larger(speed, part.unit * norm(state.getU(), part.first_u, part.u_count));
  return speed;
}

double MotionScales::find_error_share(const SimTK::State& end, const SimTK::Vector& error) const {
  const int nq = end.getNQ(), nu = end.getNU();
  SimTK::Vector places(nu);
  if (nu > 0) m_multibody.matter().multiplyByNInv(end, false, SimTK::Vector(error(0, nq)), places);
  const SimTK::Vector speeds(error(nq, nu));
  double worst = 0;
  for (const Mover& mover : m_movers) worst = larger(worst, find_mover_share(mover, end, places, speeds));
  return larger(worst, find_equation_share(end, error));
}

double MotionScales::find_mover_share(const Mover& mover, const SimTK::State& end, const SimTK::Vector& places,
                                      const SimTK::Vector& speeds) const {
  const double way = std::max(std::min(larger(mover.way, way_of(mover, end)), mover.size), mover.smallest);
  const double speed = std::max(larger(mover.speed, speed_of(mover, end)), mover.smallest / m_time);
  double worst = 0;
  for (const Vectorial& part : mover.parts) {
    if (part.place_is_free) {
      const double wrong = part.unit * norm(places, part.first_u, part.u_count);
      const double rounding = k_roundings * part.unit * norm(end.getQ(), part.first_q, part.q_count);
      worst = larger(worst, wrong / (m_accuracy * way + rounding));
    }
    if (part.speed_is_free) {
      const double wrong = part.unit * norm(speeds, part.first_u, part.u_count);
      worst = larger(worst, wrong / ((m_accuracy + k_roundings) * speed));
    }
  }
  return std::isnan(worst) ? std::numeric_limits<double>::infinity() : worst;
}

double MotionScales::find_equation_share(const SimTK::State& end, const SimTK::Vector& error) const {
  const int first = end.getNQ() + end.getNU();
  double worst = 0;
  for (int k = 0; k < end.getNZ(); ++k) {
    const double greatest = larger(m_equations[static_cast<size_t>(k)], std::abs(end.getZ()[k]));
    const double scale = std::max(greatest, k_smallest_value);
    worst = larger(worst, std::abs(error[first + k]) / ((m_accuracy + k_roundings) * scale));
  }
  return worst;
}

void MotionScales::extend(const SimTK::State& end) {
  for (Mover& mover : m_movers) {
    mover.way = std::max(mover.way, way_of(mover, end));
    mover.speed = std::max(mover.speed, speed_of(mover, end));
  }
  for (size_t k = 0; k < m_equations.size(); ++k)
    m_equations[k] = std::max(m_equations[k], std::abs(end.getZ()[static_cast<int>(k)]));
}

double MotionScales::first_step() const {
  constexpr double k_share = 1e-3;
  return k_share * m_time;
}

double MotionScales::find_longest_step(const SimTK::State& state) const {
  double longest = std::numeric_limits<double>::infinity();
  if (!m_has_forces) return longest;
  for (const Mover& mover : m_movers) {
    if (!(mover.shape > 0)) continue;
    for (const Vectorial& part : mover.parts) {
      const double unit = part.is_angle ? mover.shape : 1;
      const double speed = unit * norm(state.getU(), part.first_u, part.u_count);
      if (speed > 0) longest = std::min(longest, 0.5 * mover.shape / speed);
    }
  }
  return longest;
}

}  // namespace qvslv
