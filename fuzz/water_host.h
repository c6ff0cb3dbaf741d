#pragma once

#include <cstring>
#include <string>

#include "fuzz/memory_file.h"
#include "solver/engine/service_host.h"

/// A host whose markers all rest at `place` with the axes of the ground, and whose strings 0 and 1 name two files.
class water_host : public qvslv::ServiceHost {
public:
  std::wstring files[2];
  double place[3] = {0.0, 0.0, -0.5};
  int reports = 0;

  void* handle() { return static_cast<qvslv::ServiceHost*>(this); }

  bool vector_quantity(const char* name, const int*, int nids, double* values, int& count) override {
    const bool matrix = std::strcmp(name, "AM") == 0;
    QV_PROMISE(nids >= 1 && nids <= 3 && count == (matrix ? 9 : 3));
    for (int c = 0; c < count; ++c) values[c] = matrix && c % 4 == 0 ? 1.0 : 0.0;
    if (std::strcmp(name, "TDISP") == 0) std::memcpy(values, place, sizeof place);
    return true;
  }
  bool scalar_quantity(const char*, const int*, int, double& value) override {
    value = 1.0;
    return true;
  }
  bool string_entity(int id, std::wstring& text) override {
    if (id < 0 || id > 1) return false;
    text = files[id];
    return true;
  }
  bool model_path(std::wstring& text) override {
    text = L"/proc/self/model.x";
    return true;
  }
  void stop(const char*) override { QV_PROMISE(false); }
  void throw_error(const char* title, int count, char** messages) override {
    const bool warns = std::strcmp(title, "USUB WARNING") == 0;
    QV_PROMISE(warns ? count == 1 : std::strcmp(title, "USUB ERROR") == 0 && (count == 0 || count == 1));
    if (!warns) ++reports;
    for (int i = 0; i < count; ++i) {
      QV_PROMISE(messages[i] != nullptr && messages[i][0] != '\0');
      delete[] messages[i];
    }
  }
  bool spline(double x, double, int, int, double& value) override {
    value = 2.0 * x;
    return true;
  }
  bool units(double scale[5], void* names[5]) override {
    for (int i = 0; i < 5; ++i) {
      QV_PROMISE(scale[i] == 0.0 && names[i] == nullptr);
      scale[i] = 1.0;
    }
    return true;
  }
};
