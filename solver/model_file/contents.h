#pragma once

#include <string>
#include <vector>

#include "solver/data_files/input_file.h"
#include "solver/data_files/make_current.h"
#include "solver/data_files/make_road.h"
#include "solver/data_files/make_wave.h"
#include "solver/model/finding.h"
#include "solver/model/model.h"

namespace qvslv {

/// A road file that the model file describes by its settings instead of bringing it along.
struct RoadRecipe {
  std::string file;  ///< as the model names it
  std::string path;  ///< of the file that is made before a run: in the folder for made files
  RoadSettings settings;
};

/// A WAVE and a CURRENT file that the model file describes in the same way.
struct WaveRecipe {
  std::string file, path;
  WaveSettings settings;
};
struct CurrentRecipe {
  std::string file, path;
  CurrentSettings settings;
};

/// Figures of a hull's whole mesh, in the model's units, which `qvbrisk check` prints.
struct HullSummary {
  std::string name;  ///< the element's name
  size_t nodes = 0, patches = 0;
  double volume = 0, area = 0;
  Vec3 center = {0, 0, 0};  ///< centre of the volume, in the mesh's frame
};

/// Everything that reading a model file gives.
struct ModelFile {
  Model model;
  std::string text;               ///< of the model file
  std::string resolved;           ///< JSON text of the document that was read, after all overrides
  std::string made_folder;        ///< for the files that the model describes; empty: there is none
  std::vector<RoadRecipe> roads;  ///< to be made before a run, see make_missing_files
  std::vector<WaveRecipe> waves;
  std::vector<CurrentRecipe> currents;
  std::vector<HullSummary> hulls;
  std::vector<InputFile> inputs;
  Findings findings;  ///< what looks wrong in the model and its files
};

}  // namespace qvslv
