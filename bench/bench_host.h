#pragma once

#include <algorithm>
#include <map>
#include <string>

#include "solver/engine/service_host.h"

/// A host whose answers cost next to nothing: one body marker (1), a road base marker (2) at rest, the ground (3).
namespace qvbench {

class BenchHost final : public qvslv::ServiceHost {
public:
  double position[3] = {0, 0, 0};
  double axes[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
  double velocity[3] = {0, 0, 0};
  double angular_velocity[3] = {0, 0, 0};
  std::wstring road_file;               ///< text of every string that `strings` does not hold
  std::map<int, std::wstring> strings;  ///< texts by id
  std::string complaint;                ///< text of the last stop_solver or THROW_ERROR; empty if there was none

  bool vector_quantity(const char* name, const int* ids, int nids, double* values, int& count) override;
  bool scalar_quantity(const char*, const int*, int, double& value) override {
    value = 2.0;
    return true;
  }
  bool string_entity(int id, std::wstring& text) override {
    const auto own = strings.find(id);
    text = own != strings.end() ? own->second : road_file;
    return true;
  }
  bool model_path(std::wstring& path) override {
    path.clear();
    return true;
  }
  void stop(const char* message) override { complaint = message != nullptr ? message : "stop"; }
  void throw_error(const char* title, int count, char** messages) override;
  bool units(double* scale, void**) override {
    std::fill_n(scale, 5, 1.0);
    return true;
  }
  bool mass(int, double& value) override {
    value = 3.0;
    return true;
  }

  void* handle() { return static_cast<qvslv::ServiceHost*>(this); }
};

}  // namespace qvbench
