#include "solver/checks/standing.h"

#include <fmt/format.h>

namespace qvslv {

namespace {

std::string extent(const Ground& ground) {
  return fmt::format("x = {:.4g} to {:.4g} and y = {:.4g} to {:.4g}", ground.low()[0], ground.high()[0],
                     ground.low()[1], ground.high()[1]);
}

}  // namespace

Standing find_standing(const Scene& scene, const Ground& ground, int marker, int road_marker) {
  Standing standing;
  standing.on_road = inwards(scene.course.marker(road_marker), scene.course.marker(marker).place);
  const Vec3& p = standing.on_road;
  standing.spot = ground.find(p[0], p[1]);
  if (standing.spot) standing.above = (p[2] - standing.spot->height) * standing.spot->normal[2];
  return standing;
}

void note_off_road(const Scene& scene, const Element& element, const std::string& what, int marker, int road_marker,
                   Findings& findings) {
  const Ground* ground = scene.ground_of(element);
  if (ground == nullptr) return;
  for (size_t moment = 0; moment < scene.course.moments(); ++moment) {
    const Vec3 p = inwards(scene.course.marker(road_marker, moment), scene.course.marker(marker, moment).place);
    if (ground->covers(p[0], p[1])) {
      if (moment > 0 || ground->find(p[0], p[1])) continue;
      warn(findings, "contact-beside-road", element, "road",
           fmt::format("{} starts at x = {:.4g}, y = {:.4g} of the road '{}', where it has a hole: no soil carries it; "
                       "move the body or mend the mesh",
                       what, p[0], p[1], scene.text(element.road_string)));
      return;
    }
    const std::string road =
        fmt::format("the road '{}', which covers {}", scene.text(element.road_string), extent(*ground));
    warn(findings, moment == 0 ? "contact-beside-road" : "contact-leaves-road", element, "road",
         moment == 0
             ? fmt::format(
                   "{} starts at x = {:.4g}, y = {:.4g} beside {}: no soil carries it; move the body or the road", what,
                   p[0], p[1], road)
             : fmt::format("its motion carries {} to x = {:.4g}, y = {:.4g} by the time {:.4g}, off {}; make the road "
                           "larger or the motion shorter",
                           what, p[0], p[1], scene.course.time(moment), road));
    return;
  }
}

void note_over_edge(const Scene& scene, const Element& element, const char* key, int marker, const Vec3& half_way,
                    int road_marker, Findings& findings) {
  const Ground* ground = scene.ground_of(element);
  if (ground == nullptr) return;
  const Pose body = scene.course.marker(marker), road = scene.course.marker(road_marker);
  const auto on_road = [&](double share) {
    return inwards(road, outwards(body, {share * half_way[0], share * half_way[1], share * half_way[2]}));
  };
  const auto covered = [&](const Vec3& p) { return ground->covers(p[0], p[1]); };
  if (!covered(on_road(0))) return;
  for (const double share : {-1.0, 1.0}) {
    const Vec3 end = on_road(share);
    if (covered(end)) continue;
    warn(findings, "contact-over-edge", element, key,
         fmt::format(
             "{:.4g} reaches to x = {:.4g}, y = {:.4g} at the start, over the edge of the road '{}', which covers "
             "{}: no soil carries what is beyond; make the road larger or move the body",
             2 * length(half_way), end[0], end[1], scene.text(element.road_string), extent(*ground)));
    return;
  }
}

}  // namespace qvslv
