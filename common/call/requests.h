#pragma once

#include <initializer_list>

#include "qvbrisk/services.h"

/// Requests to the host for quantities. If the host has no answer, the values stay as they were. Kept: the error flag
/// is not looked at.
namespace qv {

/// Fetches a vector quantity of markers (sysary), `count` values.
inline void fetch_vector(void* handle, const char* name, std::initializer_list<int> ids, double* values, int count) {
  int flag = 0;
  sysary(handle, name, ids.begin(), static_cast<int>(ids.size()), values, &count, &flag);
}

/// Fetches a scalar quantity (sysfnc); 0 if the host has no answer.
inline double fetch_scalar(void* handle, const char* name, std::initializer_list<int> ids) {
  int flag = 0;
  double value = 0.0;
  sysfnc(handle, name, ids.begin(), static_cast<int>(ids.size()), &value, &flag);
  return value;
}

}  // namespace qv
