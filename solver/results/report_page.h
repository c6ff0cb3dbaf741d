#pragma once

#include <cstddef>

#include "solver/model/model.h"
#include "solver/results/recording.h"
#include "solver/results/run_record.h"
#include "solver/results/text_pieces.h"

namespace qvslv {

/// Bounds of what a page carries. A page that leaves something out because of them says so.
struct ReportLimits {
  size_t frame_bytes = 30'000'000;     ///< bytes of the replay, as text in the page
  size_t row_bytes = 15'000'000;       ///< bytes of the plots, as text in the page
  size_t terrain_triangles = 500'000;  ///< a terrain of more triangles is thinned
};

/// The report of a run as one HTML page that needs neither other files nor the network: the run's record, a replay of
/// the frames, and plots of all columns. A run without rows or frames gives a page that says so. Texts of the model and
/// of subroutines are escaped, so they stand in the page as text whatever they hold.
TextPieces report_page(const Model& model, const Recording& recording, const RunRecord& record,
                       const ReportLimits& limits = {});

}  // namespace qvslv
