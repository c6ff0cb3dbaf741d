#include <cmath>
#include <cstdint>
#include <fstream>
#include <string>

#include "solver/data_files/make_road.h"
#include "solver/data_files/soil_presets.h"
#include "solver/model/number_text.h"

namespace qvslv {

namespace {

const char* kind_name(RoadKind kind) {
  switch (kind) {
    case RoadKind::flat:
      return "flat";
    case RoadKind::slope:
      return "slope";
    case RoadKind::sine:
      return "sine";
    case RoadKind::rolling:
      break;
  }
  return "rolling";
}

std::string two(double a, double b) { return number_text(a) + " " + number_text(b); }

}  // namespace

int squares_along(double size, double spacing) { return static_cast<int>(std::fmax(1.0, std::round(size / spacing))); }

std::int64_t triangle_count(const RoadSettings& settings) {
  return 2 * static_cast<std::int64_t>(squares_along(settings.size_x, settings.spacing)) *
         squares_along(settings.size_y, settings.spacing);
}

std::string mistake_in(const RoadSettings& s) {
  constexpr double k_most_triangles = 2e7;  // a file of about 1 GB
  if (!(s.size_x > 0 && s.size_y > 0)) return "the size must be two lengths greater than 0";
  if (!(s.spacing > 0)) return "the spacing must be greater than 0";
  if (!(s.spacing <= s.size_x && s.spacing <= s.size_y)) return "the spacing is larger than the road";
  if (!(2.0 * (s.size_x / s.spacing) * (s.size_y / s.spacing) <= k_most_triangles))
    return "this makes more than 20 million triangles; widen the spacing";
  const bool waves = s.kind == RoadKind::sine || s.kind == RoadKind::rolling;
  if (waves && !(s.wavelength > 0)) return std::string("a ") + kind_name(s.kind) + " road needs a wavelength";
  if (waves && s.amplitude == 0) return std::string("a ") + kind_name(s.kind) + " road needs an amplitude";
  if (waves && s.wavelength < 2.0 * s.spacing)
    return "the wavelength is below twice the spacing: the mesh cannot show it";
  if (s.kind == RoadKind::slope && s.grade == 0) return "a slope needs a grade (rise over run, 0.1 is 10 %)";
  if (!waves && s.amplitude != 0) return std::string("a ") + kind_name(s.kind) + " road has no amplitude";
  if (s.kind != RoadKind::slope && s.grade != 0) return std::string("a ") + kind_name(s.kind) + " road has no grade";
  return "";
}

std::string settings_line(const RoadSettings& s) {
  const RoadSoil& soil = s.soil;
  std::string text = std::string(k_made_mark) + "kind " + kind_name(s.kind) + ", size " + two(s.size_x, s.size_y) +
                     ", corner " + two(s.corner_x, s.corner_y) + ", spacing " + number_text(s.spacing) + ", height " +
                     number_text(s.height);
  if (s.kind == RoadKind::slope) text += ", grade " + number_text(s.grade);
  if (s.kind == RoadKind::sine || s.kind == RoadKind::rolling)
    text += ", amplitude " + number_text(s.amplitude) + ", wavelength " + number_text(s.wavelength);
  if (s.kind == RoadKind::rolling) text += ", seed " + std::to_string(s.seed);
  text += ", soil " + s.soil_name + " " + two(soil.sinkage_exponent, soil.cohesive_coeff) + " " +
          two(soil.frictional_coeff, soil.cohesion) + " " + two(soil.friction_angle, soil.shear_displacement) + " " +
          two(soil.sensitivity, soil.damp_ratio) + " " + number_text(soil.boundary_sinkage);
  return text + ", units " + s.units.length + " " + s.units.force + " " + s.units.mass + " " + s.units.time;
}

MadeFileState made_file_state(const std::string& path, const RoadSettings& settings) {
  std::ifstream stream(path);
  if (!stream) return MadeFileState::missing;
  constexpr int k_head_lines = 5;
  std::string line;
  for (int i = 0; i < k_head_lines && std::getline(stream, line); ++i) {
    if (line.rfind(k_made_mark, 0) != 0) continue;
    return line == settings_line(settings) ? MadeFileState::current : MadeFileState::outdated;
  }
  return MadeFileState::foreign;
}

}  // namespace qvslv
