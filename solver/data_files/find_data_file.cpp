#include "solver/data_files/find_data_file.h"

#include <filesystem>

namespace qvslv {

namespace fs = std::filesystem;

std::string find_data_file(const std::string& name, const std::string& model_path) {
  if (fs::is_regular_file(name)) return name;
  const fs::path beside = fs::path(model_path).parent_path() / name;
  return fs::is_regular_file(beside) ? beside.string() : "";
}

}  // namespace qvslv
