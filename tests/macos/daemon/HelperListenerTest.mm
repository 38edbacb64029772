#include "macos/daemon/HelperListener.h"
#include "tests/macos/runtime/Dispatch.h"
#include "tests/macos/runtime/Foundation.h"
#include "tests/macos/runtime/XPC.h"

#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vorli::machost {
namespace {

using macfake::xpc;
using daemon::Method;
using Lines = std::vector<std::string>;

struct HelperListenerTest : testing::Test {
  void open(const std::optional<std::string>& requirement = std::nullopt) {
    listener.emplace(loop, clients, sink, requirement);
    listener->resume();
  }
  NSXPCListener* platform() { return xpc().listeners.firstObject; }
  NSXPCConnection* connect(uid_t user) {
    NSXPCConnection* const connection = [[NSXPCConnection alloc] init];
    return macfake::connectTo(platform(), connection, user) ? connection : nil;
  }
  id<HelperProtocol> clientOf(NSXPCConnection* connection) { return connection.exportedObject; }
  void (^text())(NSString*) {
    return ^(NSString* answer) {
      answers.push_back(answer.UTF8String);
    };
  }
  void (^result())(int, NSString*) {
    return ^(int code, NSString* output) {
      answers.push_back(std::to_string(code) + " " + output.UTF8String);
    };
  }

  MainQueueScheduler loop;
  Clients clients;
  int called = 0;
  std::vector<daemon::Request> requests;
  std::vector<OnceReply<HelperReply>> replies;
  Lines answers;
  const CallSink sink{.called = [this] { ++called; },
                      .submit =
                          [this](daemon::Request request, OnceReply<HelperReply> reply) {
                            requests.push_back(std::move(request));
                            replies.push_back(std::move(reply));
                          }};
  std::optional<HelperListener> listener;
};

TEST_F(HelperListenerTest, theServiceIsTheDaemonsAndNobodyConnectsBeforeItIsResumed) {
  listener.emplace(loop, clients, sink, std::nullopt);
  EXPECT_STREQ(platform().serviceName.UTF8String, "com.kv.vorli.helper");
  EXPECT_EQ(connect(501), nil);
  listener->resume();
  EXPECT_NE(connect(501), nil);
}

TEST_F(HelperListenerTest, theRequirementIsSetBeforeAnybodyConnects) {
  open("anchor apple generic");
  EXPECT_STREQ(platform().requirement.UTF8String, "anchor apple generic");
}

TEST_F(HelperListenerTest, withoutARequirementNoneIsSet) {
  open();
  EXPECT_EQ(platform().requirement, nil);
}

TEST_F(HelperListenerTest, aConnectionIsResumedWithTheContractAndAnObjectOfItsOwn) {
  open();
  NSXPCConnection* const first = connect(501);
  NSXPCConnection* const second = connect(501);
  EXPECT_TRUE(first.isResumed);
  EXPECT_STREQ(first.exportedInterface.protocolName.UTF8String, "HelperProtocol");
  EXPECT_NE(first.exportedObject, second.exportedObject);
  EXPECT_EQ(listener->connections(), 2U);
}

TEST_F(HelperListenerTest, theUserIsTheConnectionsAndTheSeventeenthOfOneUserIsRefused) {
  open();
  std::vector<NSXPCConnection*> held;
  for (int index = 0; index < 16; ++index) held.push_back(connect(501));
  EXPECT_EQ(connect(501), nil);
  EXPECT_NE(connect(0), nil);
  [held[0] invalidate];
  EXPECT_NE(connect(501), nil);
}

TEST_F(HelperListenerTest, anEndedConnectionIsForgottenAndItsObjectReleased) {
  open();
  __weak id object = nil;
  @autoreleasepool {
    NSXPCConnection* const connection = connect(501);
    object = connection.exportedObject;
    [connection invalidate];
  }
  EXPECT_EQ(listener->connections(), 0U);
  EXPECT_EQ(object, nil);
}

TEST_F(HelperListenerTest, pingAndVersionAreAnsweredByTheConnectionItself) {
  open();
  const id<HelperProtocol> helper = clientOf(connect(501));
  [helper pingWithReply:text()];
  [helper versionWithReply:text()];
  EXPECT_EQ(answers, (Lines{"pong", "1.2.3"}));
  EXPECT_EQ(called, 2);
  EXPECT_EQ(requests.size(), 0U);
}

TEST_F(HelperListenerTest, theOtherCallsArePassedOnWithTheirArgumentsAndAnswersComeBack) {
  open();
  const id<HelperProtocol> helper = clientOf(connect(501));
  [helper purgeMemoryWithReply:result()];
  [helper flushDNSWithReply:result()];
  [helper killPID:42 signal:19 reply:result()];
  [helper dumpBTMWithReply:result()];
  [helper moveLaunchAgentPlistFrom:@"/a" to:@"/b" reply:result()];
  ASSERT_EQ(requests.size(), 5U);
  const Method methods[] = {Method::purgeMemory, Method::flushDNS, Method::killPID, Method::dumpBTM,
                            Method::moveLaunchAgentPlist};
  for (std::size_t index = 0; index < requests.size(); ++index) {
    EXPECT_EQ(requests[index].method, methods[index]);
    EXPECT_EQ(requests[index].caller, "connection 1");
    std::move(replies[index])({static_cast<std::int32_t>(index), "text"});
  }
  const auto kill = std::get<daemon::KillArguments>(requests[2].arguments);
  EXPECT_EQ(kill.pid, 42);
  EXPECT_EQ(kill.signal, 19);
  const auto move = std::get<daemon::MoveArguments>(requests[4].arguments);
  EXPECT_EQ(move.from + " " + move.to, "/a /b");
  EXPECT_EQ(answers, (Lines{"0 text", "1 text", "2 text", "3 text", "4 text"}));
  EXPECT_EQ(called, 0);
}

TEST_F(HelperListenerTest, pathsThatAClientLeavesOutAreEmpty) {
  open();
  const id<HelperProtocol> helper = clientOf(connect(501));
  NSString* none = @"nothing";
  none = nil;
  [helper moveLaunchAgentPlistFrom:none to:none reply:result()];
  const auto move = std::get<daemon::MoveArguments>(requests[0].arguments);
  EXPECT_EQ(move.from + move.to, "");
}

TEST_F(HelperListenerTest, anAnswerThatIsNotUTF8IsRepaired) {
  open();
  [clientOf(connect(501)) flushDNSWithReply:result()];
  std::move(replies[0])({1, "a\xFF"});
  EXPECT_EQ(answers, Lines{"1 a\xEF\xBF\xBD"});
}

TEST_F(HelperListenerTest, aDaemonThatLeavesTakesNoMoreConnections) {
  open();
  connect(501);
  EXPECT_EQ(listener->connections(), 1U);
  listener->releaseName();
  EXPECT_EQ(listener->connections(), 0U);
  EXPECT_EQ(connect(501), nil);
  EXPECT_EQ(xpc().calls.back(), "suspend");
}

TEST_F(HelperListenerTest, theBarrierComesAfterCallsThatWaitAlready) {
  open();
  Lines order;
  loop.post([&order] { order.push_back("call"); });
  listener->barrier(OnceReply<bool>([&order](bool is) { order.push_back(is ? "barrier" : "none"); }));
  EXPECT_EQ(order, Lines{});
  macfake::runMainQueue();
  EXPECT_EQ(order, (Lines{"call", "barrier"}));
}

TEST_F(HelperListenerTest, stoppingEndsTheLoopEvenBeforeItRuns) {
  open();
  listener->stop();
  loop.run();
}

}  // namespace
}  // namespace vorli::machost
