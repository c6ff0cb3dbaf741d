#pragma once

#include <array>
#include <string>
#include <vector>

#include "solver/data_files/wave_file.h"
#include "solver/model/model.h"
#include "solver/model/triangle_mesh.h"

namespace qvslv {

/// Place and axes of a body, in ground axes.
struct BodyPose {
  Vec3 position = {0, 0, 0};                        ///< of the centre of mass
  std::array<double, 4> quaternion = {1, 0, 0, 0};  ///< w, x, y, z; turns vectors of the body's axes into ground axes
};

/// One point of an element's contact grid, as it was at a frame.
struct ContactPointSample {
  int element = 0;               ///< index into Model::elements
  Vec3 position = {0, 0, 0};     ///< in ground axes
  Vec3 local_force = {0, 0, 0};  ///< shear 1, shear 2, normal
  double sinkage = 0;            ///< [length] negative in contact, 0 out of contact
  double dynamic_sinkage = 0;    ///< [length]
  bool in_contact() const { return sinkage != 0; }
};

/// What a picture of one moment needs. (Not a frame of reference.)
struct Frame {
  double time = 0;
  std::vector<BodyPose> body_poses;  ///< one per body of the model
  std::vector<ContactPointSample> points;
  std::vector<double> row;  ///< of results.csv at this time; may be empty, then it is looked for among the rows
};

/// The patch mesh of a hydro force element.
struct Hull {
  int element = 0;       ///< index into Model::elements
  int marker = 0;        ///< index into Model::markers: the marker in whose frame the mesh is
  int water_marker = 0;  ///< index into Model::markers: the marker in whose frame the water is
  int wave_string = 0;   ///< id of the string that names its WAVE file
  int water = k_none;    ///< index into Recording::waters; k_none: its WAVE file cannot be read
  TriangleMesh mesh;     ///< its triangles face the water
};

/// Water from a WAVE file: its surface over the x axis of a marker whose z axis points up.
struct Water {
  int marker = 0;  ///< index into Model::markers
  WaveFile wave;   ///< the table without its velocities
};

/// The rectangle around all nodes of a road, in the axes of its marker.
struct RoadPlan {
  int string = 0;  ///< id of the string that names its file
  int marker = 0;  ///< index into Model::markers
  Vec3 low = {0, 0, 0}, high = {0, 0, 0};
};

/// Bytes that a recording may hold, so that a run of any length needs no more memory.
struct RecordingLimits {
  size_t frames = size_t{256} << 20U;
  size_t rows = size_t{64} << 20U;
};

/// A run as it can be drawn and plotted afterwards: what the recorder wrote to files, in memory. Of a long run, an even
/// subset of frames and rows, which ends with the last one.
struct Recording {
  const Model* model = nullptr;
  TriangleMesh terrain;  ///< all roads in ground axes, in their places at the start
  std::vector<RoadPlan> roads;
  std::vector<Hull> hulls;
  std::vector<Water> waters;
  std::vector<Frame> frames;
  std::vector<std::string> columns;       ///< headers of results.csv
  std::vector<std::vector<double>> rows;  ///< one per output time
  size_t frame_count = 0, row_count = 0;  ///< in the files; 0 if the recording holds all of them
};

}  // namespace qvslv
