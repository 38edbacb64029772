#pragma once

#include "base/OnceReply.h"
#include "helper/HelperProtocol.h"
#include "sampling/MemorySnapshot.h"

#include <mutex>
#include <optional>

namespace vorli {

/// The two replies of one polish.
struct HelperWorkResult {
  HelperReply dns;
  HelperReply purge;
};

/// Where the helper's work and the race for it meet: whichever comes second finds what the first has left.
class HelperResultBox {
 public:
  /// Answers with the result: at once when it is here, else when it comes.
  void whenFilled(OnceReply<HelperWorkResult> answer);

  /// Puts the result in, once, and tells whoever waits for it.
  void fill(HelperWorkResult work);

 private:
  std::mutex lock;
  std::optional<HelperWorkResult> result;
  OnceReply<HelperWorkResult> callback;
};

/// Hands the memory as it was before the helper's work back to the flow.
class SnapshotBox {
 public:
  std::optional<MemorySnapshot> snapshot;
};

}  // namespace vorli
