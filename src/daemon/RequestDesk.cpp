#include "daemon/RequestDesk.h"

#include "base/DeadlineRace.h"
#include "contract/ExitCode.h"
#include "daemon/LogLine.h"

#include <algorithm>
#include <cerrno>
#include <utility>

namespace vorli::daemon {

namespace {

HelperReply refusalFor(Verdict verdict) {
  switch (verdict) {
    case Verdict::authenticationNeeded:
      return {helper::exit_code::authenticationNeeded, "Authentication is needed"};
    case Verdict::denied:
      return {helper::exit_code::notAuthorised, "Not authorised"};
    default:
      return {helper::exit_code::notAuthorised, "Not authorised: the authority gave no answer"};
  }
}

constexpr UserId root = 0;

HelperReply strangerReply() {
  return {helper::exit_code::notAuthorised,
          "Not authorised: the caller's process has ended or is another user's"};
}

using Admission = RequestLimits::Admission;

HelperReply busyReply(Admission admission) {
  const bool isFull = admission == Admission::full;
  return {helper::exit_code::busy,
          isFull ? "Too many requests at once" : "Too many requests of this user at once"};
}

// No valid request is this large. A larger one is not kept in memory while its user is looked up: the bus
// allows messages of 32 MiB.
bool isLarge(const Request& request) {
  constexpr std::size_t largestArgument = 4096;
  const auto* move = std::get_if<MoveArguments>(&request.arguments);
  return move && (move->from.size() > largestArgument || move->to.size() > largestArgument);
}

LogImportance importanceOf(bool isGranted, const HelperReply& answer) {
  if (answer.exitCode != helper::exit_code::done) return LogImportance::warning;
  return isGranted ? LogImportance::notice : LogImportance::detail;
}

// The part of the order that is shown to rules and logs.
std::string subjectOf(const Order& order) {
  const auto* move = std::get_if<MoveOrder>(&order);
  return move ? move->fromName : std::string();
}

// Holds the request's place until the work ends, even if the answer was sent long before.
OnceReply<HelperReply> holding(std::shared_ptr<RequestLimits::Place> place, OnceReply<HelperReply> reply) {
  return OnceReply<HelperReply>([place = std::move(place), reply = std::move(reply)](
                                    HelperReply value) mutable { std::move(reply)(std::move(value)); });
}

}  // namespace

RequestDesk::RequestDesk(Scheduler& scheduler, Callers& callers, Authority& authority, Commands& commands,
                         LogSink log)
    : scheduler_(scheduler),
      callers_(callers),
      authority_(authority),
      commands_(commands),
      log_(std::move(log)),
      budget_(scheduler, [this](LogBudget::User user, std::size_t count) { tellLeftOut(user, count); }),
      limits_(scheduler),
      tasks_(scheduler) {}

void RequestDesk::submit(Request request, OnceReply<HelperReply> reply) {
  auto entry = std::make_shared<Case>();
  entry->request = std::move(request);
  entry->user = book_.userOf(entry->request.caller);
  entry->place = limits_.admit();
  entry->serial = ++lastSerial_;
  entry->startedAt = scheduler_.now();
  tasks_.spawn(serve(std::move(entry), std::move(reply)));
}

Task<> RequestDesk::serve(SharedCase entry, OnceReply<HelperReply> reply) {
  auto answer = co_await decide(entry);
  answer.output = answerText(answer.output);
  close(*entry, answer);
  std::move(reply)(std::move(answer));
}

Task<HelperReply> RequestDesk::decide(SharedCase entry) {
  const auto order = decode(entry->request);
  if (!order) {
    // The user is still looked up, for the log.
    if (!isLarge(entry->request)) co_await identify(entry);
    co_return order.error();
  }

  co_await identify(entry);
  if (!entry->user)
    co_return HelperReply{helper::exit_code::notAuthorised, "The bus does not tell who is calling"};
  if (const auto admission = entry->place->assignTo(*entry->user); admission != Admission::admitted)
    co_return busyReply(admission);

  const bool isPrivileged = !rulesOf(entry->request.method).action.empty();
  if (!(isPrivileged ? entry->place->countPrivileged() : entry->place->countOther()))
    co_return HelperReply{helper::exit_code::busy, "Too many requests of this user lately"};

  if (isPrivileged) {
    co_await holdProcess(entry);
    if (!hasOwnProcess(*entry)) co_return strangerReply();
    co_await authorise(entry, subjectOf(*order));
    if (entry->verdict != Verdict::granted) co_return refusalFor(entry->verdict);
    // If the held process has ended, polkit may have judged another process with the same number.
    if (!hasOwnProcess(*entry)) {
      entry->verdict = Verdict::denied;
      co_return strangerReply();
    }
  }

  DeadlineRace<HelperReply> work(scheduler_, left(*entry));
  act(*order, Permit(*entry->user), holding(entry->place, work.reply()));
  auto answer = co_await work;
  if (!answer) co_return HelperReply{ETIMEDOUT, "Not done in time; the work goes on"};
  co_return std::move(*answer);
}

Task<> RequestDesk::identify(SharedCase entry) {
  if (entry->user) co_return;
  DeadlineRace<std::optional<UserId>> identity(scheduler_, std::min(Timing::identitySeconds, left(*entry)));
  callers_.userOf(entry->request.caller, identity.reply());
  const auto told = co_await identity;
  if (!told || !*told) co_return;
  entry->user = *told;
  book_.note(entry->request.caller, **told);
}

// Polkit judges the process whose number the bus recorded when the caller connected. Root is not judged.
Task<> RequestDesk::holdProcess(SharedCase entry) {
  if (*entry->user == root) co_return;
  DeadlineRace<std::shared_ptr<CallerProcess>> answer(scheduler_,
                                                      std::min(Timing::identitySeconds, left(*entry)));
  callers_.processOf(entry->request.caller, *entry->user, answer.reply());
  auto process = co_await answer;
  if (process) entry->process = std::move(*process);
}

bool RequestDesk::hasOwnProcess(const Case& entry) {
  return *entry.user == root || (entry.process && entry.process->isThere());
}

Task<> RequestDesk::authorise(SharedCase entry, std::string subject) {
  DeadlineRace<Verdict> answer(scheduler_, std::min(Timing::authorisationSeconds, left(*entry)));
  authority_.check(entry->request.caller, rulesOf(entry->request.method).action, subject, answer.reply());
  const auto verdict = co_await answer;
  entry->verdict = verdict.value_or(Verdict::error);
}

double RequestDesk::left(const Case& entry) const {
  return entry.startedAt + rulesOf(entry.request.method).deadlineSeconds - scheduler_.now();
}

void RequestDesk::act(const Order& order, Permit permit, OnceReply<HelperReply> reply) {
  if (std::holds_alternative<PurgeOrder>(order)) {
    commands_.purgeMemory(std::move(permit), std::move(reply));
  } else if (std::holds_alternative<FlushOrder>(order)) {
    commands_.flushDNS(std::move(permit), std::move(reply));
  } else if (const auto* resume = std::get_if<ContinueOrder>(&order)) {
    commands_.continueProcess(std::move(permit), resume->pid, std::move(reply));
  } else if (const auto* move = std::get_if<MoveOrder>(&order)) {
    commands_.moveStartupItem(std::move(permit), *move, std::move(reply));
  } else {
    std::move(reply)(HelperReply{helper::exit_code::notSupported, "Not supported on this system"});
  }
}

// Granted requests are always logged: polkit and the limit of privileged requests already bound their number.
void RequestDesk::close(const Case& entry, const HelperReply& answer) {
  const bool isGranted = entry.verdict == Verdict::granted;
  if (!isGranted && !budget_.take(entry.user)) return;
  log_(importanceOf(isGranted, answer), logLine({.serial = entry.serial,
                                                 .request = entry.request,
                                                 .user = entry.user,
                                                 .verdict = entry.verdict,
                                                 .reply = answer,
                                                 .seconds = scheduler_.now() - entry.startedAt}));
}

void RequestDesk::tellLeftOut(LogBudget::User user, std::size_t count) {
  const auto whose = user ? "user " + std::to_string(*user) : std::string("unknown users");
  log_(LogImportance::warning, std::to_string(count) + " more of " + whose);
}

}  // namespace vorli::daemon
