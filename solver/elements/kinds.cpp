#include "solver/elements/kinds.h"

#include <algorithm>

#include "solver/elements/equations.h"
#include "solver/model/nearest_name.h"
#include "solver/model_file/par.h"

namespace qvslv {

// Each is defined in the file of its name; plain_kind is type = "subroutine".
ReadableKind plain_kind();
ReadableKind soil_contact_kind();
ReadableKind track_kind();
ReadableKind hull_kind();
ReadableKind thruster_kind();
ReadableKind balls_kind();

namespace {

const std::vector<ReadableKind>& readable_kinds() {
  static const std::vector<ReadableKind> kinds = {plain_kind(), soil_contact_kind(), track_kind(),
                                                  hull_kind(),  thruster_kind(),     balls_kind()};
  return kinds;
}

bool contains(const std::vector<std::string>& names, const std::string& name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

std::vector<std::string> names_of_kinds() {
  std::vector<std::string> names;
  for (const ReadableKind& kind : readable_kinds()) names.push_back(kind.name);
  return names;
}

/// Every key of every kind. Whether a key belongs to its table is checked when the kind is known.
std::vector<std::string> all_keys() {
  std::vector<std::string> all = {"name", "type"};
  for (const ReadableKind& kind : readable_kinds()) all.insert(all.end(), kind.keys.begin(), kind.keys.end());
  return all;
}

void check_keys(const TableReader& table, const ReadableKind& kind) {
  std::vector<std::string> known = {"name", "type"};
  known.insert(known.end(), kind.keys.begin(), kind.keys.end());
  for (const std::string& key : all_keys())
    if (!contains(known, key) && table.has(key))
      table.fail(key, "a " + kind.name + " has no such key; known: " + listed(known));
}

/// The readers of a file, one per kind, and which kind each element of the model came from.
struct Readers {
  std::vector<std::unique_ptr<KindReader>> of_kind;
  std::vector<size_t> kind_of_element;

  Readers() {
    for (const ReadableKind& kind : readable_kinds()) of_kind.push_back(kind.make_reader());
  }
};

void read_table(const TableReader& table, Reading& reading, Readers& readers) {
  Model& model = reading.model();
  const std::string type = table.choice("type", names_of_kinds());
  const auto& kinds = readable_kinds();
  const auto kind = static_cast<size_t>(
      std::find_if(kinds.begin(), kinds.end(), [&](const ReadableKind& k) { return k.name == type; }) - kinds.begin());
  check_keys(table, kinds[kind]);
  const std::string name = table.text("name");
  reading.elements.add(name, static_cast<int>(model.elements.size()), table.position("name"));
  std::vector<Element> made = readers.of_kind[kind]->read(table, reading);
  // If the table makes several elements of equal rank, its name alone means none of them.
  if (made.size() > 1 && made[0].name.empty()) reading.elements.add_internal(name, k_none);
  for (size_t i = 0; i < made.size(); ++i) {
    made[i].at = table.at();
    if (made[i].name.empty()) made[i].name = made.size() > 1 ? name + "_" + std::to_string(i + 1) : name;
    if (made[i].name != name)
      reading.elements.add(made[i].name, static_cast<int>(model.elements.size()), table.position("name"));
    model.elements.push_back(std::move(made[i]));
    readers.kind_of_element.push_back(kind);
  }
}

/// Throws if a subroutine that a readable kind numbers is also used plainly: both would claim the same numbers.
void check_not_mixed(const Model& model, const Readers& readers) {
  const auto& kinds = readable_kinds();
  for (size_t k = 0; k < kinds.size(); ++k) {
    const auto& made_by = readers.kind_of_element;
    if (std::find(made_by.begin(), made_by.end(), k) == made_by.end()) continue;
    for (const std::string& subroutine : kinds[k].numbered_subroutines)
      for (size_t i = 0; i < model.elements.size(); ++i)
        if (made_by[i] != k && model.elements[i].subroutine == subroutine)
          throw ModelError(model.elements[i].at, "element '" + model.elements[i].name + "': " + subroutine +
                                                     " beside a " + kinds[k].name + "; " + kinds[k].counted +
                                                     ", so write either all of them plain or all as " + kinds[k].name);
  }
}

}  // namespace

void read_elements(const TableReader& root, Reading& reading) {
  Readers readers;
  for (const TableReader& table : tables_of(root, "element", all_keys())) read_table(table, reading, readers);
  check_not_mixed(reading.model(), readers);
  for (const std::unique_ptr<KindReader>& reader : readers.of_kind) reader->finish(reading);
  add_equation_elements(reading);
  number_elements(reading);
}

}  // namespace qvslv
