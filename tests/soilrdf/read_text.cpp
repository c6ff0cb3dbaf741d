#include "tests/soilrdf/read_text.h"

#include "soilrdf/rdf_reader.h"
#include "tests/support/scripted_host.h"
#include "tests/support/temporary_folder.h"

namespace qvtest {

const char* const k_two_triangles =
    "NUMBER_OF_NODES = 4\n"
    "1 0 0 0\n"
    "2 10 0 0\n"
    "3 10 4 0\n"
    "4 0 4 0\n"
    "\n"
    "NUMBER_OF_ELEMENTS = 2\n"
    "1 2 3 0\n"
    "1 3 4 0\n"
    "\n";

std::string with_mesh(const std::string& lines) { return lines + k_two_triangles; }

reading read_name(const std::wstring& name, const std::wstring& model_path) {
  ScriptedHost host;
  host.path = model_path;
  host.log = true;
  reading r;
  char* slots[5] = {};
  try {
    r.returned = qvsoilrdf::read_rdf(host.handle(), name, r.road, r.count, slots);
  } catch (int number) {
    r.thrown = number;
  }
  if (slots[0] != nullptr) r.message = slots[0];
  for (char* text : slots) delete[] text;
  r.path_requests = static_cast<int>(host.requests.size());
  return r;
}

reading read_text(const std::string& content) {
  const TemporaryFolder folder;
  folder.write("road.rdf", content);
  return read_name(folder.wide_path("road.rdf"), L"");
}

}  // namespace qvtest
