#pragma once

#import <Foundation/Foundation.h>
#include <functional>
#include <string>
#include <vector>

namespace vorli::macfake {

/// Connections between processes: the calls on them, and the behaviour of the other side.
struct XPC {
  std::vector<std::string> calls;  // in the order in which they were made
  NSMutableArray<NSXPCConnection*>* connections = [[NSMutableArray alloc] init];
  NSMutableArray<NSXPCListener*>* listeners = [[NSMutableArray alloc] init];
  /// Stands for the daemon behind a proxy; nil: a proxy that knows no method of a daemon.
  id daemon = nil;
};

XPC& xpc();

/// Begins a new connection of a user to the listener; true when its delegate accepts it.
bool connectTo(NSXPCListener* listener, NSXPCConnection* connection, uid_t user);

}  // namespace vorli::macfake

@interface NSXPCInterface ()
@property(copy) NSString* protocolName;
@end

@interface NSXPCConnection ()
@property(copy) NSString* serviceName;
@property NSXPCConnectionOptions options;
@property(copy) void (^errorHandler)(NSError*);
@property uid_t effectiveUserIdentifier;
@property BOOL isResumed;
/// Ends the other side: pending requests fail, and the connection can be used again.
- (void)interrupt;
@end

@interface NSXPCListener ()
@property(copy) NSString* serviceName;
@property(copy) NSString* requirement;
@property BOOL isResumed;
@end
