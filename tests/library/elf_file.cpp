#include "tests/library/elf_file.h"

#include <elf.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <vector>

namespace qvtest {
namespace {

class image {
public:
  explicit image(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    m_bytes.assign(std::istreambuf_iterator<char>(file), {});
    m_header = at<Elf64_Ehdr>(0);
    if (std::memcmp(m_header.e_ident, ELFMAG, SELFMAG) != 0 || m_header.e_ident[EI_CLASS] != ELFCLASS64) {
      throw std::runtime_error(path + " is no 64-bit library");
    }
  }

  template <class Record>
  Record at(std::size_t offset) const {
    Record record;
    if (offset + sizeof record > m_bytes.size()) throw std::runtime_error("a library cut short");
    std::memcpy(&record, m_bytes.data() + offset, sizeof record);
    return record;
  }

  std::string text(std::size_t offset) const {
    if (offset >= m_bytes.size()) throw std::runtime_error("a library cut short");
    return m_bytes.data() + offset;  // string tables end in a null
  }

  /// The section of this type; the one it links to is its string table.
  Elf64_Shdr section(std::uint32_t type) const {
    for (std::size_t k = 0; k < m_header.e_shnum; ++k) {
      const Elf64_Shdr found = section_at(k);
      if (found.sh_type == type) return found;
    }
    throw std::runtime_error("a section is missing");
  }
  Elf64_Shdr section_at(std::size_t k) const { return at<Elf64_Shdr>(m_header.e_shoff + k * m_header.e_shentsize); }

  template <class Visit>
  void for_each_segment(Visit&& visit) const {
    for (std::size_t k = 0; k < m_header.e_phnum; ++k) {
      visit(at<Elf64_Phdr>(m_header.e_phoff + k * m_header.e_phentsize));
    }
  }

  /// Bytes at an address of the loaded file; fewer than asked for if they are not in it.
  std::string bytes_at(std::uint64_t address, std::size_t size) const {
    std::string bytes;
    for_each_segment([&](const Elf64_Phdr& s) {
      if (s.p_type != PT_LOAD || address < s.p_vaddr || address + size > s.p_vaddr + s.p_filesz) return;
      const std::size_t offset = s.p_offset + (address - s.p_vaddr);
      bytes.assign(m_bytes.data() + offset, size);
    });
    return bytes;
  }

  template <class Record, class Visit>
  void for_each(const Elf64_Shdr& section, Visit&& visit) const {
    const std::size_t strings = section_at(section.sh_link).sh_offset;
    for (std::size_t k = 0; k < section.sh_size / sizeof(Record); ++k) {
      visit(at<Record>(section.sh_offset + k * sizeof(Record)), strings);
    }
  }

private:
  std::vector<char> m_bytes;
  Elf64_Ehdr m_header;
};

/// Whether a note says that all code keeps to a shadow stack: the second bit of the property of x86 features.
bool marks_shadow_stack(const image& library, const Elf64_Phdr& segment) {
  constexpr std::uint32_t k_features = 0xc0000002, k_shadow_stack = 2;
  std::size_t at = segment.p_offset + sizeof(Elf64_Nhdr) + 4;  // behind the name "GNU"
  const std::size_t end = segment.p_offset + segment.p_filesz;
  while (at + 8 <= end) {
    const auto type = library.at<std::uint32_t>(at), size = library.at<std::uint32_t>(at + 4);
    if (type == k_features) return (library.at<std::uint32_t>(at + 8) & k_shadow_stack) != 0;
    at += 8 + (size + 7) / 8 * 8;
  }
  return false;
}

void add_segment(elf_file& file, const image& library, const Elf64_Phdr& segment) {
  if (segment.p_type == PT_GNU_RELRO) file.has_relro = true;
  if (segment.p_type == PT_GNU_PROPERTY) file.shadow_stack = marks_shadow_stack(library, segment);
}

void add_symbol(elf_file& file, const Elf64_Sym& symbol, const std::string& name) {
  const auto binding = ELF64_ST_BIND(symbol.st_info);
  if (binding == STB_LOCAL) return;
  if (symbol.st_shndx == SHN_UNDEF) {
    (binding == STB_WEAK ? file.weak_undefined : file.undefined).insert(name);
    return;
  }
  file.defined.insert(name);
  if (ELF64_ST_TYPE(symbol.st_info) != STT_FUNC) file.defined_data.insert(name);
}

}  // namespace

elf_file read_elf(const std::string& path) {
  const image library(path);
  elf_file file;
  library.for_each<Elf64_Sym>(library.section(SHT_DYNSYM), [&](const Elf64_Sym& symbol, std::size_t strings) {
    const std::string name = library.text(strings + symbol.st_name);
    add_symbol(file, symbol, name);
    if (symbol.st_shndx != SHN_UNDEF && ELF64_ST_TYPE(symbol.st_info) == STT_FUNC) {
      file.first_bytes[name] = library.bytes_at(symbol.st_value, 4);
    }
  });
  library.for_each<Elf64_Dyn>(library.section(SHT_DYNAMIC), [&](const Elf64_Dyn& entry, std::size_t strings) {
    if (entry.d_tag == DT_NEEDED) file.needed.insert(library.text(strings + entry.d_un.d_val));
    if (entry.d_tag == DT_FLAGS_1 && (entry.d_un.d_val & DF_1_NOW) != 0) file.bind_now = true;
    if (entry.d_tag == DT_RUNPATH || entry.d_tag == DT_RPATH) file.runpath = library.text(strings + entry.d_un.d_val);
  });
  library.for_each_segment([&](const Elf64_Phdr& segment) { add_segment(file, library, segment); });
  return file;
}

}  // namespace qvtest
