#pragma once

#include <string>
#include <vector>

#include "solver/model/triangle_mesh.h"
#include "solver/results/output_file.h"
#include "solver/results/recording.h"
#include "solver/results/results_folder.h"
#include "solver/results/vtp_file.h"
#include "solver/results/water_surface.h"
#include "solver/results/writer_thread.h"

namespace qvslv {

/// Writes pictures of a run as VTK XML PolyData for ParaView, all in ground axes:
///   frames/terrain.vtp            the roads, in their places at the start; nodes carry `height`
///   frames/bodies_000000.vtp ...  all bodies that have a shape; cells carry `body` (index in the model's order);
///                                 written if a body has a shape
///   frames/points_000000.vtp ...  contact points; they carry `sinkage`, `dynamic_sinkage`, `local_force` (shear 1,
///                                 shear 2, normal), `force`, `normal_force`, `in_contact` and `element`; written if an
///                                 element has points
///   frames/hulls_000000.vtp ...   patch meshes of hydro force elements; nodes carry `depth` under the water, cells
///                                 `wet` and `element` (index in the model's order)
///   frames/water_000000.vtp ...   the surfaces of the waters around the hulls; nodes carry `elevation`
///   frames.pvd                    the index over time: parts bodies, points, hulls, water, terrain
/// Numbers are binary with single precision; places have double precision if single would not resolve a millionth of
/// the scene, as far from the ground's origin. A file per frame and part, since no reader of today's ParaView takes the
/// times of several frames in one file of this format: it counts them 0, 1, 2. What a part's frames have in common is
/// packed once, for the first of them.
///
/// Frames are worked out and written in a thread of their own, since the system takes as long to make their files as
/// the bodies to move. The index is complete after every frame that is written. Throws std::runtime_error if a file
/// cannot be written; of a frame's files a later call tells it.
class VtkWriter {
public:
  /// @param recording  holds model, terrain, hulls and waters, which stay as they are; must outlive this object
  /// @param folder     of the run, which must outlive this object too; frames/ is made inside
  VtkWriter(const Recording& recording, ResultsFolder& folder);

  void write(const Frame& frame);
  /// Ends the writing of all frames.
  void close();

private:
  /// Names of the parts that every frame has.
  std::vector<const char*> part_names() const;
  void write_frame(const Frame& frame);
  void write_terrain(const std::string& path);
  void write_bodies(const Frame& frame);
  void write_points(const Frame& frame);
  void write_hulls(const Frame& frame);
  void write_water(const Frame& frame);
  VtpTopology body_topology() const;
  VtpTopology point_topology(const Frame& frame) const;
  VtpTopology hull_topology() const;
  VtpArray places(const std::vector<double>& coordinates) const;
  void write_part(const char* name, const VtpTopology& topology, const std::vector<double>& coordinates,
                  const std::vector<VtpArray>& point_data, const std::vector<VtpArray>& cell_data = {});
  void index_frame(double time);

  const Recording& m_recording;
  ResultsFolder& m_folder;
  long m_posted = 0;                   ///< frames
  std::vector<TriangleMesh> m_shapes;  ///< one per body; empty for a body without a shape
  bool m_double_places = false;        ///< whether places need double precision
  bool m_has_terrain;
  bool m_has_bodies = false, m_has_points = false;
  // From here on for the thread alone, once it is at work.
  VtpTopology m_bodies, m_points, m_hulls, m_water;
  std::vector<size_t> m_water_columns;  ///< of each water, as its topology has them
  std::vector<WaterReach> m_reaches;    ///< per water what its hulls have covered so far
  OutputFile m_index;
  long m_index_end = 0;              ///< position before the closing tags
  long m_frames = 0;                 ///< that are written
  std::vector<std::string> m_parts;  ///< files of the present frame
  WriterThread m_thread;             ///< the last member: it ends before the others
};

}  // namespace qvslv
