#pragma once

#include <string>

#include "solver/results/recording.h"
#include "solver/results/run_record.h"

namespace qvslv {

/// Bounds of what a page carries; beyond them it says what was left out.
struct ReportLimits {
  size_t frame_bytes = 30'000'000;  ///< of the replay, as text in the page
  size_t row_bytes = 15'000'000;    ///< of the plots, as text in the page
  size_t terrain_triangles = 500'000;
};

/// The report of a run as one HTML page that needs nothing else, the network least of all: the run's record, a replay
/// of the frames, plots of all columns. A run without rows or frames gives a page that says so.
/// Texts of the model and of subroutines stand in the page as text, whatever they hold.
std::string report_page(const Model& model, const Recording& recording, const RunRecord& record,
                        const ReportLimits& limits = {});

/// Writes it as report.html into the run's folder. Throws std::runtime_error when that fails.
void write_report_page(const Model& model, const Recording& recording, const RunRecord& record);

}  // namespace qvslv
