#include "solver/engine/plugin.h"

#include <dlfcn.h>

namespace qvslv {

namespace {

std::string loader_text() {
  const char* text = dlerror();
  return text == nullptr ? "no reason given" : text;
}

}  // namespace

Plugin::Plugin(const std::string& path) : m_path(path), m_library(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
  if (m_library == nullptr) throw PluginError("cannot load the library " + path + ": " + loader_text());
}

Plugin::~Plugin() { dlclose(m_library); }

qv_user_subroutine Plugin::find(const std::string& name) const {
  dlerror();
  void* symbol = dlsym(m_library, name.c_str());
  if (symbol == nullptr) {
    throw PluginError("the library " + m_path + " exports no subroutine " + name + ": " + loader_text());
  }
  return reinterpret_cast<qv_user_subroutine>(symbol);
}

}  // namespace qvslv
