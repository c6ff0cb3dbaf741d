#include "solver/data_files/file_digest.h"

#include <sha2.h>
#include <sys/types.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <vector>

namespace qvslv {

namespace {

/// The digest of all that was added.
class Sha256 {
public:
  Sha256() { SHA256Init(&m_context); }
  void add(const void* bytes, size_t count) { SHA256Update(&m_context, static_cast<const uint8_t*>(bytes), count); }
  std::string hexadecimal() {
    char text[SHA256_DIGEST_STRING_LENGTH] = {};
    SHA256End(&m_context, text);
    return text;
  }

private:
  SHA2_CTX m_context = {};
};

}  // namespace

FileDigest digest_of_file(const std::string& path) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rbe"), std::fclose);
  if (!file) throw std::runtime_error("cannot read " + path + ": " + std::strerror(errno));
  Sha256 sha;
  FileDigest digest;
  std::vector<char> block(1 << 18);
  while (const size_t count = std::fread(block.data(), 1, block.size(), file.get())) {
    sha.add(block.data(), count);
    digest.bytes += count;
  }
  if (std::ferror(file.get()) != 0) throw std::runtime_error("cannot read " + path + ": " + std::strerror(errno));
  digest.sha256 = sha.hexadecimal();
  return digest;
}

FileDigest digest_of_text(const std::string& text) {
  Sha256 sha;
  sha.add(text.data(), text.size());
  return {text.size(), sha.hexadecimal()};
}

}  // namespace qvslv
