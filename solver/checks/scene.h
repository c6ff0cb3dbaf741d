#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "solver/checks/course.h"
#include "solver/checks/ground.h"
#include "solver/checks/hull_patches.h"
#include "solver/model/finding.h"
#include "solver/model_file/contents.h"

namespace qvslv {

/// A road under the model, and what its file shows.
struct Road {
  std::optional<Ground> ground;  ///< none if it cannot be read
  Findings found;                ///< none for a road that is made anew
};

/// The water of a WAVE file.
struct Sea {
  struct Table {
    double first_x = 0, last_x = 0;  ///< positions that it covers
    double end = 0;                  ///< its last time
    bool moves = false;              ///< whether the water is not level and at rest
  };
  std::optional<Table> table;  ///< none if it cannot be read
  Findings found;              ///< likewise
  bool made = false;           ///< whether a [[wave]] table describes it
};

/// The current of a CURRENT file.
struct Stream {
  bool flows = false;  ///< whether any speed differs from 0
  Findings found;
};

/// A model with all that its checks look at, each data file read once.
class Scene {
public:
  explicit Scene(const ModelFile& model_file);

  const ModelFile& file;
  const Model& model;
  const Course course;
  const std::vector<HullPatches> hulls;

  /// Surface of the road under an element; null if there is none, or none that can be read.
  const Ground* ground_of(const Element& element) const;

  // By the id of the string that names the file.
  std::map<int, Road> roads;
  std::map<int, Sea> seas;
  std::map<int, Stream> currents;

  /// The text of a string.
  const std::string& text(int string_id) const;
};

/// Notes a warning about an element: "element 'tyre', grid: ...". `what` is the key, or the key and more; it may be
/// empty.
void warn(Findings& findings, const char* id, const Element& element, const std::string& what, const std::string& text);

}  // namespace qvslv
