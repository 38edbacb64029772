#pragma once

#include "base/Subscription.h"

#import <Foundation/Foundation.h>
#include <functional>

namespace vorli::machost {

/// Calls `handler` on the main thread, from its loop, for each notification of this name, until the token is
/// destroyed. Main thread.
[[nodiscard]] Subscription observe(NSNotificationCenter* center, NSNotificationName name,
                                   std::function<void(NSNotification*)> handler);

}  // namespace vorli::machost
