#pragma once

#include <string>
#include <vector>

#include "solver/make_current.h"
#include "solver/make_road.h"
#include "solver/make_wave.h"
#include "solver/model.h"

namespace qvslv {

/// A road file that the model file describes by its settings instead of bringing it along.
struct RoadRecipe {
  std::string file;  ///< as the model names it
  std::string path;  ///< where the file belongs: beside the model
  RoadSettings settings;
};

/// The same for a WAVE and a CURRENT file.
struct WaveRecipe {
  std::string file, path;
  WaveSettings settings;
};
struct CurrentRecipe {
  std::string file, path;
  CurrentSettings settings;
};

/// The whole mesh of a hull, for people.
struct HullSummary {
  std::string name;  ///< of the element
  size_t nodes = 0, patches = 0;
  double volume = 0, area = 0;
  Vec3 center = {0, 0, 0};  ///< of the volume, in the mesh's frame
};

/// What a model file comes to.
struct ModelFile {
  Model model;
  std::vector<RoadRecipe> roads;  ///< to be made before a run, see bring_files_up_to_date
  std::vector<WaveRecipe> waves;
  std::vector<CurrentRecipe> currents;
  std::vector<HullSummary> hulls;
  std::vector<std::string> warnings;  ///< what is suspicious but can be run
};

/// Reads and checks a model file (docs/model-file.md). `overrides` are `--set` texts, applied in order.
/// Throws ModelError at the first mistake. Reads road files only to warn about their traps; writes nothing.
ModelFile read_model_file(const std::string& path, const std::vector<std::string>& overrides = {});

/// The same for a text; `path` is named in messages and is where the files it names are looked for.
ModelFile read_model_text(const std::string& text, const std::string& path,
                          const std::vector<std::string>& overrides = {});

/// Makes the roads, waves and currents that are missing or were made with other settings. A file of that name that was
/// not made by `qvbrisk make` is left alone. Returns one line per file that was made or left alone; throws
/// std::runtime_error when a file cannot be written.
std::vector<std::string> bring_files_up_to_date(const ModelFile& file);

/// The file as the library will find it: the name as given, then in the model's folder. Empty: in neither.
std::string find_data_file(const std::string& name, const std::string& model_path);

}  // namespace qvslv
