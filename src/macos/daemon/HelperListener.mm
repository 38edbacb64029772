#include "macos/daemon/HelperListener.h"

#include "contract/HelperProtocol.h"
#include "macos/Text.h"

#include <utility>

@interface VorliListenerDelegate : NSObject <NSXPCListenerDelegate>
- (instancetype)initWithClients:(vorli::machost::Clients*)clients sink:(const vorli::machost::CallSink*)sink;
@end

@implementation VorliListenerDelegate {
  vorli::machost::Clients* _clients;
  const vorli::machost::CallSink* _sink;
}

- (instancetype)initWithClients:(vorli::machost::Clients*)clients sink:(const vorli::machost::CallSink*)sink {
  self = [super init];
  _clients = clients;
  _sink = sink;
  return self;
}

// The user is the one in the audit token that the kernel attaches to the connection's messages.
- (BOOL)listener:(NSXPCListener*)listener shouldAcceptNewConnection:(NSXPCConnection*)connection {
  vorli::machost::Clients* const clients = _clients;
  const auto name = clients->admit(connection.effectiveUserIdentifier);
  if (!name) return NO;
  connection.exportedInterface = [NSXPCInterface interfaceWithProtocol:@protocol(HelperProtocol)];
  connection.exportedObject = [[VorliHelperObject alloc] initWithCaller:*name sink:_sink];
  const std::string ended = *name;
  connection.invalidationHandler = ^{
    clients->remove(ended);
  };
  [connection resume];
  return YES;
}

@end

namespace vorli::machost {

HelperListener::HelperListener(MainQueueScheduler& scheduler, Clients& clients, const CallSink& sink,
                               const std::optional<std::string>& requirement)
    : scheduler_(scheduler),
      clients_(clients),
      delegate_([[VorliListenerDelegate alloc] initWithClients:&clients sink:&sink]),
      listener_([[NSXPCListener alloc] initWithMachServiceName:stringOf(helper::serviceName)]) {
  listener_.delegate = delegate_;
  if (requirement) [listener_ setConnectionCodeSigningRequirement:stringOf(*requirement)];
}

void HelperListener::resume() {
  [listener_ resume];
}

void HelperListener::releaseName() {
  isLeaving_ = true;
  [listener_ suspend];
}

void HelperListener::barrier(OnceReply<bool> reply) {
  scheduler_.post([reply = std::move(reply)]() mutable { std::move(reply)(true); });
}

}  // namespace vorli::machost
