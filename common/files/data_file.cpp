#include "common/files/data_file.h"

#include <algorithm>
#include <cstring>
#include <cwchar>

#include "common/files/text.h"
#include "qvbrisk/services.h"

namespace qv {
namespace {

/// Size of a seekable file, 0 for anything else (a pipe, a folder).
std::size_t size_hint(std::FILE* file) {
  if (std::fseek(file, 0, SEEK_END) != 0) return 0;
  const long size = std::ftell(file);
  std::rewind(file);
  constexpr long k_beyond_any_file = 1L << 40;  // a folder answers with a size beyond this
  return size > 0 && size < k_beyond_any_file ? static_cast<std::size_t>(size) : 0;
}

bool within(int length) { return length >= 0 && length <= QV_TEXT_CAPACITY; }

std::wstring text_of(const wchar_t (&buffer)[QV_TEXT_CAPACITY]) {
  const wchar_t* end = std::wmemchr(buffer, L'\0', QV_TEXT_CAPACITY);
  return {buffer, end != nullptr ? end : buffer + QV_TEXT_CAPACITY};
}

}  // namespace

bool data_file::open(const std::string& name) {
  m_file.reset(std::fopen(name.c_str(), "r"));
  if (!m_file) return false;
  std::setvbuf(m_file.get(), nullptr, _IONBF, 0);  // straight into the reader's own buffer
  m_bytes_left = size_hint(m_file.get());
  return true;
}

std::size_t data_file::read(char* buffer, std::size_t size) {
  const std::size_t got = std::fread(buffer, 1, size, m_file.get());
  m_bytes_left -= std::min(got, m_bytes_left);
  return got;
}

bool fetch_model_path(void* handle, std::wstring& path, int& length) {
  wchar_t buffer[QV_TEXT_CAPACITY] = {};
  int flag = 0;
  length = 0;
  GET_QVSPATH_S(handle, &length, buffer, &flag);
  if (!within(length)) return false;
  path = text_of(buffer);
  return true;
}

std::wstring beside_model(const std::wstring& model_path, const std::wstring& name) {
  const std::size_t folder = model_path.rfind(L'/') + 1;  // 0 without any "/"
  // Kept: no second attempt for a path that is empty or ends in "/".
  return folder == 0 || folder >= model_path.size() ? std::wstring() : model_path.substr(0, folder) + name;
}

file_outcome open_data_file(void* handle, const std::wstring& name, data_file& file, int& path_length) {
  if (file.open(wcs_to_mbs(name))) return file_outcome::opened;
  std::wstring model_path;
  if (!fetch_model_path(handle, model_path, path_length)) return file_outcome::path_too_long;
  const std::wstring second = beside_model(model_path, name);
  return !second.empty() && file.open(wcs_to_mbs(second)) ? file_outcome::opened : file_outcome::not_found;
}

bool line_source::next(text_line& line) {
  const char* searched = m_at;  // there is no line end before this
  for (;;) {
    const auto* stop = static_cast<const char*>(
        searched == m_end ? nullptr : std::memchr(searched, '\n', static_cast<std::size_t>(m_end - searched)));
    if (stop != nullptr) {
      line = {m_at, stop, ++m_number};
      m_at = stop + 1;
      return true;
    }
    const std::ptrdiff_t without_end = m_end - m_at;
    if (!refill()) break;
    searched = m_at + without_end;
  }
  if (m_at == m_end) return false;
  line = {m_at, m_end, ++m_number};
  m_at = m_end;
  return true;
}

bool file_window::refill() {
  constexpr std::size_t k_chunk = 1 << 15, k_probe = 1 << 14;  // the latter when it is not known that more is to come
  const std::size_t left = m_file.bytes_left();
  const std::size_t wanted = left > 0 ? std::min(left, k_chunk) : k_probe;
  const auto kept = static_cast<std::size_t>(m_end - m_at);
  if (kept > 0) std::memmove(m_buffer.data(), m_at, kept);
  if (m_buffer.size() <= kept + wanted) m_buffer.resize(std::max(2 * m_buffer.size(), kept + wanted + 1));
  const std::size_t got = m_file.read(m_buffer.data() + kept, m_buffer.size() - kept - 1);
  m_buffer[kept + got] = k_line_end[0];
  m_at = m_buffer.data();
  m_end = m_at + kept + got;
  return got > 0;
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
