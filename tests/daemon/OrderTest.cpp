#include "daemon/Order.h"

namespace vorli::daemon {
namespace {

std::int32_t killCode(std::int32_t pid, std::int32_t signal) {
  const auto order = decode({Method::killPID, ":1.1", KillArguments{pid, signal}});
  return order ? 0 : order.error().exitCode;
}

TEST(Order, allowsOnlyTheContinueSignal) {
  for (std::int32_t signal = -2; signal <= 130; ++signal)
    EXPECT_EQ(killCode(4242, signal), signal == 19 ? 0 : 22) << signal;
  EXPECT_EQ(killCode(4242, INT32_MAX), 22);
  EXPECT_EQ(killCode(4242, INT32_MIN), 22);
}

TEST(Order, refusesProcessGroupsAndTheFirstProcess) {
  for (const std::int32_t pid : {INT32_MIN, -4242, -1, 0, 1}) EXPECT_EQ(killCode(pid, 19), 22) << pid;
  EXPECT_EQ(killCode(2, 19), 0);
  EXPECT_EQ(killCode(INT32_MAX, 19), 0);
}

TEST(Order, refusesArgumentsOfAnotherMethod) {
  EXPECT_EQ(decode({Method::killPID, ":1.1", MoveArguments{}}).error().exitCode, 22);
  EXPECT_EQ(decode({Method::moveLaunchAgentPlist, ":1.1", std::monostate()}).error().exitCode, 22);
}

}  // namespace
}  // namespace vorli::daemon
