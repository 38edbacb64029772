#include "macos/Observation.h"

#include <memory>
#include <utility>

namespace vorli::machost {

Subscription observe(NSNotificationCenter* center, NSNotificationName name,
                     std::function<void(NSNotification*)> handler) {
  // A block that is already queued still runs after its observer was removed.
  const auto isOver = std::make_shared<bool>(false);
  const auto call = [isOver, handler = std::move(handler)](NSNotification* notification) {
    if (!*isOver) handler(notification);
  };
  const id<NSObject> observer = [center addObserverForName:name
                                                    object:nil
                                                     queue:NSOperationQueue.mainQueue
                                                usingBlock:^(NSNotification* notification) {
                                                  call(notification);
                                                }];
  return Subscription([center, observer, isOver] {
    *isOver = true;
    [center removeObserver:observer];
  });
}

}  // namespace vorli::machost
