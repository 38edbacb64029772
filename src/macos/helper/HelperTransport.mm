#include "macos/helper/HelperTransport.h"

#include "base/UTF8.h"
#include "macos/Text.h"
#include "macos/helper/HelperContract.h"

#include <cerrno>
#include <utility>

namespace vorli::machost {

namespace {

// Makes an answer copyable: a block copies its captures, and an answer can only be moved.
template <typename Answer>
std::shared_ptr<OnceReply<Answer>> shared(OnceReply<Answer> reply) {
  return std::make_shared<OnceReply<Answer>>(std::move(reply));
}

void (^textReply(OnceReply<std::string> reply))(NSString*) {
  const auto once = shared(std::move(reply));
  return ^(NSString* text) {
    std::move (*once)(textOf(text));
  };
}

void (^resultReply(OnceReply<HelperReply> reply))(int, NSString*) {
  const auto once = shared(std::move(reply));
  return ^(int exitCode, NSString* output) {
    std::move (*once)({exitCode, textOf(output)});
  };
}

class Proxy final : public HelperProtocol {
 public:
  explicit Proxy(id<HelperProtocol> daemon) : daemon_(daemon) {}

  void ping(OnceReply<std::string> reply) override { [daemon_ pingWithReply:textReply(std::move(reply))]; }
  void version(OnceReply<std::string> reply) override {
    [daemon_ versionWithReply:textReply(std::move(reply))];
  }
  void purgeMemory(OnceReply<HelperReply> reply) override {
    [daemon_ purgeMemoryWithReply:resultReply(std::move(reply))];
  }
  void flushDNS(OnceReply<HelperReply> reply) override {
    [daemon_ flushDNSWithReply:resultReply(std::move(reply))];
  }
  void killPID(std::int32_t pid, std::int32_t signal, OnceReply<HelperReply> reply) override {
    [daemon_ killPID:pid signal:signal reply:resultReply(std::move(reply))];
  }
  void dumpBTM(OnceReply<HelperReply> reply) override {
    [daemon_ dumpBTMWithReply:resultReply(std::move(reply))];
  }

  // Refuses a path that is not valid UTF-8: repaired, it would name another file.
  void moveLaunchAgentPlist(std::string from, std::string to, OnceReply<HelperReply> reply) override {
    if (!isUTF8(from) || !isUTF8(to))
      return std::move(reply)({EILSEQ, "The path is not UTF-8: " + repairedUTF8(isUTF8(from) ? to : from)});
    [daemon_ moveLaunchAgentPlistFrom:stringOf(from) to:stringOf(to) reply:resultReply(std::move(reply))];
  }

 private:
  const id<HelperProtocol> daemon_;
};

class Connection final : public ports::HelperConnection {
 public:
  explicit Connection(std::string_view serviceName)
      : connection_([[NSXPCConnection alloc] initWithMachServiceName:stringOf(serviceName)
                                                             options:NSXPCConnectionPrivileged]) {
    connection_.remoteObjectInterface = [NSXPCInterface interfaceWithProtocol:@protocol(HelperProtocol)];
  }
  // A connection that was resumed must be invalidated before it is released.
  ~Connection() override { [connection_ invalidate]; }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  void setInvalidationHandler(std::function<void()> handler) override {
    connection_.invalidationHandler = ^{
      if (handler) handler();
    };
  }
  void setInterruptionHandler(std::function<void()> handler) override {
    connection_.interruptionHandler = ^{
      if (handler) handler();
    };
  }

  void resume() override { [connection_ resume]; }
  void invalidate() override { [connection_ invalidate]; }

  std::shared_ptr<HelperProtocol> remoteObjectProxy(std::function<void(std::string)> errorHandler) override {
    const id daemon = [connection_ remoteObjectProxyWithErrorHandler:^(NSError* error) {
      if (errorHandler) errorHandler(textOf(error));
    }];
    if (![daemon conformsToProtocol:@protocol(HelperProtocol)]) return nullptr;
    return std::make_shared<Proxy>(daemon);
  }

 private:
  NSXPCConnection* const connection_;
};

}  // namespace

std::unique_ptr<ports::HelperConnection> HelperTransport::connect(std::string_view serviceName) {
  return std::make_unique<Connection>(serviceName);
}

}  // namespace vorli::machost
