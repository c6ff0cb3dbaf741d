#include "solver/results/output_file.h"

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace qvslv {

OutputFile::OutputFile(std::string path)
    : m_path(std::move(path)), m_file(std::fopen(m_path.c_str(), "wbxe"), std::fclose) {
  if (!m_file) fail();
}

void OutputFile::write_through() {
  if (std::setvbuf(m_file.get(), nullptr, _IONBF, 0) != 0) fail();
}

void OutputFile::write(std::string_view text) {
  if (std::fwrite(text.data(), 1, text.size(), m_file.get()) != text.size()) fail();
}

void OutputFile::flush() {
  if (std::fflush(m_file.get()) != 0) fail();
}

long OutputFile::position() const {
  const long position = std::ftell(m_file.get());
  if (position < 0) fail();
  return position;
}

void OutputFile::go_to(long position) {
  if (std::fseek(m_file.get(), position, SEEK_SET) != 0) fail();
}

void OutputFile::close() {
  if (std::fclose(m_file.release()) != 0) fail();
}

void OutputFile::fail() const { throw std::runtime_error("cannot write " + m_path + ": " + std::strerror(errno)); }

void write_new_file(const std::string& path, std::string_view text) {
  OutputFile file(path);
  file.write_through();
  file.write(text);
  file.close();
}

void write_new_file(const std::string& path, const TextPieces& text) {
  OutputFile file(path);
  for (const std::string_view piece : text.pieces()) file.write(piece);
  file.close();
}

}  // namespace qvslv
