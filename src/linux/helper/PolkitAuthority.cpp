#include "linux/helper/PolkitAuthority.h"

#include "linux/helper/BusCalls.h"

#include <cstdint>
#include <utility>

namespace vorli::linuxhost {

namespace {

const std::string polkitName = "org.freedesktop.PolicyKit1";
const std::string polkitInterface = "org.freedesktop.PolicyKit1.Authority";
const std::string changedMatch =
    "type='signal',sender='" + polkitName + "',interface='" + polkitInterface + "',member='Changed'";

constexpr std::uint32_t allowUserInteraction = 1;
constexpr std::uint64_t checkLimitMicroseconds = 3'000'000;

using Details = std::map<std::string, std::string>;
using Subject = sdbus::Struct<std::string, std::map<std::string, sdbus::Variant>>;
using Result = sdbus::Struct<bool, bool, Details>;

PolkitAuthority::Verdict verdictOf(const bus::Failure& error, const Result& result) {
  using Verdict = PolkitAuthority::Verdict;
  if (error) {
    // polkit has no error name of its own for this.
    const bool isUnknown = error->getName() == "org.freedesktop.PolicyKit1.Error.Failed" &&
                           error->getMessage().contains("is not registered");
    return isUnknown ? Verdict::unknownAction : Verdict::unreachable;
  }
  if (std::get<0>(result)) return Verdict::authorized;
  if (std::get<2>(result).contains("polkit.dismissed")) return Verdict::dismissed;
  return std::get<1>(result) ? Verdict::needsPassword : Verdict::refused;
}

}  // namespace

void PolkitAuthority::connected(sdbus::IConnection& connection) {
  ownName_ = connection.getUniqueName();
  authority_ = bus::proxy(connection, polkitName, "/org/freedesktop/PolicyKit1/Authority");
  match_ = bus::match(connection, changedMatch, [this](sdbus::Message&) {
    if (changed_) changed_();
  });
}

void PolkitAuthority::disconnected() {
  match_.reset();
  authority_.reset();
  for (const auto& [check, done] : std::exchange(out_, {})) done(Verdict::unreachable);
}

void PolkitAuthority::check(const std::string& action, Interaction interaction,
                            std::function<void(Verdict)> done) {
  if (!authority_) return done(Verdict::unreachable);
  const bool mayAsk = interaction == Interaction::mayAskTheUser;
  const Subject subject{"system-bus-name", {{"name", sdbus::Variant(ownName_)}}};
  const std::uint64_t check = ++lastCheck_;
  out_.emplace(check, std::move(done));
  try {
    authority_->callMethodAsync("CheckAuthorization")
        .onInterface(polkitInterface)
        .withTimeout(mayAsk ? noLimit : checkLimitMicroseconds)
        .withArguments(subject, action, Details(), mayAsk ? allowUserInteraction : 0U, std::string())
        .uponReplyInvoke([this, check](bus::Failure error, const Result& result) {
          finish(check, verdictOf(error, result));
        });
  } catch (const sdbus::Error&) {
    finish(check, Verdict::unreachable);
  }
}

void PolkitAuthority::finish(std::uint64_t check, Verdict verdict) {
  if (auto node = out_.extract(check)) node.mapped()(verdict);
}

}  // namespace vorli::linuxhost
