#include "daemon/DNSFlush.h"

#include "base/DeadlineRace.h"

#include <algorithm>
#include <cerrno>
#include <string>

namespace vorli::daemon {

namespace {

void append(std::string& list, std::string_view item) {
  if (!list.empty()) list += ", ";
  list += item;
}

HelperReply summary(const std::string& flushed, const std::string& failed, std::int32_t code) {
  if (flushed.empty() && failed.empty()) return {0, "No local DNS cache is running"};
  std::string text;
  if (!flushed.empty()) text = "Flushed " + flushed;
  if (!failed.empty()) text += (text.empty() ? "Failed: " : "; failed: ") + failed;
  return {code, text};
}

}  // namespace

Task<> DNSFlush::flushAll(OnceReply<HelperReply> reply) {
  const double deadline = scheduler_.now() + Timing::totalSeconds;
  std::string flushed;
  std::string failed;
  std::int32_t code = 0;
  for (auto* cache : caches_) {
    if (deadline - scheduler_.now() < Timing::leastSeconds) {
      append(failed, std::string(cache->name()) + " (no time left)");
      continue;
    }
    const auto outcome = co_await flushOne(cache, deadline);
    if (outcome.state == DNSCache::Outcome::State::flushed) append(flushed, cache->name());
    if (outcome.state != DNSCache::Outcome::State::failed) continue;
    append(failed, std::string(cache->name()) + " (" + outcome.error.text + ")");
    if (code == 0) code = outcome.error.code;
  }
  std::move(reply)(summary(flushed, failed, code));
}

Task<DNSCache::Outcome> DNSFlush::flushOne(DNSCache* cache, double deadline) {
  const double limit = std::min(Timing::cacheSeconds, deadline - scheduler_.now());
  DeadlineRace<DNSCache::Outcome> race(scheduler_, limit);
  cache->flush(limit, race.reply());
  const auto outcome = co_await race;
  co_return outcome.value_or(DNSCache::Outcome{DNSCache::Outcome::State::failed, {ETIMEDOUT, "no answer"}});
}

}  // namespace vorli::daemon
