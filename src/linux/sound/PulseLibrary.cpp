#include "linux/sound/PulseLibrary.h"

#include <dlfcn.h>
#include <optional>

namespace vorli::linuxhost {

namespace {

std::optional<PulseLibrary> openPulseLibrary() {
  void* handle = dlopen("libpulse.so.0", RTLD_NOW | RTLD_LOCAL);
  if (!handle) return std::nullopt;

  PulseLibrary library;
#define VORLI_PULSE_LOOKUP(function)                                                         \
  library.function = reinterpret_cast<decltype(library.function)>(dlsym(handle, #function)); \
  if (!library.function) return std::nullopt;
  VORLI_PULSE_FUNCTIONS(VORLI_PULSE_LOOKUP)
#undef VORLI_PULSE_LOOKUP
  return library;
}

}  // namespace

const PulseLibrary* PulseLibrary::load() {
  static const std::optional<PulseLibrary> library = openPulseLibrary();
  return library ? &*library : nullptr;
}

}  // namespace vorli::linuxhost
