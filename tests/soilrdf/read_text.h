#pragma once

#include <string>

#include "soilrdf/road.h"

namespace qvtest {

/// What reading one road gave.
struct reading {
  bool returned = false;  ///< what the reader returned; false when it threw
  int thrown = 0;         ///< the integer it threw; 0 when it returned
  int count = 0;          ///< of the message channel, afterwards
  std::string message;    ///< in the first slot, "" when there is none
  int path_requests = 0;  ///< how often the host was asked for the model's path
  qvsoilrdf::CRoad road;
};

/// Reads a road from a file of this content.
reading read_text(const std::string& content);

/// Reads the road file of this name; the host says that the model is at `model_path`.
reading read_name(const std::wstring& name, const std::wstring& model_path);

/// Nodes (0,0,0), (10,0,0), (10,4,0), (0,4,0) and elements (1,2,3), (1,3,4), each block with its spacer.
extern const char* const k_two_triangles;

/// `lines` in front of the two triangles.
std::string with_mesh(const std::string& lines);

}  // namespace qvtest
