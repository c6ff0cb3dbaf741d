#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "solver/data_files/road_mesh.h"
#include "solver/engine/engine.h"
#include "solver/results/columns.h"
#include "solver/results/contact_axes.h"
#include "solver/results/even_subset.h"
#include "solver/results/output_file.h"
#include "solver/results/recording.h"
#include "solver/results/results_folder.h"
#include "solver/results/vtk_writer.h"

namespace qvslv {

/// Writes results.csv and the frames of a run while it goes, and keeps as much of both in memory for the page as the
/// limits allow: each only if the model asks for it (Simulation::results). After each call the files are whole as far
/// as they go. Throws std::runtime_error when a file cannot be written.
class Recorder {
public:
  /// Opens the files and places the roads. The engine is at its start.
  /// @param folder  must outlive this object
  /// @param report  called with a text if a road, a hull or a water cannot be drawn; may be empty
  /// @param roads   what was read of the roads already
  Recorder(const Engine& engine, ResultsFolder& folder, const std::function<void(const std::string&)>& report,
           const RecordingLimits& limits = {}, RoadMeshes roads = {});

  /// Adds a row, and a frame if one is due. The engine is at an output time.
  void record(const Engine& engine);

  /// Ends the writing.
  void close();

  const Recording& recording() const { return m_recording; }

private:
  void record_row(const Engine& engine);
  void record_frame(const Engine& engine);
  bool frame_due(double time);

  ResultKinds m_kinds;
  double m_frame_step, m_end_time;
  double m_next_frame = 0;
  std::vector<Column> m_columns;
  Recording m_recording;
  EvenSubset m_frames, m_rows;
  ResultsFolder& m_folder;
  std::vector<double> m_row;                    ///< at the latest output, if there are a table or a page
  std::unique_ptr<OutputFile> m_csv;            ///< null without a table
  std::unique_ptr<VtkWriter> m_vtk;             ///< null without frames
  std::unique_ptr<ContactAxes> m_contact_axes;  ///< null without pictures, or if the model has no belt
};

}  // namespace qvslv
