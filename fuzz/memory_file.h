#pragma once

#include <cstddef>
#include <string>

/// A file in memory that can be opened by its path as long as this object lives.
class memory_file {
public:
  memory_file();
  ~memory_file();
  memory_file(const memory_file&) = delete;
  memory_file& operator=(const memory_file&) = delete;

  void write(const void* data, std::size_t size);
  std::wstring path() const;

private:
  int m_file;
};

/// Ends the fuzzer with a finding when the promise is broken.
#define QV_PROMISE(promise)                                       \
  do {                                                            \
    if (!(promise)) broken_promise(#promise, __FILE__, __LINE__); \
  } while (false)

[[noreturn]] void broken_promise(const char* promise, const char* file, int line);
