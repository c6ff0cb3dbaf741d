#pragma once

#include <initializer_list>

#include "qvbrisk/services.h"

/// Asking the host for quantities. Where it has no answer the values stay as they were; nobody looks at the flag.
namespace qv {

/// A vector quantity of markers, `count` values.
inline void fetch_vector(void* handle, const char* name, std::initializer_list<int> ids, double* values, int count) {
  int flag = 0;
  sysary(handle, name, ids.begin(), static_cast<int>(ids.size()), values, &count, &flag);
}

/// A scalar quantity; 0 where the host has no answer.
inline double fetch_scalar(void* handle, const char* name, std::initializer_list<int> ids) {
  int flag = 0;
  double value = 0.0;
  sysfnc(handle, name, ids.begin(), static_cast<int>(ids.size()), &value, &flag);
  return value;
}

}  // namespace qv
