#pragma once

#include <string>

#include "solver/model/model.h"
#include "solver/results/recording.h"
#include "solver/results/report_page.h"
#include "solver/results/run_record.h"
#include "solver/results/text_pieces.h"

namespace qvslv {

/// Adds the data that the scripts of the page read: one script element `page-data` of JSON, and one `array-<name>` per
/// array of numbers, little-endian and as base64.
///
///   terrain_points    f32 3 per node               terrain_triangles  u32 3 per triangle, node indices
///   frame_times       f64 1 per frame              poses              f32 7 per frame and body: place, then x y z w
///   point_counts      u32 1 per frame: points that touch the ground then
///   points            f32 8 per point: place, force on the body in ground axes, depth (positive), normal force
///   point_elements    u16 1 per point
///   loads             f32 6 per frame and force element: where it acts, force in ground axes
///   hull_nodes        f32 3 per node, about the centre of mass of the hull's body, in its axes
///   hull_patches      u32 3 per patch, node indices of its hull
///   hull_wet          u8  1 bit per patch of all hulls, lowest bit first; each frame begins with a new byte
///   water_x           f32 1 per column of a water's sheet, along the water marker's x axis
///   water_levels      f32 1 per frame and column
///   row_times         f64 1 per row                columns            f32 one column after the other, without time
///
/// The arrays of hulls and waters are there only if the model has hulls. Places are relative to `origin`, so that
/// single precision is enough for a model far from the ground's origin.
void add_page_data(TextPieces& text, const Model& model, const Recording& recording, const RunRecord& record,
                   const ReportLimits& limits);

/// The same JSON without any '<', so that it may stand inside a script element.
std::string script_safe(const std::string& json);

}  // namespace qvslv
