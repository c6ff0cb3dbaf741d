#include "solver/model/plain_reason.h"

#include <filesystem>
#include <new>
#include <stdexcept>
#include <system_error>

namespace qvslv {

std::string plain_reason(const std::exception& error) {
  if (dynamic_cast<const std::bad_alloc*>(&error) != nullptr ||
      dynamic_cast<const std::length_error*>(&error) != nullptr)
    return "there is not enough memory; make roads, tables, meshes or grids coarser, or write fewer outputs";
  if (const auto* file = dynamic_cast<const std::filesystem::filesystem_error*>(&error))
    return file->path1().string() + ": " + file->code().message();
  if (const auto* system = dynamic_cast<const std::system_error*>(&error)) return system->code().message();
  return error.what();
}

}  // namespace qvslv
