#pragma once

#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "solver/engine/engine.h"
#include "solver/results/columns.h"
#include "solver/results/contact_axes.h"
#include "solver/results/recording.h"
#include "solver/results/vtk_writer.h"

namespace qvslv {

/// Writes results.csv and the frames of a run while it goes, and keeps both in memory. After each call the files are
/// whole as far as they go. Throws std::runtime_error when a file cannot be written.
class Recorder {
public:
  /// Opens the files, which replace those of an earlier run, and places the roads. The engine is at its start.
  /// @param report  called with a text if a road, a hull or a water cannot be drawn; may be empty
  Recorder(const Engine& engine, const std::string& folder, const std::function<void(const std::string&)>& report);

  /// Adds a row, and a frame if one is due. The engine is at an output time.
  void record(const Engine& engine);

  const Recording& recording() const { return m_recording; }
  /// Files written so far, relative to the folder.
  std::vector<std::string> files() const;

private:
  bool frame_due(double time);

  double m_frame_step;
  double m_next_frame = 0;
  std::vector<Column> m_columns;
  Recording m_recording;
  std::ofstream m_csv;
  std::string m_csv_path;
  std::unique_ptr<VtkWriter> m_vtk;
  std::unique_ptr<ContactAxes> m_contact_axes;  ///< null if the model has no belt
};

}  // namespace qvslv
