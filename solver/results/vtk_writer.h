#pragma once

#include <string>
#include <vector>

#include "solver/model/triangle_mesh.h"
#include "solver/results/output_file.h"
#include "solver/results/recording.h"
#include "solver/results/results_folder.h"
#include "solver/results/water_surface.h"

namespace qvslv {

/// Writes pictures of a run as VTK XML PolyData for ParaView, all in ground axes:
///   frames/terrain.vtp            the roads, in their places at the start
///   frames/bodies_000000.vtp ...  all bodies that have a shape; cells carry `body` (index in the model's order)
///   frames/points_000000.vtp ...  contact points; they carry `sinkage`, `dynamic_sinkage`, `local_force` (shear 1,
///                                 shear 2, normal), `force`, `normal_force`, `in_contact` and `element`; written if an
///                                 element has points
///   frames/hulls_000000.vtp ...   patch meshes of hydro force elements; nodes carry `depth` under the water, cells
///                                 `wet` and `element` (index in the model's order)
///   frames/water_000000.vtp ...   the surfaces of the waters around the hulls; nodes carry `elevation`
///   frames.pvd                    the index over time: parts bodies, points, hulls, water, terrain
/// The index is complete after every frame. Throws std::runtime_error if a file cannot be written.
class VtkWriter {
public:
  /// @param recording  holds model, terrain, hulls and waters already; must outlive this object
  /// @param folder     of the run, which must outlive this object too; frames/ is made inside
  VtkWriter(const Recording& recording, ResultsFolder& folder);

  void write(const Frame& frame);
  /// Ends the writing.
  void close() { m_index.close(); }

private:
  void write_bodies(const Frame& frame, const std::string& name);
  void write_points(const Frame& frame, const std::string& name);
  void write_hulls(const Frame& frame, const std::string& name);
  void write_water(const Frame& frame, const std::string& name);
  void index_frame(double time, const std::vector<std::string>& parts);
  void write_file(const std::string& name, const std::string& text);

  const Recording& m_recording;
  ResultsFolder& m_folder;
  std::vector<TriangleMesh> m_shapes;  ///< one per body; empty for a body without a shape
  bool m_has_terrain;
  bool m_has_points;
  std::vector<WaterReach> m_reaches;  ///< per water what its hulls have covered so far
  OutputFile m_index;
  long m_index_end = 0;  ///< position before the closing tags
  long m_frames = 0;
};

}  // namespace qvslv
