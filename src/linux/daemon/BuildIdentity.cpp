#include "linux/daemon/BuildIdentity.h"

#include <cstddef>
#include <cstring>
#include <link.h>
#include <string_view>

namespace vorli::linuxhost {

namespace {

std::string digitsOf(const char* bytes, std::size_t count) {
  static constexpr std::string_view digits = "0123456789abcdef";
  std::string text;
  for (std::size_t i = 0; i < count; ++i) {
    const auto byte = static_cast<unsigned char>(bytes[i]);
    text += {digits[byte >> 4], digits[byte & 15]};
  }
  return text;
}

std::size_t padded(std::size_t size) {
  return (size + 3) & ~std::size_t{3};
}

// A note consists of a header, the owner's name and the content; the latter two are padded to four bytes.
std::string identityIn(const char* notes, std::size_t size) {
  // NOLINTNEXTLINE(bugprone-string-constructor): its NUL belongs to the name
  constexpr std::string_view owner("GNU", 4);
  while (size >= sizeof(ElfW(Nhdr))) {
    ElfW(Nhdr) head;
    std::memcpy(&head, notes, sizeof head);
    const auto content = sizeof head + padded(head.n_namesz);
    const auto whole = content + padded(head.n_descsz);
    if (whole > size) return "";
    if (head.n_type == NT_GNU_BUILD_ID && std::string_view(notes + sizeof head, head.n_namesz) == owner)
      return digitsOf(notes + content, head.n_descsz);
    notes += whole;
    size -= whole;
  }
  return "";
}

// The first object is the program itself.
int takeFirst(dl_phdr_info* object, std::size_t, void* result) {
  for (const auto* part = object->dlpi_phdr; part != object->dlpi_phdr + object->dlpi_phnum; ++part) {
    if (part->p_type != PT_NOTE) continue;
    const auto* notes = reinterpret_cast<const char*>(object->dlpi_addr + part->p_vaddr);
    auto& identity = *static_cast<std::string*>(result);
    identity = identityIn(notes, part->p_memsz);
    if (!identity.empty()) break;
  }
  return 1;
}

}  // namespace

std::string buildIdentity() {
  std::string identity;
  ::dl_iterate_phdr(takeFirst, &identity);
  return identity;
}

}  // namespace vorli::linuxhost
