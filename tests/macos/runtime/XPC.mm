#include "tests/macos/runtime/XPC.h"

#include "tests/macos/runtime/Classes.h"
#include "tests/macos/runtime/Foundation.h"
#include "tests/macos/runtime/State.h"

#include <utility>

namespace vorli::macfake {

static State<XPC> xpcState;

XPC& xpc() {
  return *xpcState;
}

bool connectTo(NSXPCListener* listener, NSXPCConnection* connection, uid_t user) {
  connection.effectiveUserIdentifier = user;
  const id<NSXPCListenerDelegate> delegate = listener.delegate;
  return listener.isResumed && [delegate listener:listener shouldAcceptNewConnection:connection];
}

}  // namespace vorli::macfake

using vorli::macfake::xpc;

@implementation NSXPCInterface

+ (NSXPCInterface*)interfaceWithProtocol:(Protocol*)protocol {
  NSXPCInterface* const interface = [[self alloc] init];
  const auto* const record = static_cast<const vorli::objc::ProtocolRecord*>((__bridge const void*)protocol);
  interface.protocolName = vorli::macfake::string(record->name);
  return interface;
}
@end

@implementation NSXPCConnection {
  bool _isOver;
}

- (instancetype)initWithMachServiceName:(NSString*)name options:(NSXPCConnectionOptions)options {
  self = [super init];
  self.serviceName = name;
  self.options = options;
  [xpc().connections addObject:self];
  return self;
}
- (id)remoteObjectProxyWithErrorHandler:(void (^)(NSError*))handler {
  self.errorHandler = handler;
  if (_isOver) return [[NSObject alloc] init];
  return xpc().daemon ? xpc().daemon : [[NSObject alloc] init];
}
- (void)resume {
  if (self.isResumed) vorli::objc::breakOff("resumed twice", "NSXPCConnection");
  self.isResumed = YES;
  xpc().calls.push_back("resume");
}
- (void)interrupt {
  if (self.errorHandler) self.errorHandler([NSError errorWithCode:4097 text:@"connection interrupted"]);
  self.errorHandler = nil;
  if (self.interruptionHandler) self.interruptionHandler();
}
// Handlers are dropped after the last one has run.
- (void)invalidate {
  if (std::exchange(_isOver, true)) return;
  xpc().calls.push_back("invalidate");
  if (self.errorHandler) self.errorHandler([NSError errorWithCode:4099 text:@"connection invalidated"]);
  if (self.invalidationHandler) self.invalidationHandler();
  self.errorHandler = nil;
  self.invalidationHandler = nil;
  self.interruptionHandler = nil;
  self.exportedObject = nil;
}
@end

@implementation NSXPCListener

- (instancetype)initWithMachServiceName:(NSString*)name {
  self = [super init];
  self.serviceName = name;
  [xpc().listeners addObject:self];
  return self;
}
- (void)setConnectionCodeSigningRequirement:(NSString*)requirement {
  if (self.isResumed) vorli::objc::breakOff("required after the first connection", "NSXPCListener");
  self.requirement = requirement;
}
- (void)resume {
  self.isResumed = YES;
  xpc().calls.push_back("listen");
}
- (void)suspend {
  self.isResumed = NO;
  xpc().calls.push_back("suspend");
}
@end
