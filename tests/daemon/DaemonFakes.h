#pragma once

#include "daemon/Authority.h"
#include "daemon/Callers.h"
#include "daemon/Commands.h"
#include "daemon/DNSCache.h"
#include "daemon/MemoryControl.h"
#include "daemon/ProcessControl.h"
#include "daemon/StartupFolders.h"
#include "daemon/Workers.h"
#include "tests/fakes/ManualScheduler.h"

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace vorli::daemon {

class PermitForTests {
 public:
  static Permit of(UserId user) { return Permit(user); }
};

/// Holds every question until the test answers it, or answers at once.
struct FakeCallers final : Callers {
  std::map<std::string, UserId> users{{":1.1", 1000}, {":1.2", 1001}, {":1.9", 0}};
  bool isSilent = false;
  std::vector<std::string> asked;
  std::vector<OnceReply<std::optional<UserId>>> unanswered;
  /// Set to nothing: no caller has a process of its own.
  struct Process final : CallerProcess {
    bool hasEnded = false;
    bool isThere() override { return !hasEnded; }
  };
  std::shared_ptr<Process> process = std::make_shared<Process>();
  std::vector<std::pair<std::string, UserId>> held;

  void processOf(const std::string& caller, UserId user,
                 OnceReply<std::shared_ptr<CallerProcess>> reply) override {
    held.emplace_back(caller, user);
    std::move(reply)(process);
  }
  void userOf(const std::string& caller, OnceReply<std::optional<UserId>> reply) override {
    asked.push_back(caller);
    if (isSilent) return unanswered.push_back(std::move(reply));
    const auto user = users.find(caller);
    std::move(reply)(user == users.end() ? std::nullopt : std::optional(user->second));
  }
};

struct FakeAuthority final : Authority {
  struct Question {
    std::string caller, action, subject;
    bool operator==(const Question&) const = default;
  };
  std::optional<Verdict> verdict = Verdict::granted;  // nothing: the question hangs
  std::vector<Question> asked;
  std::vector<OnceReply<Verdict>> unanswered;

  void check(const std::string& caller, std::string_view action, const std::string& subject,
             OnceReply<Verdict> reply) override {
    asked.push_back({caller, std::string(action), subject});
    if (verdict) return std::move(reply)(*verdict);
    unanswered.push_back(std::move(reply));
  }
};

/// Records each command and its caller, and leaves the answer to the test.
struct FakeCommands final : Commands {
  std::vector<std::string> done;
  std::deque<OnceReply<HelperReply>> replies;
  std::optional<HelperReply> atOnce = HelperReply{0, "done"};

  void purgeMemory(Permit permit, OnceReply<HelperReply> reply) override {
    note("purge", permit, std::move(reply));
  }
  void flushDNS(Permit permit, OnceReply<HelperReply> reply) override {
    note("flush", permit, std::move(reply));
  }
  void continueProcess(Permit permit, std::int32_t pid, OnceReply<HelperReply> reply) override {
    note("continue " + std::to_string(pid), permit, std::move(reply));
  }
  void moveStartupItem(Permit permit, MoveOrder order, OnceReply<HelperReply> reply) override {
    note("move " + order.fromName + " to " + order.toName, permit, std::move(reply));
  }

 private:
  void note(const std::string& what, const Permit& permit, OnceReply<HelperReply> reply) {
    done.push_back(what + " for " + std::to_string(permit.user()));
    if (atOnce) return std::move(reply)(*atOnce);
    replies.push_back(std::move(reply));
  }
};

/// Holds work until the test runs it.
struct FakeWorkers final : Workers {
  std::deque<UniqueFunction<void()>> posted;

  void post(UniqueFunction<void()> work) override { posted.push_back(std::move(work)); }
  void runOne() {
    auto work = std::move(posted.front());
    posted.pop_front();
    work();
  }
};

struct FakeMemory final : MemoryControl {
  fakes::ManualScheduler& clock;
  std::vector<std::string> calls;
  std::optional<MemoryReading> before, after;
  double syncTakes = 0.1;
  std::expected<void, SystemError> pageCache, slab, compaction;

  explicit FakeMemory(fakes::ManualScheduler& clock) : clock(clock) {}

  std::optional<MemoryReading> read() override {
    calls.push_back("read");
    return calls.size() == 1 ? before : after;
  }
  bool syncWithin(double seconds) override {
    calls.push_back("sync");
    clock.advanceClockOnly(std::min(seconds, syncTakes));
    return syncTakes <= seconds;
  }
  std::expected<void, SystemError> dropPageCache() override { return call("pages", pageCache); }
  std::expected<void, SystemError> dropSlab() override { return call("slab", slab); }
  std::expected<void, SystemError> compact() override { return call("compact", compaction); }

 private:
  std::expected<void, SystemError> call(const char* name, const std::expected<void, SystemError>& result) {
    calls.push_back(name);
    return result;
  }
};

struct FakeDNSCache final : DNSCache {
  std::string text;
  std::optional<Outcome> outcome;  // nothing: it hangs
  std::vector<double> limits;
  std::vector<OnceReply<Outcome>> unanswered;

  FakeDNSCache(std::string name, std::optional<Outcome> outcome)
      : text(std::move(name)), outcome(std::move(outcome)) {}

  std::string_view name() const override { return text; }
  void flush(double seconds, OnceReply<Outcome> reply) override {
    limits.push_back(seconds);
    if (outcome) return std::move(reply)(*outcome);
    unanswered.push_back(std::move(reply));
  }
};

struct FakeProcesses final : ProcessControl {
  struct Process {
    std::optional<std::array<UserId, 4>> users;
    bool isThere = true;
    std::expected<void, SystemError> resumed;
  };
  std::map<std::int32_t, Process> processes;
  std::vector<std::int32_t> resumed;

  std::expected<std::unique_ptr<PinnedProcess>, SystemError> pin(std::int32_t pid) override {
    const auto found = processes.find(pid);
    if (found == processes.end()) return std::unexpected(SystemError{3, "No such process"});
    return std::make_unique<Pinned>(*this, pid, found->second);
  }

 private:
  struct Pinned final : PinnedProcess {
    FakeProcesses& owner;
    std::int32_t pid;
    Process process;
    Pinned(FakeProcesses& owner, std::int32_t pid, Process process)
        : owner(owner), pid(pid), process(std::move(process)) {}
    std::optional<std::array<UserId, 4>> users() override { return process.users; }
    bool isThere() override { return process.isThere; }
    std::expected<void, SystemError> resume() override {
      owner.resumed.push_back(pid);
      return process.resumed;
    }
  };
};

struct FakeFolders final : StartupFolders {
  std::function<HelperReply(const MoveOrder&)> answer = [](const MoveOrder&) {
    return HelperReply{0, "Moved"};
  };
  HelperReply move(const MoveOrder& order) override { return answer(order); }
};

}  // namespace vorli::daemon
