#pragma once

#include <future>
#include <string>

#include "solver/run.h"

namespace qvslv {

/// What of the solver stands on Simbody. It is a library of its own, libqvslv_engine.so beside libqvslv.so: to load
/// Simbody takes 4 ms, a third of a short run, and neither reading a model nor making a file needs it.
struct EngineDoors {
  RunSummary (*run_model)(const ModelFile& file, RunOptions options);            ///< solver/run.h
  void (*check_before_run)(const Model& model, const std::string& plugin_path);  ///< solver/check_before_run.h
};

/// The engine's library. Another thread loads it, so that a model can be read meanwhile.
class EngineLibrary {
public:
  EngineLibrary();
  /// Waits until it is loaded. Throws std::runtime_error with the loader's reason if it cannot be.
  const EngineDoors& doors();

private:
  std::shared_future<const EngineDoors*> m_doors;
};

}  // namespace qvslv

extern "C" {
extern const qvslv::EngineDoors qvslv_engine_doors;  ///< what the engine's library exports
}
