#include <dlfcn.h>

#include <filesystem>

#include "solver/data_files/polygon_division.h"

namespace qvslv {

namespace {

/// The module lies in the folder of the library that this code is in.
std::string module_path() {
  Dl_info here = {};
  if (dladdr(reinterpret_cast<const void*>(&polygon_division), &here) == 0 || here.dli_fname == nullptr)
    return QVBRISK_POLYGON_MODULE;
  return std::filesystem::path(here.dli_fname).replace_filename(QVBRISK_POLYGON_MODULE).string();
}

decltype(&qvslv_divide_polygons) load() {
  void* module = dlopen(module_path().c_str(), RTLD_NOW | RTLD_LOCAL);  // stays to the end of the process
  void* function = module == nullptr ? nullptr : dlsym(module, "qvslv_divide_polygons");
  if (function != nullptr) return reinterpret_cast<decltype(&qvslv_divide_polygons)>(function);
  const char* reason = dlerror();
  throw MeshError(
      "it holds polygons of four or more corners, and the part of qvbrisk that splits them into triangles cannot be "
      "loaded (" +
      std::string(reason == nullptr ? "no reason given" : reason) +
      "); split them in the program that made it, or install that part anew");
}

}  // namespace

decltype(&qvslv_divide_polygons) polygon_division() {
  static const auto function = load();
  return function;
}

}  // namespace qvslv
