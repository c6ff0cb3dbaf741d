// Text as a model file, read as `qvbrisk check` reads it: document, tables, expressions, elements. It must be read, or
// refused with a message; a model that was read must expand to text that is TOML again. Nothing is written and no
// subroutine is called. The files that a model may name lie in one folder, next to nothing else.
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <new>
#include <string>

#include "fuzz/memory_file.h"
#include "solver/model_file/expand.h"
#include "solver/model_file/toml_document.h"
#include "solver/read_model.h"

namespace {

namespace fs = std::filesystem;

/// A folder with a road and a mesh, in which the model is said to stand.
class ModelFolder {
public:
  ModelFolder() : m_path(fs::temp_directory_path() / ("fuzz_model_" + std::to_string(getpid()))) {
    fs::create_directories(m_path);
    std::ofstream(m_path / "a.rdf") << "MODEL_NAME\nNODES\n3\n1 0 0 0\n2 1 0 0\n3 0 1 0\nELEMENTS\n1\n1 1 2 3\n";
    std::ofstream(m_path / "a.obj") << "v 0 0 0\nv 1 0 0\nv 0 1 0\nv 0 0 1\nf 1 3 2\nf 1 2 4\nf 2 3 4\nf 1 4 3\n";
  }
  ~ModelFolder() {
    std::error_code failure;
    fs::remove_all(m_path, failure);
  }
  ModelFolder(const ModelFolder&) = delete;
  ModelFolder& operator=(const ModelFolder&) = delete;
  std::string model() const { return (m_path / "model.toml").string(); }

private:
  fs::path m_path;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const ModelFolder folder;
  const std::string text(reinterpret_cast<const char*>(data), size);
  std::string expanded;
  try {
    expanded = qvslv::expanded(qvslv::read_model_text(text, folder.model()).model);
  } catch (const qvslv::ModelError& error) {
    QV_PROMISE(!error.text.empty());
    return 0;
  } catch (const std::bad_alloc&) {  // refused by frugal_memory.cpp
    return 0;
  }
  qvslv::parse_toml(expanded, "expanded");  // an exception ends the fuzzer with a finding
  return 0;
}
