#include "solver/results/contact_axes.h"

#include "solver/results/marker_pose.h"

namespace qvslv {

ContactAxes::ContactAxes(const Model& model, const TriangleMesh& terrain, const UpAxis& up)
    : m_model(model), m_terrain(terrain, up) {}

std::array<Vec3, 3> ContactAxes::directions(const ContactPointSample& point, const Frame& frame) const {
  const Element& element = m_model.elements[static_cast<size_t>(point.element)];
  const Vec3 normal = m_terrain.find_normal(point.position);
  const Vec3 y = from_marker_axes(m_model, element.marker, frame, {0, 1, 0});
  const Vec3 shear_1 = unit(cross(y, normal));
  return {shear_1, unit(cross(normal, shear_1)), normal};
}

Vec3 ContactAxes::force_in_ground(const ContactPointSample& point, const Frame& frame) const {
  const std::array<Vec3, 3> along = directions(point, frame);
  Vec3 force{};
  for (size_t k = 0; k < 3; ++k)
    for (size_t c = 0; c < 3; ++c) force[c] += point.local_force[k] * along[k][c];
  return force;
}

Vec3 ContactAxes::force_along(const ContactPointSample& point, const Vec3& in_ground, const Frame& frame) const {
  const std::array<Vec3, 3> along = directions(point, frame);
  Vec3 force{};
  for (size_t k = 0; k < 3; ++k)
    for (size_t c = 0; c < 3; ++c) force[k] += in_ground[c] * along[k][c];
  return force;
}

}  // namespace qvslv
