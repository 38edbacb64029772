#include "linux/crash/FunctionNames.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <elf.h>
#include <string_view>
#include <unistd.h>

namespace vorli::linuxhost {

namespace {

constexpr std::size_t symbolsAtOnce = 256;
constexpr std::size_t longestFunctionName = 120;

template <typename Record>
bool readRecord(int file, std::uint64_t offset, Record& record) {
  return pread(file, &record, sizeof record, static_cast<off_t>(offset)) ==
         static_cast<ssize_t>(sizeof record);
}

bool readHeader(int file, Elf64_Ehdr& header) {
  return readRecord(file, 0, header) && std::memcmp(header.e_ident, ELFMAG, SELFMAG) == 0 &&
         header.e_ident[EI_CLASS] == ELFCLASS64 && header.e_shentsize == sizeof(Elf64_Shdr);
}

// Reads the first section of this type. False when there is none.
bool readSection(int file, const Elf64_Ehdr& header, std::uint32_t type, Elf64_Shdr& section) {
  for (std::uint64_t i = 0; i < header.e_shnum; ++i) {
    if (!readRecord(file, header.e_shoff + i * sizeof section, section)) return false;
    if (section.sh_type == type) return section.sh_link < header.e_shnum;
  }
  return false;
}

bool isFunction(const Elf64_Sym& symbol) {
  const auto type = ELF64_ST_TYPE(symbol.st_info);
  return (type == STT_FUNC || type == STT_GNU_IFUNC) && symbol.st_shndx != SHN_UNDEF;
}

// Takes the first of several names of one function.
void compare(const Elf64_Sym& symbol, std::span<FunctionQuery* const> queries) {
  if (!isFunction(symbol)) return;
  for (FunctionQuery* query : queries) {
    if (query->isFound || query->address < symbol.st_value) continue;
    if (query->address - symbol.st_value >= symbol.st_size) continue;
    query->isFound = true;
    query->begin = symbol.st_value;
    query->nameOffset = symbol.st_name;
  }
}

}  // namespace

void FunctionNames::find(std::span<FunctionQuery* const> queries) {
  Elf64_Ehdr header;
  Elf64_Shdr symbols, names;
  if (!readHeader(file_, header)) return;
  if (!readSection(file_, header, SHT_SYMTAB, symbols) && !readSection(file_, header, SHT_DYNSYM, symbols))
    return;
  if (!readRecord(file_, header.e_shoff + symbols.sh_link * sizeof names, names)) return;
  names_ = names.sh_offset;
  std::array<Elf64_Sym, symbolsAtOnce> chunk;
  for (std::uint64_t at = 0; at < symbols.sh_size;) {
    const auto wanted = std::min<std::uint64_t>(sizeof chunk, symbols.sh_size - at);
    const ssize_t got = pread(file_, chunk.data(), wanted, static_cast<off_t>(symbols.sh_offset + at));
    const auto count = got > 0 ? static_cast<std::size_t>(got) / sizeof(Elf64_Sym) : 0;
    if (count == 0) return;
    for (const auto& symbol : std::span(chunk).first(count)) compare(symbol, queries);
    at += count * sizeof(Elf64_Sym);
  }
}

void FunctionNames::addName(const FunctionQuery& query, posix::TextBuffer& text) const {
  std::array<char, longestFunctionName> name;
  const ssize_t got = pread(file_, name.data(), name.size(), static_cast<off_t>(names_ + query.nameOffset));
  if (got <= 0) return;
  const std::string_view read(name.data(), static_cast<std::size_t>(got));
  text.add(read.substr(0, read.find('\0')));
}

}  // namespace vorli::linuxhost
