#pragma once

#include "base/OnceReply.h"
#include "contract/HelperProtocol.h"
#include "daemon/Request.h"
#include "macos/helper/HelperContract.h"

#include <functional>
#include <string>

NS_ASSUME_NONNULL_BEGIN

namespace vorli::machost {

/// Receives the calls of all connections, on threads of XPC. Both functions return at once.
struct CallSink {
  /// Notes a call that the connection answers itself.
  std::function<void()> called;
  std::function<void(daemon::Request, OnceReply<HelperReply>)> submit;
};

}  // namespace vorli::machost

/// The object that one connection's client sees. It answers `ping` and `version` itself, so that they never
/// wait for other work, and passes on copies of the arguments of the other methods.
@interface VorliHelperObject : NSObject <HelperProtocol>
/// `sink` must outlive the object.
- (instancetype)initWithCaller:(const std::string&)caller sink:(const vorli::machost::CallSink*)sink;
@end

NS_ASSUME_NONNULL_END
