#include "macos/daemon/HelperObject.h"

#include "macos/Text.h"

#include <utility>

NS_ASSUME_NONNULL_BEGIN

using vorli::HelperReply;
using vorli::OnceReply;
using vorli::daemon::Method;
using vorli::daemon::Request;
using vorli::machost::stringOf;
using vorli::machost::textOf;

using Arguments = decltype(Request::arguments);

@implementation VorliHelperObject {
  std::string _caller;
  const vorli::machost::CallSink* _sink;
}

- (instancetype)initWithCaller:(const std::string&)caller sink:(const vorli::machost::CallSink*)sink {
  self = [super init];
  _caller = caller;
  _sink = sink;
  return self;
}

- (void)submit:(Method)method
     arguments:(Arguments)arguments
         reply:(void (^)(int exitCode, NSString* output))reply {
  _sink->submit({method, _caller, std::move(arguments)}, OnceReply<HelperReply>([reply](HelperReply answer) {
                  reply(answer.exitCode, stringOf(answer.output));
                }));
}

- (void)pingWithReply:(void (^)(NSString* reply))reply {
  _sink->called();
  reply(@"pong");
}

- (void)versionWithReply:(void (^)(NSString* version))reply {
  _sink->called();
  reply(stringOf(vorli::helper::version));
}

- (void)purgeMemoryWithReply:(void (^)(int exitCode, NSString* output))reply {
  [self submit:Method::purgeMemory arguments:{} reply:reply];
}

- (void)flushDNSWithReply:(void (^)(int exitCode, NSString* output))reply {
  [self submit:Method::flushDNS arguments:{} reply:reply];
}

- (void)killPID:(int)pid signal:(int)signal reply:(void (^)(int exitCode, NSString* output))reply {
  [self submit:Method::killPID arguments:vorli::daemon::KillArguments{pid, signal} reply:reply];
}

- (void)dumpBTMWithReply:(void (^)(int exitCode, NSString* output))reply {
  [self submit:Method::dumpBTM arguments:{} reply:reply];
}

// A client may send nil or text that is not valid UTF-8; both become a path that is refused.
- (void)moveLaunchAgentPlistFrom:(NSString*)source
                              to:(NSString*)destination
                           reply:(void (^)(int exitCode, NSString* output))reply {
  [self submit:Method::moveLaunchAgentPlist
      arguments:vorli::daemon::MoveArguments{textOf(source), textOf(destination)}
          reply:reply];
}

@end

NS_ASSUME_NONNULL_END
