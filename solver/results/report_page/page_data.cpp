#include "solver/results/report_page/page_data.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <utility>
#include <vector>

#include "solver/model/units.h"
#include "solver/results/contact_axes.h"
#include "solver/results/report_page/afloat_data.h"
#include "solver/results/report_page/base64.h"
#include "solver/results/report_page/element_loads.h"
#include "solver/results/report_page/page_parts.h"
#include "solver/results/terrain_lookup.h"

namespace qvslv {

namespace {

using Json = nlohmann::ordered_json;

Json unit_symbols(const Units& units) {
  const UnitSymbols symbols(units);
  return {{"length", symbols.length}, {"mass", symbols.mass}, {"time", symbols.time}, {"force", symbols.force}};
}

Json shape_json(const Shape& shape) {
  switch (shape.kind) {
    case ShapeKind::none:
      break;
    case ShapeKind::box:
      return {{"kind", "box"}, {"size", shape.size}};
    case ShapeKind::cylinder:
      return {{"kind", "cylinder"}, {"radius", shape.radius}, {"length", shape.length}, {"axis", shape.axis}};
    case ShapeKind::sphere:
      return {{"kind", "sphere"}, {"radius", shape.radius}};
  }
  return nullptr;
}

/// The run's record but for the names of the frames' files, of which there are hundreds.
Json shown_record(const Model& model, const RunRecord& record) {
  RunRecord shown = record;
  auto& files = shown.summary.files;
  const auto is_frame = [](const std::string& name) { return name.rfind("frames/", 0) == 0; };
  files.erase(std::remove_if(files.begin(), files.end(), is_frame), files.end());
  return Json::parse(run_summary_text(model, shown));
}

int body_of(const Model& model, int marker) {
  return marker == k_none ? k_ground : model.markers[static_cast<size_t>(marker)].body;
}

void add_model(PageParts& page, const Model& model) {
  page.json["units"] = unit_symbols(model.units);
  page.json["bodies"] = Json::array();
  for (const Body& body : model.bodies) {
    page.json["bodies"].push_back({{"name", body.name}, {"mass", body.mass}, {"shape", shape_json(body.shape)}});
  }
  page.json["joints"] = Json::array();
  for (const Joint& joint : model.joints) page.json["joints"].push_back(joint.name);
  page.json["states"] = Json::array();
  for (const Variable& variable : model.variables) page.json["states"].push_back(variable.name);
  for (const Equation& equation : model.equations) {
    page.json["states"].push_back(equation.name);
    page.json["states"].push_back(equation.name + ".rate");
  }
  page.json["elements"] = Json::array();
  for (const Element& element : model.elements) {
    page.json["elements"].push_back(
        {{"name", element.name}, {"subroutine", element.subroutine}, {"body", body_of(model, element.marker)}});
  }
}

/// A point near everything that happens: the middle of the terrain, or else the place where the first body starts.
Vec3 choose_origin(const Recording& recording) {
  if (recording.terrain.points.empty()) {
    const bool posed = !recording.frames.empty() && !recording.frames[0].body_poses.empty();
    return posed ? recording.frames[0].body_poses[0].position : Vec3{0, 0, 0};
  }
  Vec3 middle{};
  for (size_t c = 0; c < 3; ++c) {
    const auto less = [c](const Vec3& a, const Vec3& b) { return a[c] < b[c]; };
    const auto [low, high] =
        std::minmax_element(recording.terrain.points.begin(), recording.terrain.points.end(), less);
    middle[c] = 0.5 * ((*low)[c] + (*high)[c]);
  }
  return middle;
}

void append(std::vector<float>& values, const Vec3& v, const Vec3& origin = {0, 0, 0}) {
  for (size_t c = 0; c < 3; ++c) values.push_back(static_cast<float>(v[c] - origin[c]));
}

void add_terrain(PageParts& page, const TriangleMesh& terrain, const Vec3& origin, size_t limit) {
  const bool too_large = terrain.triangles.size() > limit;
  const TriangleMesh thin = too_large ? thinned(terrain, limit) : TriangleMesh{};
  const TriangleMesh& mesh = too_large ? thin : terrain;
  page.json["terrain_triangles"] = terrain.triangles.size();
  if (mesh.triangles.size() != terrain.triangles.size()) {
    page.note(fmt::format("The terrain has {} triangles; it is drawn with {}.", terrain.triangles.size(),
                          mesh.triangles.size()));
  }
  std::vector<float> points;
  points.reserve(3 * mesh.points.size());
  for (const Vec3& p : mesh.points) append(points, p, origin);
  std::vector<std::uint32_t> triangles;
  triangles.reserve(3 * mesh.triangles.size());
  for (const auto& t : mesh.triangles) {
    for (const int corner : t) triangles.push_back(static_cast<std::uint32_t>(corner));
  }
  page.add("terrain_points", "f32", points);
  page.add("terrain_triangles", "u32", triangles);
}

/// The stride at which items that take `bytes` altogether fit into a budget.
size_t stride_for(size_t bytes, size_t budget) {
  return bytes <= budget ? 1 : (bytes - 1) / std::max<size_t>(budget, 1) + 1;
}

size_t touching(const Frame& frame) {
  return static_cast<size_t>(std::count_if(frame.points.begin(), frame.points.end(),
                                           [](const ContactPointSample& point) { return point.in_contact(); }));
}

/// Indices that are multiples of the stride, and the last index, because a user wants to see how a run ended.
std::vector<size_t> kept(size_t count, size_t stride) {
  std::vector<size_t> indices;
  for (size_t k = 0; k < count; k += stride) indices.push_back(k);
  if (count > 0 && indices.back() != count - 1) indices.push_back(count - 1);
  return indices;
}

struct FrameArrays {
  std::vector<double> times;
  std::vector<float> poses, points, loads;
  std::vector<std::uint32_t> counts;
  std::vector<std::uint16_t> elements;
};

void append_points(FrameArrays& out, const Frame& frame, const ContactAxes& axes, const Vec3& origin) {
  std::uint32_t count = 0;
  for (const ContactPointSample& point : frame.points) {
    if (!point.in_contact()) continue;
    append(out.points, point.position, origin);
    append(out.points, axes.force_in_ground(point, frame));
    out.points.push_back(static_cast<float>(-point.sinkage));
    out.points.push_back(static_cast<float>(point.local_force[2]));
    out.elements.push_back(static_cast<std::uint16_t>(point.element));
    ++count;
  }
  out.counts.push_back(count);
}

void append_poses(FrameArrays& out, const Frame& frame, const Vec3& origin) {
  for (const BodyPose& pose : frame.body_poses) {
    append(out.poses, pose.position, origin);
    for (const size_t k : {size_t{1}, size_t{2}, size_t{3}, size_t{0}})
      out.poses.push_back(static_cast<float>(pose.quaternion[k]));
  }
}

void add_frames(PageParts& page, const Model& model, const Recording& recording, const Vec3& origin, size_t budget) {
  const UpAxis up = find_up(model.gravity);
  const TriangleMesh no_terrain;  // a terrain that nothing touches need not be searched
  const bool touched = std::any_of(recording.frames.begin(), recording.frames.end(),
                                   [](const Frame& frame) { return touching(frame) > 0; });
  const ContactAxes axes(model, touched ? recording.terrain : no_terrain, up);
  const ElementLoads loads(model, recording.columns);
  AfloatData afloat(recording, origin);
  size_t bytes = recording.frames.size() * base64_length(afloat.frame_bytes());
  for (const Frame& frame : recording.frames) {
    bytes += base64_length(8 + 28 * frame.body_poses.size() + 34 * touching(frame) + 24 * loads.elements().size());
  }
  const size_t stride = stride_for(bytes, budget);
  const std::vector<size_t> indices = kept(recording.frames.size(), stride);
  const size_t all = std::max(recording.frame_count, recording.frames.size());
  if (thins_frames(model.simulation)) {
    page.note(
        fmt::format("Frames are {} {} apart, so that there are {} at most; a frame_step in the model asks for others.",
                    find_frame_step(model.simulation), UnitSymbols(model.units).time, k_default_frames));
  }
  if (indices.size() < all) {
    page.note(fmt::format("The run has {} frames; the replay shows {} of them, to keep this page small.", all,
                          indices.size()));
  }
  FrameArrays out;
  for (const size_t k : indices) {
    const Frame& frame = recording.frames[k];
    out.times.push_back(frame.time);
    append_poses(out, frame, origin);
    append_points(out, frame, axes, origin);
    afloat.append(frame);
    for (const ElementLoad& load : loads.find_loads(frame, recording.rows)) {
      append(out.loads, load.place, origin);
      append(out.loads, load.force);
    }
  }
  page.json["up"] = {{"axis", up.index}, {"sign", up.sign}};
  page.json["load_elements"] = loads.elements();
  page.add("frame_times", "f64", out.times);
  page.add("poses", "f32", out.poses);
  page.add("point_counts", "u32", out.counts);
  page.add("points", "f32", out.points);
  page.add("point_elements", "u16", out.elements);
  page.add("loads", "f32", out.loads);
  afloat.add_to(page);
}

void add_rows(PageParts& page, const ResultKinds& kinds, const Recording& recording, size_t budget) {
  const size_t columns = recording.columns.size();
  const size_t stride = stride_for(base64_length(4) * recording.rows.size() * columns, budget);
  const std::vector<size_t> indices = kept(recording.rows.size(), stride);
  const size_t all = std::max(recording.row_count, recording.rows.size());
  if (indices.size() < all) {
    page.note(fmt::format("The run has {} rows; the plots show {} of them.{}", all, indices.size(),
                          kinds.table ? " All are in results.csv." : ""));
  }
  std::vector<double> times;
  times.reserve(indices.size());
  for (const size_t k : indices) times.push_back(recording.rows[k][0]);
  std::vector<float> values;
  values.reserve(indices.size() * columns);
  for (size_t c = 1; c < columns; ++c) {
    for (const size_t k : indices) values.push_back(static_cast<float>(recording.rows[k][c]));
  }
  page.json["columns"] = recording.columns;
  page.add("row_times", "f64", times);
  page.add("columns", "f32", values);
}

}  // namespace

std::string script_safe(const std::string& json) {
  std::string safe;
  safe.reserve(json.size());
  for (const char c : json) {
    if (c == '<') {
      safe += "\\u003c";
    } else {
      safe += c;
    }
  }
  return safe;
}

void add_page_data(TextPieces& text, const Model& model, const Recording& recording, const RunRecord& record,
                   const ReportLimits& limits) {
  PageParts page;
  const Vec3 origin = choose_origin(recording);
  page.json["warnings"] = finding_texts(record.warnings);
  page.json["run"] = shown_record(model, record);
  page.json["origin"] = origin;
  page.json["notes"] = Json::array();
  add_model(page, model);
  add_terrain(page, recording.terrain, origin, limits.terrain_triangles);
  add_frames(page, model, recording, origin, limits.frame_bytes);
  add_rows(page, model.simulation.results, recording, limits.row_bytes);
  const std::string json = page.json.dump(-1, ' ', false, Json::error_handler_t::replace);
  text.add("<script type=\"application/json\" id=\"page-data\">" + script_safe(json) + "</script>\n");
  for (std::string& array : page.arrays) text.add(std::move(array));
}

}  // namespace qvslv
