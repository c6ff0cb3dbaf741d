#include "common/data_file.h"

#include <cstdio>
#include <cwchar>
#include <memory>

#include "common/text.h"
#include "qvbrisk/services.h"

namespace qv {
namespace {

struct file_closer {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using file_handle = std::unique_ptr<std::FILE, file_closer>;

/// Size of a seekable file, 0 for anything else (a pipe, a folder).
std::size_t size_hint(std::FILE* file) {
  if (std::fseek(file, 0, SEEK_END) != 0) return 0;
  const long size = std::ftell(file);
  std::rewind(file);
  constexpr long k_beyond_any_file = 1L << 40;  // what a folder answers
  return size > 0 && size < k_beyond_any_file ? static_cast<std::size_t>(size) : 0;
}

bool within(int length) { return length >= 0 && length <= QV_TEXT_CAPACITY; }

std::wstring text_of(const wchar_t (&buffer)[QV_TEXT_CAPACITY]) {
  const wchar_t* end = std::wmemchr(buffer, L'\0', QV_TEXT_CAPACITY);
  return {buffer, end != nullptr ? end : buffer + QV_TEXT_CAPACITY};
}

}  // namespace

bool read_whole_file(const std::string& name, file_text& text) {
  const file_handle file(std::fopen(name.c_str(), "r"));
  if (!file) return false;
  std::setvbuf(file.get(), nullptr, _IONBF, 0);  // straight into our own buffer
  text.data.resize(size_hint(file.get()) + 1);
  text.size = 0;
  while (const std::size_t got =
             std::fread(text.data.data() + text.size, 1, text.data.size() - text.size, file.get())) {
    text.size += got;
    if (text.size == text.data.size()) text.data.resize(2 * text.size + 65536);
  }
  return true;
}

file_outcome read_data_file(void* handle, const std::wstring& name, file_text& text, int& path_length) {
  if (read_whole_file(wcs_to_mbs(name), text)) return file_outcome::read;
  wchar_t buffer[QV_TEXT_CAPACITY] = {};
  path_length = 0;
  int flag = 0;
  GET_QVSPATH_S(handle, &path_length, buffer, &flag);
  if (!within(path_length)) return file_outcome::path_too_long;
  const std::wstring model_path = text_of(buffer);
  const std::size_t folder = model_path.rfind(L'/') + 1;  // 0 without any "/"
  // Kept: no second attempt for a path that is empty or ends in "/".
  if (folder >= model_path.size()) return file_outcome::not_found;
  const std::wstring beside_model = model_path.substr(0, folder) + name;
  return read_whole_file(wcs_to_mbs(beside_model), text) ? file_outcome::read : file_outcome::not_found;
}

bool fetch_string(void* handle, int id, std::wstring& text, int& length) {
  wchar_t buffer[QV_TEXT_CAPACITY] = {};
  int flag = 0;
  length = 0;
  get_string_s(handle, id, &length, buffer, &flag);
  if (!within(length)) return false;
  text = text_of(buffer);
  return true;
}

}  // namespace qv
