#include "linux/crash/LoadedModule.h"

#include <dlfcn.h>
#include <link.h>

namespace vorli::linuxhost {

LoadedModule moduleAt(std::uintptr_t address) {
  dl_find_object found;
  if (_dl_find_object(reinterpret_cast<void*>(address), &found) != 0) return {};
  const link_map* map = found.dlfo_link_map;
  return {.id = map,
          .bias = map->l_addr,
          .begin = reinterpret_cast<std::uintptr_t>(found.dlfo_map_start),
          .path = map->l_name ? map->l_name : ""};
}

}  // namespace vorli::linuxhost
