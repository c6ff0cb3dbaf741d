#include "cli/default_paths.h"

#include <filesystem>
#include <initializer_list>
#include <system_error>

namespace qvcli {

namespace fs = std::filesystem;

std::string default_library() {
  constexpr const char* k_name = "libqvbrisk.so";
  std::error_code failure;
  const fs::path folder = fs::read_symlink("/proc/self/exe", failure).parent_path();
  if (!failure)
    for (const fs::path& place :
         {folder / k_name, folder / "../lib" / k_name, folder / ".." / QVBRISK_LIBRARY_FOLDER / k_name})
      if (fs::is_regular_file(place, failure)) return place.lexically_normal().string();
  return k_name;
}

std::string default_results_folder(const std::string& model_path) {
  const fs::path path = fs::absolute(model_path).lexically_normal();
  const std::string stem = path.stem().string(), folder = path.parent_path().filename().string();
  return (fs::path("results") / (stem == "model" && !folder.empty() ? folder : stem)).string();
}

}  // namespace qvcli
