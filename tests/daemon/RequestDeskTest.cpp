#include "daemon/RequestDesk.h"
#include "tests/daemon/DaemonFakes.h"

#include <cerrno>
#include <string>
#include <vector>

namespace vorli::daemon {
namespace {

constexpr char itemPath[] = "/etc/xdg/autostart/a.desktop";
constexpr char pausedPath[] = "/etc/xdg/autostart/a.desktop.vorli-disabled";

struct RequestDeskTest : testing::Test {
  fakes::ManualScheduler scheduler;
  FakeCallers callers;
  FakeAuthority authority;
  FakeCommands commands;
  std::vector<std::string> lines;
  std::vector<LogImportance> importances;
  RequestDesk desk{scheduler, callers, authority, commands,
                   [this](LogImportance importance, const std::string& line) {
                     importances.push_back(importance);
                     lines.push_back(line);
                   }};
  std::vector<HelperReply> answers;

  void submit(Request request) {
    desk.submit(std::move(request),
                OnceReply<HelperReply>([this](HelperReply reply) { answers.push_back(std::move(reply)); }));
  }
  void call(Method method, const std::string& caller = ":1.1") {
    auto request = Request{method, caller, {}};
    if (method == Method::killPID) request.arguments = KillArguments{4242, 19};
    if (method == Method::moveLaunchAgentPlist) request.arguments = MoveArguments{itemPath, pausedPath};
    submit(std::move(request));
  }
  std::int32_t codeOf(Method method, const std::string& caller = ":1.1") {
    call(method, caller);
    scheduler.runReady();
    return answers.back().exitCode;
  }
};

TEST_F(RequestDeskTest, asksTheBusForTheCallerAndPolkitForTheAction) {
  EXPECT_EQ(codeOf(Method::moveLaunchAgentPlist), 0);
  EXPECT_EQ(callers.asked, std::vector<std::string>{":1.1"});
  EXPECT_EQ(
      authority.asked,
      (std::vector<FakeAuthority::Question>{{":1.1", "com.kv.vorli.helper.move-startup-item", "a.desktop"}}));
  EXPECT_EQ(commands.done, std::vector<std::string>{"move a.desktop to a.desktop.vorli-disabled for 1000"});
}

TEST_F(RequestDeskTest, asksForAnActionOfItsOwnForEachPrivilegedMethod) {
  codeOf(Method::purgeMemory);
  codeOf(Method::flushDNS);
  ASSERT_EQ(authority.asked.size(), 2u);
  EXPECT_EQ(authority.asked[0].action, "com.kv.vorli.helper.purge-memory");
  EXPECT_EQ(authority.asked[1].action, "com.kv.vorli.helper.flush-dns");
}

TEST_F(RequestDeskTest, asksNobodyBeforeContinuingAProcess) {
  EXPECT_EQ(codeOf(Method::killPID), 0);
  EXPECT_TRUE(authority.asked.empty());
  EXPECT_EQ(commands.done, std::vector<std::string>{"continue 4242 for 1000"});
}

TEST_F(RequestDeskTest, refusesToDump) {
  call(Method::dumpBTM);
  scheduler.runReady();
  EXPECT_EQ(answers, (std::vector<HelperReply>{{203, "Not supported on this system"}}));
  EXPECT_TRUE(commands.done.empty());
}

TEST_F(RequestDeskTest, actsOnlyOnAGrant) {
  const std::pair<Verdict, std::int32_t> refusals[] = {{Verdict::denied, 200},
                                                       {Verdict::authenticationNeeded, 201},
                                                       {Verdict::error, 200},
                                                       {Verdict::none, 200}};
  for (const auto& [verdict, code] : refusals) {
    authority.verdict = verdict;
    for (const auto method : {Method::purgeMemory, Method::flushDNS, Method::moveLaunchAgentPlist})
      EXPECT_EQ(codeOf(method), code);
  }
  EXPECT_TRUE(commands.done.empty());
}

TEST_F(RequestDeskTest, refusesACallerUnknownToTheBus) {
  for (const auto method : {Method::purgeMemory, Method::killPID, Method::moveLaunchAgentPlist})
    EXPECT_EQ(codeOf(method, ":1.77"), 200);
  EXPECT_TRUE(authority.asked.empty());
  EXPECT_TRUE(commands.done.empty());
}

TEST_F(RequestDeskTest, refusesAPrivilegedRequestOfACallerWithoutAProcessOfItsOwn) {
  callers.process.reset();
  for (const auto method : {Method::purgeMemory, Method::flushDNS, Method::moveLaunchAgentPlist})
    EXPECT_EQ(codeOf(method), 200);
  EXPECT_TRUE(authority.asked.empty());
  EXPECT_TRUE(commands.done.empty());
  EXPECT_EQ(callers.held.front(), (std::pair<std::string, UserId>{":1.1", 1000}));
  EXPECT_EQ(codeOf(Method::killPID), 0);
}

TEST_F(RequestDeskTest, refusesACallerWhoseProcessEndsWhileItIsJudged) {
  authority.verdict.reset();
  call(Method::moveLaunchAgentPlist);
  scheduler.runReady();
  callers.process->hasEnded = true;
  std::move(authority.unanswered[0])(Verdict::granted);
  scheduler.runReady();
  EXPECT_EQ(answers.back().exitCode, 200);
  EXPECT_TRUE(commands.done.empty());
  EXPECT_TRUE(lines.back().contains("verdict=denied"));
}

TEST_F(RequestDeskTest, rootIsItselfInEveryProcess) {
  callers.process.reset();
  EXPECT_EQ(codeOf(Method::moveLaunchAgentPlist, ":1.9"), 0);
  EXPECT_TRUE(callers.held.empty());
}

TEST_F(RequestDeskTest, passesOnTheHighestUserIdUnchanged) {
  callers.users[":1.5"] = 4000000000u;
  codeOf(Method::killPID, ":1.5");
  EXPECT_EQ(commands.done, std::vector<std::string>{"continue 4242 for 4000000000"});
}

TEST_F(RequestDeskTest, refusesWhenPolkitIsSilentForThreeSeconds) {
  authority.verdict.reset();
  call(Method::moveLaunchAgentPlist);
  scheduler.advance(2.999);
  EXPECT_TRUE(answers.empty());
  scheduler.advance(0.001);
  ASSERT_EQ(answers.size(), 1u);
  EXPECT_EQ(answers[0].exitCode, 200);

  std::move(authority.unanswered[0])(Verdict::granted);
  scheduler.advance(10.0);
  EXPECT_TRUE(commands.done.empty());
}

TEST_F(RequestDeskTest, refusesWhenTheBusIsSilentForTwoSeconds) {
  callers.isSilent = true;
  call(Method::killPID);
  scheduler.advance(1.999);
  EXPECT_TRUE(answers.empty());
  scheduler.advance(0.001);
  EXPECT_EQ(answers.back().exitCode, 200);
  EXPECT_TRUE(commands.done.empty());
}

TEST_F(RequestDeskTest, answersAtTheDeadlineWhateverTheWorkDoes) {
  commands.atOnce.reset();
  const std::pair<Method, double> deadlines[] = {{Method::purgeMemory, 18.0},
                                                 {Method::flushDNS, 4.6},
                                                 {Method::killPID, 8.0},
                                                 {Method::moveLaunchAgentPlist, 3.8}};
  for (const auto& [method, seconds] : deadlines) {
    answers.clear();
    call(method);
    scheduler.advance(seconds - 0.001);
    EXPECT_TRUE(answers.empty()) << seconds;
    scheduler.advance(0.002);
    ASSERT_EQ(answers.size(), 1u) << seconds;
    EXPECT_EQ(answers[0].exitCode, ETIMEDOUT);
  }
}

TEST_F(RequestDeskTest, workKeepsItsPlaceAfterItsDeadline) {
  commands.atOnce.reset();
  call(Method::killPID);
  scheduler.advance(9.0);
  EXPECT_EQ(answers.size(), 1u);
  EXPECT_EQ(desk.inFlight(), 1u);
  std::move(commands.replies[0])({0, "late"});
  commands.replies.clear();
  scheduler.runReady();
  EXPECT_EQ(desk.inFlight(), 0u);
  EXPECT_EQ(answers.size(), 1u);
}

TEST_F(RequestDeskTest, aRequestStaysInFlightUntilItIsAnswered) {
  std::vector<std::size_t> answeredAtRelease;
  desk.onRelease([&] { answeredAtRelease.push_back(answers.size()); });
  codeOf(Method::killPID);
  EXPECT_EQ(answeredAtRelease, std::vector<std::size_t>{1});
}

TEST_F(RequestDeskTest, refusesTheNinthRequestOfAUserAndServesAnother) {
  commands.atOnce.reset();
  for (int i = 0; i < 8; ++i) call(Method::killPID);
  scheduler.runReady();
  EXPECT_TRUE(answers.empty());
  EXPECT_EQ(codeOf(Method::killPID), 202);

  call(Method::killPID, ":1.2");
  scheduler.runReady();
  EXPECT_EQ(commands.done.back(), "continue 4242 for 1001");
}

TEST_F(RequestDeskTest, refusesTheSixtyFifthRequest) {
  commands.atOnce.reset();
  for (unsigned user = 0; user < 8; ++user) {
    const std::string caller = ":2." + std::to_string(user);
    callers.users[caller] = 2000 + user;
    for (int i = 0; i < 8; ++i) call(Method::killPID, caller);
    scheduler.runReady();
  }
  EXPECT_TRUE(answers.empty());
  EXPECT_EQ(codeOf(Method::killPID), 202);
  EXPECT_EQ(desk.inFlight(), 64u);
}

TEST_F(RequestDeskTest, acceptsNoMoreWhileItLooksUpTheUsersOfThirtyTwoRequests) {
  callers.isSilent = true;
  for (int i = 0; i < 31; ++i) call(Method::killPID, ":3." + std::to_string(i));
  scheduler.runReady();
  EXPECT_TRUE(desk.takesMore());
  call(Method::killPID, ":3.31");
  scheduler.runReady();
  EXPECT_FALSE(desk.takesMore());
  EXPECT_TRUE(answers.empty());

  std::move(callers.unanswered[0])(1000u);
  scheduler.runReady();
  EXPECT_TRUE(desk.takesMore());
  EXPECT_EQ(commands.done, std::vector<std::string>{"continue 4242 for 1000"});
}

TEST_F(RequestDeskTest, aUserWithManyConnectionsTakesNoPlaceFromAnother) {
  commands.atOnce.reset();
  for (int i = 0; i < 64; ++i) {
    const std::string caller = ":3." + std::to_string(i);
    callers.users[caller] = 4001;
    for (int j = 0; j < 8; ++j) call(Method::killPID, caller);
    scheduler.runReady();
  }
  EXPECT_EQ(answers.size(), 512u - 8u);
  EXPECT_EQ(answers.back(), (HelperReply{202, "Too many requests of this user at once"}));
  EXPECT_TRUE(desk.takesMore());

  call(Method::killPID, ":1.2");
  scheduler.runReady();
  EXPECT_EQ(commands.done.back(), "continue 4242 for 1001");
  EXPECT_EQ(commands.done.size(), 9u);
}

TEST_F(RequestDeskTest, acceptsRequestsAgainWhenTheBusNeverNamesTheUsers) {
  callers.isSilent = true;
  for (int i = 0; i < 32; ++i) call(Method::killPID, ":3." + std::to_string(i));
  scheduler.runReady();
  EXPECT_FALSE(desk.takesMore());
  scheduler.advance(RequestDesk::Timing::identitySeconds);
  EXPECT_TRUE(desk.takesMore());
  EXPECT_EQ(desk.inFlight(), 0u);
}

TEST_F(RequestDeskTest, asksTheBusOnceForEachCaller) {
  codeOf(Method::killPID);
  codeOf(Method::purgeMemory);
  codeOf(Method::killPID, ":1.2");
  codeOf(Method::killPID);
  EXPECT_EQ(callers.asked, (std::vector<std::string>{":1.1", ":1.2"}));
  EXPECT_EQ(commands.done.back(), "continue 4242 for 1000");
}

TEST_F(RequestDeskTest, asksAgainForACallerWhoWasUnknownToTheBus) {
  codeOf(Method::killPID, ":1.77");
  callers.users[":1.77"] = 1077;
  EXPECT_EQ(codeOf(Method::killPID, ":1.77"), 0);
}

TEST_F(RequestDeskTest, remembersTwoHundredAndFiftySixCallersAtMost) {
  for (int i = 0; i < 257; ++i) {
    callers.users[":4." + std::to_string(i)] = 4000;
    codeOf(Method::killPID, ":4." + std::to_string(i));
  }
  callers.asked.clear();
  codeOf(Method::killPID, ":4.256");
  codeOf(Method::killPID, ":4.1");
  EXPECT_TRUE(callers.asked.empty());
  codeOf(Method::killPID, ":4.0");
  EXPECT_EQ(callers.asked, std::vector<std::string>{":4.0"});
}

TEST_F(RequestDeskTest, refusesTheTwentyFirstPrivilegedRequestInTenSeconds) {
  for (int i = 0; i < 20; ++i) EXPECT_EQ(codeOf(Method::purgeMemory), 0);
  EXPECT_EQ(codeOf(Method::flushDNS), 202);
  EXPECT_EQ(codeOf(Method::killPID), 0);
  EXPECT_EQ(codeOf(Method::purgeMemory, ":1.2"), 0);
  scheduler.advance(9.999);
  EXPECT_EQ(codeOf(Method::purgeMemory), 202);
  scheduler.advance(0.001);
  EXPECT_EQ(codeOf(Method::purgeMemory), 0);
}

TEST_F(RequestDeskTest, refusesTheThousandAndFirstOtherRequestInTenSeconds) {
  for (int i = 0; i < 1000; ++i) EXPECT_EQ(codeOf(Method::killPID), 0);
  EXPECT_EQ(codeOf(Method::killPID), 202);
  EXPECT_EQ(codeOf(Method::dumpBTM), 202);
  EXPECT_EQ(codeOf(Method::purgeMemory), 0);
  EXPECT_EQ(codeOf(Method::killPID, ":1.2"), 0);
}

TEST_F(RequestDeskTest, refusedRequestsDoNotCountAndTheWindowSlides) {
  for (int i = 0; i < 500; ++i) EXPECT_EQ(codeOf(Method::killPID), 0);
  scheduler.advance(5.0);
  for (int i = 0; i < 500; ++i) EXPECT_EQ(codeOf(Method::killPID), 0);
  for (int i = 0; i < 1000; ++i) EXPECT_EQ(codeOf(Method::killPID), 202);
  scheduler.advance(5.0);
  for (int i = 0; i < 500; ++i) EXPECT_EQ(codeOf(Method::killPID), 0);
  EXPECT_EQ(codeOf(Method::killPID), 202);
}

TEST_F(RequestDeskTest, malformedRequestsDoNotCount) {
  for (int i = 0; i < 1001; ++i) {
    submit({Method::killPID, ":1.1", KillArguments{0, 0}});
    scheduler.runReady();
    EXPECT_NE(answers.back().exitCode, 202);
  }
  EXPECT_EQ(codeOf(Method::killPID), 0);
}

TEST_F(RequestDeskTest, malformedRequestsAreAnsweredWithoutAskingPolkit) {
  submit({Method::moveLaunchAgentPlist, ":1.1", MoveArguments{"/etc/passwd", "/etc/passwd.vorli-disabled"}});
  scheduler.runReady();
  EXPECT_EQ(answers.back().exitCode, 1);
  EXPECT_TRUE(authority.asked.empty());
}

TEST_F(RequestDeskTest, aLargeRequestIsRefusedBeforeItsCallerIsLookedUp) {
  callers.isSilent = true;
  const std::string large(4097, 'x');
  submit({Method::moveLaunchAgentPlist, ":1.1", MoveArguments{"/" + large, "/a"}});
  submit({Method::moveLaunchAgentPlist, ":1.1", MoveArguments{"/a", large}});
  scheduler.runReady();
  EXPECT_EQ(answers.size(), 2u);
  EXPECT_TRUE(callers.asked.empty());
  EXPECT_EQ(desk.inFlight(), 0u);
  EXPECT_TRUE(lines[0].contains("uid=unknown"));
}

TEST_F(RequestDeskTest, writesOneLineForEachRequestWithItsCallerAndVerdict) {
  codeOf(Method::purgeMemory);
  authority.verdict = Verdict::denied;
  codeOf(Method::purgeMemory, ":1.2");
  submit({Method::killPID, ":1.9", KillArguments{5, 9}});
  scheduler.runReady();
  EXPECT_EQ(lines,
            (std::vector<std::string>{
                "request=1 caller=\":1.1\" uid=1000 method=PurgeMemory args=() verdict=granted exit=0 ms=0 "
                "text=\"done\"",
                "request=2 caller=\":1.2\" uid=1001 method=PurgeMemory args=() verdict=denied exit=200 ms=0 "
                "text=\"Not authorised\"",
                "request=3 caller=\":1.9\" uid=0 method=KillPID args=(5, 9) verdict=none exit=22 ms=0 "
                "text=\"Only the continue signal (19) is delivered\""}));
  EXPECT_EQ(importances,
            (std::vector{LogImportance::notice, LogImportance::warning, LogImportance::warning}));
}

TEST_F(RequestDeskTest, logsGrantedRequestsAboveThoseThatNeedNoGrant) {
  codeOf(Method::killPID);
  codeOf(Method::purgeMemory);
  codeOf(Method::dumpBTM);
  EXPECT_EQ(importances, (std::vector{LogImportance::detail, LogImportance::notice, LogImportance::warning}));
}

TEST_F(RequestDeskTest, aUserWithoutAGrantHasTwentyLinesInTenSeconds) {
  for (int i = 0; i < 20; ++i) codeOf(Method::killPID);
  EXPECT_EQ(lines.size(), 20u);
  for (int i = 0; i < 300; ++i) codeOf(Method::dumpBTM);
  EXPECT_EQ(lines.size(), 20u);
  codeOf(Method::dumpBTM, ":1.2");
  EXPECT_EQ(lines.size(), 21u);

  EXPECT_EQ(codeOf(Method::purgeMemory), 0);
  ASSERT_EQ(lines.size(), 22u);
  EXPECT_TRUE(lines.back().contains("method=PurgeMemory"));

  scheduler.advance(10.0);
  ASSERT_EQ(lines.size(), 23u);
  EXPECT_EQ(lines.back(), "300 more of user 1000");
  EXPECT_EQ(importances.back(), LogImportance::warning);
}

TEST_F(RequestDeskTest, refusalsOfPrivilegedRequestsAreCountedWithTheRest) {
  authority.verdict = Verdict::denied;
  for (int i = 0; i < 40; ++i) codeOf(Method::purgeMemory);
  EXPECT_EQ(lines.size(), 20u);
}

TEST_F(RequestDeskTest, answersHoldOnePrintableLine) {
  commands.atOnce = HelperReply{5, "two\nlines\x1b[2J" + std::string(2000, 'x')};
  call(Method::purgeMemory);
  scheduler.runReady();
  EXPECT_EQ(answers.back().output.substr(0, 16), "two lines [2Jxxx");
  EXPECT_EQ(answers.back().output.size(), 384u);
}

TEST_F(RequestDeskTest, mayBeDestroyedWithRequestsUnderWay) {
  authority.verdict.reset();
  auto brief = std::make_unique<RequestDesk>(scheduler, callers, authority, commands,
                                             [](LogImportance, const std::string&) {});
  brief->submit({Method::purgeMemory, ":1.1", {}}, OnceReply<HelperReply>([](HelperReply) { FAIL(); }));
  scheduler.runReady();
  brief.reset();
  std::move(authority.unanswered[0])(Verdict::granted);
  scheduler.advance(60.0);
  EXPECT_TRUE(commands.done.empty());
}

}  // namespace
}  // namespace vorli::daemon
