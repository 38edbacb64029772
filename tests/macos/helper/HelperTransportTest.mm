#include "macos/helper/HelperContract.h"
#include "macos/helper/HelperTransport.h"
#include "tests/macos/runtime/XPC.h"

#include <cerrno>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// The other side of the connection. It keeps each request until the test answers it.
@interface VorliScriptedDaemon : NSObject <HelperProtocol> {
 @public
  std::vector<std::string> requests;
}
@property(copy) void (^text)(NSString*);
@property(copy) void (^result)(int, NSString*);
@end

@implementation VorliScriptedDaemon

- (void)pingWithReply:(void (^)(NSString*))reply {
  requests.push_back("ping");
  self.text = reply;
}
- (void)versionWithReply:(void (^)(NSString*))reply {
  requests.push_back("version");
  self.text = reply;
}
- (void)purgeMemoryWithReply:(void (^)(int, NSString*))reply {
  requests.push_back("purge");
  self.result = reply;
}
- (void)flushDNSWithReply:(void (^)(int, NSString*))reply {
  requests.push_back("flush");
  self.result = reply;
}
- (void)killPID:(int)pid signal:(int)signal reply:(void (^)(int, NSString*))reply {
  requests.push_back("kill " + std::to_string(pid) + " " + std::to_string(signal));
  self.result = reply;
}
- (void)dumpBTMWithReply:(void (^)(int, NSString*))reply {
  requests.push_back("dump");
  self.result = reply;
}
- (void)moveLaunchAgentPlistFrom:(NSString*)source
                              to:(NSString*)destination
                           reply:(void (^)(int, NSString*))reply {
  requests.push_back(std::string("move ") + source.UTF8String + " " + destination.UTF8String);
  self.result = reply;
}
@end

namespace vorli::machost {
namespace {

using macfake::xpc;
using Calls = std::vector<std::string>;

struct HelperTransportTest : testing::Test {
  HelperTransportTest() { xpc().daemon = daemon; }

  OnceReply<HelperReply> result() {
    return OnceReply<HelperReply>([this](HelperReply reply) { results.push_back(std::move(reply)); });
  }
  OnceReply<std::string> text() {
    return OnceReply<std::string>([this](std::string reply) { texts.push_back(std::move(reply)); });
  }
  std::shared_ptr<HelperProtocol> proxy() {
    return connection->remoteObjectProxy([this](std::string error) { errors.push_back(std::move(error)); });
  }
  NSXPCConnection* platform() { return xpc().connections.firstObject; }

  VorliScriptedDaemon* const daemon = [[VorliScriptedDaemon alloc] init];
  std::vector<HelperReply> results;
  Calls texts, errors;
  // Last: its end is an error of each proxy.
  std::unique_ptr<ports::HelperConnection> connection = HelperTransport().connect("com.kv.vorli.helper");
};

TEST_F(HelperTransportTest, theConnectionIsToTheRootDaemonsService) {
  EXPECT_STREQ(platform().serviceName.UTF8String, "com.kv.vorli.helper");
  EXPECT_EQ(platform().options, 4096U);
  EXPECT_STREQ(platform().remoteObjectInterface.protocolName.UTF8String, "HelperProtocol");
  EXPECT_EQ(xpc().calls, Calls{});
  connection->resume();
  EXPECT_EQ(xpc().calls, Calls{"resume"});
}

TEST_F(HelperTransportTest, everyCallReachesTheDaemonAndComesBack) {
  const auto helper = proxy();
  helper->ping(text());
  daemon.text(@"pong");
  helper->version(text());
  daemon.text(@"1.2.3");
  EXPECT_EQ(texts, (Calls{"pong", "1.2.3"}));
  helper->purgeMemory(result());
  daemon.result(5, @"no right");
  helper->flushDNS(result());
  daemon.result(0, @"flushed");
  helper->killPID(42, 19, result());
  daemon.result(0, @"done");
  helper->dumpBTM(result());
  daemon.result(0, @"items");
  helper->moveLaunchAgentPlist("/a", "/b", result());
  daemon.result(0, @"Moved");
  EXPECT_EQ(results, (std::vector<HelperReply>{
                         {5, "no right"}, {0, "flushed"}, {0, "done"}, {0, "items"}, {0, "Moved"}}));
  EXPECT_EQ(daemon->requests,
            (Calls{"ping", "version", "purge", "flush", "kill 42 19", "dump", "move /a /b"}));
}

TEST_F(HelperTransportTest, aSecondAnswerIsIgnored) {
  const auto helper = proxy();
  helper->flushDNS(result());
  daemon.result(0, @"flushed");
  daemon.result(1, @"again");
  EXPECT_EQ(results, (std::vector<HelperReply>{{0, "flushed"}}));
}

TEST_F(HelperTransportTest, anAnswerWithoutATextIsAnEmptyText) {
  const auto helper = proxy();
  helper->flushDNS(result());
  daemon.result(0, static_cast<NSString*>(nil));
  EXPECT_EQ(results, (std::vector<HelperReply>{{0, ""}}));
}

TEST_F(HelperTransportTest, aPathThatIsNotUTF8IsRefusedAndNotSent) {
  const auto helper = proxy();
  helper->moveLaunchAgentPlist("/a\xFF", "/b", result());
  helper->moveLaunchAgentPlist("/a", "/b\xFE", result());
  EXPECT_EQ(results, (std::vector<HelperReply>{{EILSEQ, "The path is not UTF-8: /a\xEF\xBF\xBD"},
                                               {EILSEQ, "The path is not UTF-8: /b\xEF\xBF\xBD"}}));
  EXPECT_EQ(daemon->requests, Calls{});
}

TEST_F(HelperTransportTest, aDaemonThatEndsIsAnErrorOfTheProxyAndAnInterruption) {
  int interruptions = 0;
  connection->setInterruptionHandler([&interruptions] { ++interruptions; });
  connection->resume();
  const auto helper = proxy();
  helper->flushDNS(result());
  [platform() interrupt];
  EXPECT_EQ(errors, Calls{"connection interrupted"});
  EXPECT_EQ(interruptions, 1);
  EXPECT_EQ(results, std::vector<HelperReply>{});
}

TEST_F(HelperTransportTest, invalidatingFailsWhatIsInFlightAndIsReportedOnce) {
  int invalidations = 0;
  connection->setInvalidationHandler([&invalidations] { ++invalidations; });
  connection->resume();
  const auto helper = proxy();
  connection->invalidate();
  connection->invalidate();
  EXPECT_EQ(errors, Calls{"connection invalidated"});
  EXPECT_EQ(invalidations, 1);
  connection.reset();
  EXPECT_EQ(xpc().calls, (Calls{"resume", "invalidate"}));
}

TEST_F(HelperTransportTest, anInvalidConnectionHasNoProxy) {
  connection->invalidate();
  EXPECT_EQ(proxy(), nullptr);
  xpc().daemon = nil;
  EXPECT_EQ(HelperTransport().connect("com.kv.vorli.helper")->remoteObjectProxy({}), nullptr);
}

TEST_F(HelperTransportTest, theDestructorInvalidatesTheConnection) {
  connection->resume();
  connection.reset();
  EXPECT_EQ(xpc().calls, (Calls{"resume", "invalidate"}));
}

TEST_F(HelperTransportTest, missingHandlersAreAllowed) {
  connection->setInvalidationHandler({});
  connection->setInterruptionHandler({});
  const auto helper = connection->remoteObjectProxy({});
  [platform() interrupt];
  connection->invalidate();
  EXPECT_NE(helper, nullptr);
}

}  // namespace
}  // namespace vorli::machost
