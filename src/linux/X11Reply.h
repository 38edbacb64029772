#pragma once

#include <cstdlib>
#include <memory>

namespace vorli::linuxhost {

struct FreeReply {
  void operator()(void* memory) const { std::free(memory); }
};

/// Owns a reply or an event of the X server, which is allocated with malloc.
template <typename Reply>
using X11Reply = std::unique_ptr<Reply, FreeReply>;

}  // namespace vorli::linuxhost
