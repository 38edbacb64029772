#include "macos/crash/LoadedImages.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstring>
#include <dlfcn.h>
#include <mach-o/dyld.h>
#include <mach-o/loader.h>
#include <mach-o/nlist.h>

namespace vorli::machost {

namespace {

// An ordinary program with windows loads about 600; those beyond the table have no names in a report.
constexpr std::size_t mostImages = 2048;

std::array<LoadedImage, mostImages> images;
std::atomic<std::size_t> imageCount = 0;

// Calls `visit` for each load command of the image.
template <typename Visit>
void visitCommands(const mach_header_64& header, Visit visit) {
  const auto* next = reinterpret_cast<const std::byte*>(&header + 1);
  for (std::uint32_t index = 0; index < header.ncmds; ++index) {
    const auto& command = *reinterpret_cast<const load_command*>(next);
    visit(command);
    next += command.cmdsize;
  }
}

std::string_view lastPartOf(const char* path) {
  if (!path) return "???";
  const std::string_view whole(path);
  return whole.substr(whole.rfind('/') + 1);
}

// The loader makes one call at a time, first for all images that are already loaded.
void remember(const mach_header* header, std::intptr_t slide) {
  const std::size_t index = imageCount.load(std::memory_order_relaxed);
  if (index == mostImages || header->magic != MH_MAGIC_64) return;
  LoadedImage image;
  image.header = header;
  image.slide = static_cast<std::uintptr_t>(slide);
  visitCommands(*reinterpret_cast<const mach_header_64*>(header), [&image](const load_command& command) {
    if (command.cmd != LC_SEGMENT_64) return;
    const auto& segment = reinterpret_cast<const segment_command_64&>(command);
    if (std::strncmp(segment.segname, SEG_TEXT, sizeof segment.segname) != 0) return;
    image.begin = static_cast<std::uintptr_t>(segment.vmaddr) + image.slide;
    image.end = image.begin + static_cast<std::uintptr_t>(segment.vmsize);
  });
  Dl_info info{};
  image.name = lastPartOf(::dladdr(header, &info) != 0 ? info.dli_fname : nullptr);
  images[index] = image;
  imageCount.store(index + 1, std::memory_order_release);
}

struct SymbolTable {
  const nlist_64* symbols = nullptr;
  std::uint32_t count = 0;
  const char* names = nullptr;
  std::uint32_t namesSize = 0;
};

// Finds the symbols in memory by the segment that contains them, which has its address in memory and its
// offset in the file.
SymbolTable symbolsOf(const LoadedImage& image) {
  const symtab_command* table = nullptr;
  const segment_command_64* link = nullptr;
  visitCommands(*static_cast<const mach_header_64*>(image.header), [&](const load_command& command) {
    if (command.cmd == LC_SYMTAB) table = reinterpret_cast<const symtab_command*>(&command);
    if (command.cmd != LC_SEGMENT_64) return;
    const auto* segment = reinterpret_cast<const segment_command_64*>(&command);
    if (std::strncmp(segment->segname, SEG_LINKEDIT, sizeof segment->segname) == 0) link = segment;
  });
  if (!table || !link) return {};
  const std::uintptr_t base =
      image.slide + static_cast<std::uintptr_t>(link->vmaddr) - static_cast<std::uintptr_t>(link->fileoff);
  return {reinterpret_cast<const nlist_64*>(base + table->symoff), table->nsyms,
          reinterpret_cast<const char*>(base + table->stroff), table->strsize};
}

bool isFunction(const nlist_64& symbol) {
  return (symbol.n_type & N_STAB) == 0 && (symbol.n_type & N_TYPE) == N_SECT;
}

}  // namespace

void rememberLoadedImages() {
  _dyld_register_func_for_add_image(remember);
}

// Searches from the newest image to the oldest, because an image may be at the address of another one that
// was unloaded.
LoadedImage imageAt(std::uintptr_t address) {
  for (std::size_t index = imageCount.load(std::memory_order_acquire); index > 0; --index) {
    const auto& image = images[index - 1];
    if (address >= image.begin && address < image.end) return image;
  }
  return {};
}

NearestFunction functionAt(const LoadedImage& image, std::uintptr_t address) {
  const auto table = symbolsOf(image);
  const nlist_64* nearest = nullptr;
  for (std::uint32_t index = 0; index < table.count; ++index) {
    const auto& symbol = table.symbols[index];
    if (!isFunction(symbol) || symbol.n_value + image.slide > address) continue;
    if (!nearest || symbol.n_value > nearest->n_value) nearest = &symbol;
  }
  if (!nearest || nearest->n_un.n_strx >= table.namesSize) return {};
  const char* const name = table.names + nearest->n_un.n_strx;
  return {std::string_view(name, strnlen(name, table.namesSize - nearest->n_un.n_strx)),
          address - static_cast<std::uintptr_t>(nearest->n_value) - image.slide};
}

}  // namespace vorli::machost
