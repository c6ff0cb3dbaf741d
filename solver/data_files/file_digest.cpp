#include "solver/data_files/file_digest.h"

#include <fcntl.h>
#include <nettle/sha2.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <utility>
#include <vector>

namespace qvslv {

namespace {

/// The digest of all that was added.
class Sha256 {
public:
  Sha256() { sha256_init(&m_context); }
  void add(const void* bytes, size_t count) { sha256_update(&m_context, count, static_cast<const uint8_t*>(bytes)); }
  std::string hexadecimal() {
    constexpr const char* k_digits = "0123456789abcdef";
    std::array<uint8_t, SHA256_DIGEST_SIZE> bytes{};
    sha256_digest(&m_context, bytes.size(), bytes.data());
    std::string text;
    for (const uint8_t byte : bytes) {
      text += k_digits[byte >> 4U];
      text += k_digits[byte & 15U];
    }
    return text;
  }

private:
  sha256_ctx m_context = {};
};

[[noreturn]] void cannot_read(const std::string& path) {
  throw std::runtime_error("cannot read " + path + ": " + std::strerror(errno));
}

}  // namespace

OpenFile::OpenFile(std::string path) : m_path(std::move(path)), m_file(open(m_path.c_str(), O_RDONLY | O_CLOEXEC)) {
  if (m_file < 0) cannot_read(m_path);
}

OpenFile::OpenFile(OpenFile&& other) noexcept
    : m_path(std::move(other.m_path)), m_file(std::exchange(other.m_file, -1)) {}

OpenFile::~OpenFile() {
  if (m_file >= 0) close(m_file);
}

size_t OpenFile::read_some(std::vector<char>& block) const {
  for (;;) {
    const ssize_t count = read(m_file, block.data(), block.size());
    if (count >= 0) return static_cast<size_t>(count);
    if (errno != EINTR) cannot_read(m_path);
  }
}

FileDigest digest_of(const OpenFile& file) {
  Sha256 sha;
  FileDigest digest;
  std::vector<char> block(1 << 16);  // stays in the processor's nearer cache
  while (const size_t count = file.read_some(block)) {
    sha.add(block.data(), count);
    digest.bytes += count;
  }
  digest.sha256 = sha.hexadecimal();
  return digest;
}

FileDigest digest_of_file(const std::string& path) { return digest_of(OpenFile(path)); }

FileDigest digest_of_text(const std::string& text) {
  Sha256 sha;
  sha.add(text.data(), text.size());
  return {text.size(), sha.hexadecimal()};
}

}  // namespace qvslv
