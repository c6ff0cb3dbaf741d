#include "solver/model_file/layouts.h"
#include "solver/model_file/par.h"
#include "solver/model_file/reading.h"

/// Subroutines get the names of files from the host. A model's names are meant from the folder of the model; the host
/// tells absolute paths, so that what a subroutine opens does not depend on the current folder.
namespace qvslv {

namespace {

void note_input(const std::string& role, const StringEntity& entity, ModelFile& file) {
  for (const InputFile& input : file.inputs)
    if (input.path == entity.path) return;
  file.inputs.push_back({role, entity.text, entity.path});
}

void resolve_file_string(int id, const std::string& role, ModelFile& file) {
  std::vector<StringEntity>& strings = file.model.strings;
  if (id < 1 || static_cast<size_t>(id) > strings.size()) return;  // 0 stands for "no file"
  StringEntity& entity = strings[static_cast<size_t>(id) - 1];
  entity.path = data_file_path(entity.text, file);
  if (!entity.path.empty()) note_input(role, entity, file);
}

}  // namespace

void resolve_file_strings(Reading& reading) {
  for (const Element& element : reading.model().elements) {
    const SubroutineLayout* layout = find_layout(element.subroutine);
    if (layout == nullptr) continue;
    const std::vector<ParSlot> slots = slots_of(*layout, element.par);
    for (size_t i = 0; i < slots.size() && i < element.par.size(); ++i)
      if (slots[i].kind == ParKind::file)
        resolve_file_string(static_cast<int>(element.par[i]), table_for(slots[i].meaning), reading.file);
  }
}

}  // namespace qvslv
