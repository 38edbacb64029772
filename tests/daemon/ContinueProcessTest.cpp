#include "daemon/ContinueProcess.h"
#include "tests/daemon/DaemonFakes.h"

namespace vorli::daemon {
namespace {

struct ContinueProcessTest : testing::Test {
  FakeProcesses control;

  HelperReply askedBy(UserId user) { return continueProcess(control, PermitForTests::of(user), 77); }
};

TEST_F(ContinueProcessTest, continuesAProcessOfTheCaller) {
  control.processes[77].users = {1000, 1000, 1000, 1000};
  EXPECT_EQ(askedBy(1000), (HelperReply{0, "Continued"}));
  EXPECT_EQ(control.resumed, std::vector<std::int32_t>{77});
}

TEST_F(ContinueProcessTest, allFourUserIdsMustBeTheCallers) {
  for (std::size_t i = 0; i < 4; ++i) {
    std::array<UserId, 4> users{1000, 1000, 1000, 1000};
    users[i] = 0;
    control.processes[77].users = users;
    EXPECT_EQ(askedBy(1000).exitCode, 1) << i;
  }
  EXPECT_TRUE(control.resumed.empty());
}

TEST_F(ContinueProcessTest, rootHasNoMoreRightsThanOthers) {
  control.processes[77].users = {1000, 1000, 1000, 1000};
  EXPECT_EQ(askedBy(0).exitCode, 1);
  EXPECT_TRUE(control.resumed.empty());
}

TEST_F(ContinueProcessTest, refusesAProcessWhoseUsersAreHidden) {
  control.processes[77].users.reset();
  EXPECT_EQ(askedBy(1000).exitCode, 1);
  EXPECT_TRUE(control.resumed.empty());
}

TEST_F(ContinueProcessTest, aProcessThatEndedMeanwhileIsNotMistakenForItsSuccessor) {
  control.processes[77] = {
      .users = std::array<UserId, 4>{1000, 1000, 1000, 1000}, .isThere = false, .resumed = {}};
  EXPECT_EQ(askedBy(1000).exitCode, 3);
  EXPECT_TRUE(control.resumed.empty());
}

TEST_F(ContinueProcessTest, passesOnTheErrorsOfTheKernel) {
  EXPECT_EQ(askedBy(1000), (HelperReply{3, "No such process"}));
  control.processes[77] = {.users = std::array<UserId, 4>{1000, 1000, 1000, 1000},
                           .isThere = true,
                           .resumed = std::unexpected(SystemError{1, "Operation not permitted"})};
  EXPECT_EQ(askedBy(1000), (HelperReply{1, "Operation not permitted"}));
}

}  // namespace
}  // namespace vorli::daemon
