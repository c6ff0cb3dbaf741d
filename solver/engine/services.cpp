#include "qvbrisk/services.h"

#include <algorithm>
#include <string>

#include "solver/engine/service_host.h"

#define QV_SERVICE __attribute__((visibility("default")))

namespace {

qvslv::ServiceHost& host_of(void* handle) { return *static_cast<qvslv::ServiceHost*>(handle); }

void set_flag(int* err, bool answered) {
  if (err != nullptr) *err = answered ? 0 : 1;
}

/// Copies a text into a caller's buffer of QV_TEXT_CAPACITY characters. False if it does not fit; then nothing is
/// written.
bool copy_text(const std::wstring& text, int* length, wchar_t* buffer) {
  if (text.size() >= static_cast<size_t>(QV_TEXT_CAPACITY)) return false;
  std::copy(text.begin(), text.end(), buffer);
  buffer[text.size()] = L'\0';
  *length = static_cast<int>(text.size());
  return true;
}

/// Nothing may unwind through the C frames of a plug-in, so a host that throws counts as one that does not answer.
template <class Request>
bool answered(Request&& request) {
  try {
    return request();
  } catch (...) {
    return false;
  }
}

}  // namespace

extern "C" {

QV_SERVICE void sysary(void* handle, const char* name, const int* ids, int nids, double* values, int* count, int* err) {
  set_flag(err, answered([&] { return host_of(handle).vector_quantity(name, ids, nids, values, *count); }));
}

QV_SERVICE void sysfnc(void* handle, const char* name, const int* ids, int nids, double* value, int* err) {
  set_flag(err, answered([&] { return host_of(handle).scalar_quantity(name, ids, nids, *value); }));
}

QV_SERVICE void get_string_s(void* handle, int id, int* length, wchar_t* text, int* err) {
  set_flag(err, answered([&] {
             std::wstring found;
             return host_of(handle).string_entity(id, found) && copy_text(found, length, text);
           }));
}

QV_SERVICE void GET_QVSPATH_S(void* handle, int* length, wchar_t* path, int* err) {
  set_flag(err, answered([&] {
             std::wstring found;
             return host_of(handle).model_path(found) && copy_text(found, length, path);
           }));
}

QV_SERVICE void stop_solver(void* handle, int, int, int, const char* message, int* status) {
  set_flag(status, answered([&] {
             host_of(handle).stop(message);
             return true;
           }));
}

QV_SERVICE void THROW_ERROR(void* handle, const char* title, int count, char** messages) {
  answered([&] {
    host_of(handle).throw_error(title, count, messages);
    return true;
  });
}

QV_SERVICE void AKISPL(void* handle, double x, double z, int spline, int order, double* value, int* err) {
  set_flag(err, answered([&] { return host_of(handle).spline(x, z, spline, order, *value); }));
}

QV_SERVICE void GTUNTS(void* handle, double scale[5], void* names[5], int* err) {
  set_flag(err, answered([&] { return host_of(handle).units(scale, names); }));
}

QV_SERVICE void STEP(void*, double* value, int* err, double x, double x0, double h0, double x1, double h1) {
  // The step needs no model, so the handle is not looked at: kernels pass a null one.
  const double s = (x - x0) / (x1 - x0);
  if (x <= x0) {
    *value = h0;
  } else if (x >= x1) {
    *value = h1;
  } else {
    *value = h0 + (h1 - h0) * s * s * (3.0 - 2.0 * s);
  }
  set_flag(err, true);
}

QV_SERVICE void get_mass(void* handle, const int* id, int nids, double* mass, int* err) {
  set_flag(err, answered([&] { return nids == 1 && host_of(handle).mass(*id, *mass); }));
}

}  // extern "C"
