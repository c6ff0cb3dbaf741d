#pragma once

#include <array>
#include <string>
#include <vector>

#include "solver/data_files/wave_file.h"
#include "solver/model/model.h"
#include "solver/model/triangle_mesh.h"

namespace qvslv {

/// Place of a body's centre of mass and its axes, in ground axes; quaternion w, x, y, z.
struct BodyPose {
  Vec3 position = {0, 0, 0};
  std::array<double, 4> quaternion = {1, 0, 0, 0};
};

/// One point of an element's contact grid, as it was at a frame.
struct ContactPointSample {
  int element = 0;               ///< index into Model::elements
  Vec3 position = {0, 0, 0};     ///< in ground axes
  Vec3 local_force = {0, 0, 0};  ///< shear 1, shear 2, normal
  double sinkage = 0;            ///< negative in contact, 0 out of it
  double dynamic_sinkage = 0;
  bool in_contact() const { return sinkage != 0; }
};

/// What a picture of one moment needs.
struct Frame {
  double time = 0;
  std::vector<BodyPose> body_poses;  ///< one per body of the model
  std::vector<ContactPointSample> points;
};

/// The patch mesh of a hydro force element.
struct Hull {
  int element = 0;       ///< index into Model::elements
  int marker = 0;        ///< frame of the mesh, index into Model::markers
  int water_marker = 0;  ///< likewise, frame of the water
  int wave_string = 0;   ///< id of the string that names its WAVE file
  int water = k_none;    ///< index into Recording::waters, k_none: its WAVE file cannot be read
  TriangleMesh mesh;     ///< looks outwards
};

/// Water as a WAVE file has it: its surface over x of a marker's frame whose z points up.
struct Water {
  int marker = 0;  ///< index into Model::markers
  WaveFile wave;   ///< without its velocities
};

/// A run as it can be drawn and plotted afterwards: what the recorder wrote to files, in memory.
struct Recording {
  const Model* model = nullptr;
  TriangleMesh terrain;  ///< all roads, in ground axes as at the start
  std::vector<Hull> hulls;
  std::vector<Water> waters;
  std::vector<Frame> frames;
  std::vector<std::string> columns;       ///< headers of results.csv
  std::vector<std::vector<double>> rows;  ///< one per output time
};

}  // namespace qvslv
