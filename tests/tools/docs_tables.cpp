// Makes the tables of `par` and `result` in the documentation from the layouts of the public header.
//
//   docs_tables --check FILE...   fails, with file and line, if a table differs or a list has no table
//   docs_tables --write FILE...   makes the tables anew
//
// A table stands between the lines <!-- layout SUBROUTINE par --> (or result) and <!-- end of layout -->.

#include <cstdio>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "solver/model_file/layouts.h"

namespace {

using qvslv::Repeated;
using qvslv::ResultSlot;
using qvslv::SubroutineLayout;

/// The words that stand for units on pages that hold for any units.
qvslv::UnitSymbols unit_words() {
  qvslv::UnitSymbols words{qvslv::Units{}};
  words.length = "length";
  words.force = "force";
  words.moment = words.energy = "force length";
  words.area = "length^2";
  words.volume = "length^3";
  words.speed = "length/time";
  return words;
}

/// "14 + 2i", or "4" for an entry that stands once.
std::string position(int first, const std::string& step) {
  return std::to_string(first) + (step.empty() ? "" : " + " + step);
}

std::string par_table(const SubroutineLayout& layout) {
  std::string text = "| `par` | meaning |\n|---|---|\n";
  int at = 0;
  for (const qvslv::ParSlot& slot : layout.fixed_par) text += "| " + position(at++, "") + " | " + slot.meaning + " |\n";
  for (const Repeated<qvslv::ParSlot>& repeated : layout.repeated_par) {
    at = repeated.first;
    for (const qvslv::ParSlot& slot : repeated.slots)
      text += "| " + position(at++, repeated.step) + " | " + slot.meaning + " |\n";
  }
  return text;
}

void add_results(const std::vector<ResultSlot>& slots, int at, const std::string& step, std::string& text) {
  static const qvslv::UnitSymbols words = unit_words();
  for (const ResultSlot& slot : slots) {
    const std::string first = position(at, step), last = position(at + slot.values - 1, step);
    const char* between = step.empty() ? "-" : " to ";
    text += "| " + (slot.values == 1 ? first : first + between + last) + " | " + slot.meaning + " | " +
            unit_of(slot.quantity, words) + " |\n";
    at += slot.values;
  }
}

std::string result_table(const SubroutineLayout& layout) {
  std::string text = "| `result` | meaning | unit |\n|---|---|---|\n";
  add_results(layout.fixed_results, 0, "", text);
  add_results(layout.repeated_results.slots, layout.repeated_results.first, layout.repeated_results.step, text);
  return text;
}

/// The table that a marker line asks for.
std::string table_for(const std::string& subroutine, const std::string& list) {
  const SubroutineLayout* layout = qvslv::find_layout(subroutine);
  if (layout == nullptr) throw std::runtime_error("'" + subroutine + "' is no subroutine");
  if (list == "par") return par_table(*layout);
  if (list == "result") return result_table(*layout);
  throw std::runtime_error("'" + list + "' is neither par nor result");
}

const char* const k_begin = "<!-- layout ";
const char* const k_end = "<!-- end of layout -->";

/// The page with all its tables as they should be; `lists` gets those it has, `differs` the lines of tables that
/// change.
std::string renewed(const std::string& page, std::set<std::string>& lists, std::vector<int>& differs) {
  std::istringstream lines(page);
  std::string text, line;
  for (int number = 1; std::getline(lines, line); ++number) {
    text += line + "\n";
    if (line.rfind(k_begin, 0) != 0) continue;
    std::istringstream words(line.substr(std::string(k_begin).size()));
    std::string subroutine, list, old;
    words >> subroutine >> list;
    lists.insert(subroutine + " " + list);
    const std::string table = table_for(subroutine, list);
    const int began = number;
    while (std::getline(lines, line) && line != k_end) {
      old += line + "\n";
      ++number;
    }
    ++number;
    if (line != k_end) throw std::runtime_error("the table of line " + std::to_string(began) + " has no end");
    if (old != table) differs.push_back(began);
    text += table + k_end + "\n";
  }
  return text;
}

std::string read_page(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("cannot be read");
  return {std::istreambuf_iterator<char>(file), {}};
}

/// Every list of every subroutine must have its table on some page.
int count_missing(const std::set<std::string>& lists) {
  int missing = 0;
  for (const SubroutineLayout& layout : qvslv::subroutine_layouts())
    for (const char* list : {" par", " result"})
      if (lists.count(layout.name + list) == 0) {
        std::fprintf(stderr, "no page has a table of %s%s\n", layout.name.c_str(), list);
        ++missing;
      }
  return missing;
}

int work_on(const std::string& path, bool write, std::set<std::string>& lists) {
  try {
    const std::string page = read_page(path);
    std::vector<int> differs;
    const std::string text = renewed(page, lists, differs);
    if (write && text != page) std::ofstream(path, std::ios::binary) << text;
    if (write) return 0;
    for (const int line : differs)
      std::fprintf(stderr, "%s:%d: this table is not that of qvbrisk/layouts.h; scripts/docs-tables makes it anew\n",
                   path.c_str(), line);
    return static_cast<int>(differs.size());
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s: %s\n", path.c_str(), error.what());
    return 1;
  }
}

}  // namespace

int main(int count, char** arguments) {
  const std::string mode = count > 1 ? arguments[1] : "";
  if (count < 3 || (mode != "--check" && mode != "--write")) {
    std::fprintf(stderr, "usage: docs_tables --check|--write FILE...\n");
    return 2;
  }
  std::set<std::string> lists;
  int faults = 0;
  for (int i = 2; i < count; ++i) faults += work_on(arguments[i], mode == "--write", lists);
  return faults + count_missing(lists) == 0 ? 0 : 1;
}
