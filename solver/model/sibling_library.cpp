#include "solver/model/sibling_library.h"

#include <dlfcn.h>

#include <filesystem>
#include <stdexcept>

namespace qvslv {

namespace {

/// In the folder of the library that this code is in.
std::string sibling_path(const std::string& file_name) {
  Dl_info here = {};
  const bool found = dladdr(reinterpret_cast<const void*>(&load_sibling), &here) != 0 && here.dli_fname != nullptr;
  return found ? std::filesystem::path(here.dli_fname).replace_filename(file_name).string() : file_name;
}

}  // namespace

void* load_sibling(const std::string& file_name, const char* symbol) {
  void* library = dlopen(sibling_path(file_name).c_str(), RTLD_NOW | RTLD_LOCAL);
  void* address = library == nullptr ? nullptr : dlsym(library, symbol);
  if (address != nullptr) return address;
  const char* reason = dlerror();
  throw std::runtime_error(reason == nullptr ? file_name + ": no reason given" : reason);
}

}  // namespace qvslv
