#include "tests/macos/runtime/Images.h"

#include <mach-o/dyld.h>

namespace {

void (*imageAdded)(const mach_header*, intptr_t) = nullptr;

}  // namespace

void _dyld_register_func_for_add_image(void (*added)(const mach_header*, intptr_t)) {
  imageAdded = added;
}

void vorli::macfake::addImage(const mach_header_64& header, std::uintptr_t slide) {
  imageAdded(reinterpret_cast<const mach_header*>(&header), static_cast<intptr_t>(slide));
}
