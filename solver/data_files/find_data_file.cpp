#include "solver/data_files/find_data_file.h"

#include <filesystem>

namespace qvslv {

namespace fs = std::filesystem;

std::string path_beside(const std::string& model_path, const std::string& name) {
  std::error_code failure;  // a current folder that was removed has no path
  const fs::path folder = fs::current_path(failure) / fs::path(model_path).parent_path();
  return (folder / name).lexically_normal().string();
}

std::string find_data_file(const std::string& name, const std::string& model_path) {
  const std::string path = path_beside(model_path, name);
  std::error_code failure;
  return fs::is_regular_file(path, failure) ? path : "";
}

}  // namespace qvslv
