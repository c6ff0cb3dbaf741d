#include <filesystem>

#include "solver/results/results_folder.h"
#include "solver/run.h"

namespace qvslv {

void remove_results(const std::string& folder) {
  if (std::filesystem::is_directory(folder)) ResultsFolder(folder, false);
}

}  // namespace qvslv
