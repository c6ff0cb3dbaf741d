#include "solver/engine/plugin.h"

#include <dlfcn.h>
#include <link.h>

#include <filesystem>
#include <system_error>

namespace qvslv {

namespace {

std::string loader_text() {
  const char* text = dlerror();
  return text == nullptr ? "no reason given" : text;
}

/// A file that is there by its whole path: the loader would look for a bare name in the system's folders.
std::string found_file(const std::string& path) {
  std::error_code failure;
  if (!std::filesystem::is_regular_file(path, failure)) return path;
  return std::filesystem::absolute(path).lexically_normal().string();
}

const link_map* map_of(void* library) {
  link_map* map = nullptr;
  return dlinfo(library, RTLD_DI_LINKMAP, &map) == 0 ? map : nullptr;
}

/// What the dynamic linker knows of an address. Null pointers: nothing.
struct Origin {
  const link_map* file = nullptr;
  std::string path;
  bool is_function = false;
};

Origin origin_of(void* address) {
  Origin origin;
  Dl_info found = {};
  void* extra = nullptr;
  if (dladdr1(address, &found, &extra, RTLD_DL_LINKMAP) == 0) return origin;
  origin.file = static_cast<const link_map*>(extra);
  origin.path = *origin.file->l_name == '\0' ? "this program" : origin.file->l_name;
  extra = nullptr;
  if (dladdr1(address, &found, &extra, RTLD_DL_SYMENT) == 0 || extra == nullptr) return origin;
  origin.is_function = ELF64_ST_TYPE(static_cast<const ElfW(Sym)*>(extra)->st_info) == STT_FUNC;
  return origin;
}

}  // namespace

Plugin::Plugin(const std::string& path)
    : m_path(found_file(path)), m_library(dlopen(m_path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
  if (m_library == nullptr) throw PluginError("cannot load the library " + path + ": " + loader_text());
  const link_map* map = map_of(m_library);
  m_file = map != nullptr ? map->l_name : m_path;
}

Plugin::~Plugin() { dlclose(m_library); }

qv_user_subroutine Plugin::find(const std::string& name) const {
  dlerror();
  void* symbol = dlsym(m_library, name.c_str());
  if (symbol == nullptr) {
    throw PluginError("the library " + m_path + " exports no subroutine " + name + ": " + loader_text());
  }
  const Origin origin = origin_of(symbol);
  if (origin.file != map_of(m_library)) {
    throw PluginError("the library " + m_path + " exports no subroutine " + name + "; the " + name + " of " +
                      origin.path + " is none");
  }
  if (!origin.is_function) throw PluginError("in the library " + m_path + ", " + name + " is no function");
  return reinterpret_cast<qv_user_subroutine>(symbol);
}

}  // namespace qvslv
