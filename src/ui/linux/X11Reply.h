#pragma once

#include <cstdlib>
#include <memory>

namespace vorli::ui {

struct FreeReply {
  void operator()(void* memory) const { std::free(memory); }
};

/// A reply or an event of the X server, which comes from malloc.
template <typename Reply>
using X11Reply = std::unique_ptr<Reply, FreeReply>;

}  // namespace vorli::ui
