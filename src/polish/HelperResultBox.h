#pragma once

#include "base/OnceReply.h"
#include "contract/HelperProtocol.h"
#include "sampling/MemorySnapshot.h"

#include <mutex>
#include <optional>

namespace vorli {

/// The two replies of one polish.
struct HelperWorkResult {
  HelperReply dns;
  HelperReply purge;
};

/// Hands the result of the helper's work to the race, whichever of the two arrives first. Any thread.
class HelperResultBox {
 public:
  /// Answers with the result: at once if it has arrived, otherwise as soon as it does.
  void whenFilled(OnceReply<HelperWorkResult> answer);

  /// Stores the result, once, and answers the waiting caller.
  void fill(HelperWorkResult work);

 private:
  std::mutex lock;
  std::optional<HelperWorkResult> result;
  OnceReply<HelperWorkResult> callback;
};

/// Holds the memory snapshot taken before the helper's work, for the flow.
class SnapshotBox {
 public:
  std::optional<MemorySnapshot> snapshot;
};

}  // namespace vorli
