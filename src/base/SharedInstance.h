#pragma once

#include "base/Assert.h"

namespace vorli {

/// Gives a long-lived service its one shared instance: the object that the composition root built and
/// installed. A lookup only; classes take what they need in their constructors, so a test makes its own.
template <typename Service>
class SharedInstance {
 public:
  static Service& shared() {
    VORLI_ASSERT(instance_);
    return *instance_;
  }
  static void installShared(Service* service) { instance_ = service; }

 private:
  static inline Service* instance_ = nullptr;
};

}  // namespace vorli
