#pragma once

#include <stdexcept>

#include "soilrdf/rdf_reader.h"
#include "tests/soilinteraction/soil_scene.h"

/// The library's hidden functions, asked in the terms of the tests.
namespace qvtest {

struct said_fault {
  int count = 0;
  std::string message;
};

/// Runs `action(ierr, msg)` and collects what it says. Expects it to throw the integer 1 exactly when it says anything.
template <class Action>
said_fault fault_of(Action&& action) {
  said_fault said;
  char* msg[5] = {};
  bool threw = false;
  try {
    action(said.count, msg);
  } catch (int code) {
    threw = code == 1;
  }
  if (msg[0] != nullptr) said.message = msg[0];
  for (char* text : msg) delete[] text;
  return threw == (said.count > 0) ? said : said_fault{-1, "thrown without a message, or a message without a throw"};
}

inline qvsoilrdf::CRoad read_road(const soil_mesh& mesh, const qvref::soil& soil) {
  const std::string file = temporary_path("probe.rdf");
  write_text(file, rdf_text(mesh, soil));
  qvsoilrdf::CRoad road;
  bool read = false;
  const said_fault said = fault_of([&](int& ierr, char** msg) {
    read = qvsoilrdf::read_rdf(nullptr, std::wstring(file.begin(), file.end()), road, ierr, msg);
  });
  if (!read) throw std::runtime_error("the road was not read: " + said.message);
  return road;
}

}  // namespace qvtest
