#pragma once

#include <fstream>
#include <string>
#include <vector>

#include "solver/recording.h"

namespace qvslv {

/// Pictures of a run as VTK XML PolyData, for ParaView and its kin:
///   frames/terrain.vtp            the roads, in their places of the start
///   frames/bodies_000000.vtp ...  all bodies that have a shape; cells carry `body` (index in the model's order)
///   frames/points_000000.vtp ...  contact points with sinkage, dynamic_sinkage, local_force (shear 1, shear 2,
///   normal),
///                                 force, normal_force, in_contact, element; written when an element has points
///   frames.pvd                    the index over time: parts bodies, points, terrain
/// The index is complete after every frame. Throws std::runtime_error when a file cannot be written.
class VtkWriter {
public:
  /// @param folder  of the run; frames/ is made inside
  VtkWriter(const Model& model, std::string folder, const TriangleMesh& terrain);

  void write(const Frame& frame);

  /// Written so far, relative to the folder.
  const std::vector<std::string>& files() const { return m_files; }

private:
  void write_bodies(const Frame& frame, const std::string& name);
  void write_points(const Frame& frame, const std::string& name);
  void index_frame(double time, const std::vector<std::string>& parts);
  void write_file(const std::string& name, const std::string& text);

  const Model& m_model;
  std::string m_folder;
  std::vector<TriangleMesh> m_shapes;  ///< one per body, empty where it has none
  bool m_has_terrain;
  bool m_has_points;
  std::ofstream m_index;
  std::streampos m_index_end;  ///< before the closing tags
  long m_frames = 0;
  std::vector<std::string> m_files;
};

}  // namespace qvslv
