#include "macos/daemon/ClientAuthority.h"
#include "macos/daemon/Clients.h"

#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

namespace vorli::machost {
namespace {

struct ClientsTest : testing::Test {
  std::optional<daemon::UserId> userOf(const std::string& caller) {
    std::optional<daemon::UserId> user;
    clients.userOf(caller, OnceReply<std::optional<daemon::UserId>>(
                               [&user](std::optional<daemon::UserId> is) { user = is; }));
    return user;
  }
  std::shared_ptr<daemon::CallerProcess> processOf(const std::string& caller, daemon::UserId user) {
    std::shared_ptr<daemon::CallerProcess> process;
    using Process = std::shared_ptr<daemon::CallerProcess>;
    clients.processOf(caller, user, OnceReply<Process>([&process](Process is) { process = std::move(is); }));
    return process;
  }

  Clients clients;
};

TEST_F(ClientsTest, aConnectionIsKnownByItsNameAndUserUntilItEnds) {
  const auto name = clients.admit(501);
  ASSERT_TRUE(name);
  EXPECT_EQ(userOf(*name), 501U);
  EXPECT_EQ(clients.count(), 1U);
  clients.remove(*name);
  EXPECT_FALSE(userOf(*name));
  EXPECT_EQ(clients.count(), 0U);
  clients.remove(*name);
  EXPECT_EQ(clients.count(), 0U);
}

TEST_F(ClientsTest, aNameIsNeverUsedAgain) {
  const auto first = clients.admit(501);
  clients.remove(*first);
  EXPECT_NE(clients.admit(501), first);
}

TEST_F(ClientsTest, sixteenConnectionsOfOneUserAreAllowedAndTheSeventeenthIsNot) {
  std::vector<std::string> names;
  for (int index = 0; index < 16; ++index) names.push_back(*clients.admit(501));
  EXPECT_FALSE(clients.admit(501));
  EXPECT_TRUE(clients.admit(502));
  clients.remove(names[3]);
  EXPECT_TRUE(clients.admit(501));
  EXPECT_FALSE(clients.admit(501));
  EXPECT_EQ(clients.count(), 17U);
}

TEST_F(ClientsTest, aProcessIsThereAsLongAsItsConnection) {
  const auto name = clients.admit(501);
  const auto process = processOf(*name, 501);
  ASSERT_TRUE(process);
  EXPECT_TRUE(process->isThere());
  clients.remove(*name);
  EXPECT_FALSE(process->isThere());
  EXPECT_FALSE(processOf(*name, 501));
}

TEST_F(ClientsTest, anotherUsersProcessIsRefused) {
  const auto name = clients.admit(501);
  EXPECT_FALSE(processOf(*name, 502));
  EXPECT_FALSE(processOf("connection 99", 501));
}

daemon::Verdict verdict(ClientAuthority::Signature signature, daemon::Method method) {
  auto verdict = daemon::Verdict::none;
  ClientAuthority(signature).check(
      "connection 1", daemon::rulesOf(method).action, "",
      OnceReply<daemon::Verdict>([&verdict](daemon::Verdict is) { verdict = is; }));
  return verdict;
}

TEST(ClientAuthorityTest, aClientThatSatisfiesTheRequirementMayDoEverything) {
  using enum daemon::Method;
  for (const auto method : {purgeMemory, flushDNS, moveLaunchAgentPlist})
    EXPECT_EQ(verdict(ClientAuthority::Signature::required, method), daemon::Verdict::granted);
}

TEST(ClientAuthorityTest, anyProgramMayPurgeAndFlushAndMoveNothing) {
  using enum daemon::Method;
  EXPECT_EQ(verdict(ClientAuthority::Signature::unknown, purgeMemory), daemon::Verdict::granted);
  EXPECT_EQ(verdict(ClientAuthority::Signature::unknown, flushDNS), daemon::Verdict::granted);
  EXPECT_EQ(verdict(ClientAuthority::Signature::unknown, moveLaunchAgentPlist), daemon::Verdict::denied);
}

}  // namespace
}  // namespace vorli::machost
