#include "daemon/RequestDesk.h"

#include "base/DeadlineRace.h"
#include "daemon/ExitCode.h"
#include "daemon/LogLine.h"

#include <algorithm>
#include <cerrno>
#include <utility>

namespace vorli::daemon {

namespace {

HelperReply refusalFor(Verdict verdict) {
  switch (verdict) {
    case Verdict::authenticationNeeded:
      return {exit_code::authenticationNeeded, "Authentication is needed"};
    case Verdict::denied:
      return {exit_code::notAuthorised, "Not authorised"};
    default:
      return {exit_code::notAuthorised, "Not authorised: the authority gave no answer"};
  }
}

// No sound request comes near this. One that does is not kept for as long as it takes to ask whose it is:
// the bus lets 32 MiB through.
bool isLarge(const Request& request) {
  constexpr std::size_t largestArgument = 4096;
  const auto* move = std::get_if<MoveArguments>(&request.arguments);
  return move && (move->from.size() > largestArgument || move->to.size() > largestArgument);
}

// What rules and logs may know of the order.
std::string subjectOf(const Order& order) {
  const auto* move = std::get_if<MoveOrder>(&order);
  return move ? move->fromName : std::string();
}

// The work keeps its place until it ends, even when its answer is long given.
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
      limits_(scheduler),
      tasks_(scheduler) {}

void RequestDesk::submit(Request request, OnceReply<HelperReply> reply) {
  auto entry = std::make_shared<Case>();
  entry->request = std::move(request);
  entry->user = book_.userOf(entry->request.caller);
  entry->place = entry->user ? limits_.admit() : limits_.admitUnidentified(entry->request.caller);
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
    // Whose it was is still worth writing down.
    if (entry->place && !isLarge(entry->request)) co_await identify(entry);
    co_return order.error();
  }

  if (!entry->place) co_return HelperReply{exit_code::busy, "Too many requests at once"};
  co_await identify(entry);
  if (!entry->user) co_return HelperReply{exit_code::notAuthorised, "The bus does not tell who is calling"};
  if (!entry->place->assignTo(*entry->user))
    co_return HelperReply{exit_code::busy, "Too many requests of this user at once"};

  if (!rulesOf(entry->request.method).action.empty()) {
    if (!entry->place->countPrivileged())
      co_return HelperReply{exit_code::busy, "Too many requests of this user lately"};
    co_await authorise(entry, subjectOf(*order));
    if (entry->verdict != Verdict::granted) co_return refusalFor(entry->verdict);
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
    std::move(reply)(HelperReply{exit_code::notSupported, "Not supported on this system"});
  }
}

void RequestDesk::close(const Case& entry, const HelperReply& answer) {
  const auto importance = answer.exitCode == exit_code::done ? LogImportance::notice : LogImportance::warning;
  log_(importance, logLine({.serial = entry.serial,
                            .request = entry.request,
                            .user = entry.user,
                            .verdict = entry.verdict,
                            .reply = answer,
                            .seconds = scheduler_.now() - entry.startedAt}));
}

}  // namespace vorli::daemon
