#include "solver/engine_library.h"

#include <stdexcept>

#include "solver/model/sibling_library.h"

namespace qvslv {

namespace {

const EngineDoors* load() {
  try {
    return static_cast<const EngineDoors*>(load_sibling(QVBRISK_ENGINE_LIBRARY, "qvslv_engine_doors"));
  } catch (const std::runtime_error& reason) {
    throw std::runtime_error("cannot load the engine: " + std::string(reason.what()));
  }
}

}  // namespace

// Where no thread can be had, the library is loaded when it is asked for.
EngineLibrary::EngineLibrary() : m_doors(std::async(std::launch::async | std::launch::deferred, load)) {}

const EngineDoors& EngineLibrary::doors() { return *m_doors.get(); }

}  // namespace qvslv
