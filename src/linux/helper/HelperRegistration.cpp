#include "linux/helper/HelperRegistration.h"

#include "contract/HelperActions.h"
#include "linux/bus/BusDriver.h"
#include "linux/helper/BusCalls.h"

#include <utility>

namespace vorli::linuxhost {

namespace {

using Verdict = PolkitAuthority::Verdict;
using Interaction = PolkitAuthority::Interaction;

const std::string systemdName = "org.freedesktop.systemd1";
const std::string helperUnit = "vorli-helper.service";

}  // namespace

std::shared_ptr<HelperRegistration> HelperRegistration::on(SystemBus& bus,
                                                           std::shared_ptr<HelperNameWatch> watch,
                                                           HelperFiles files) {
  const auto polkit = std::make_shared<PolkitAuthority>();
  bus.attach(polkit);
  std::shared_ptr<HelperRegistration> registration(
      new HelperRegistration(std::move(watch), polkit, std::move(files)));
  bus.attach(registration);
  return registration;
}

HelperRegistration::HelperRegistration(std::shared_ptr<HelperNameWatch> watch,
                                       std::shared_ptr<PolkitAuthority> polkit, HelperFiles files)
    : watch_(std::move(watch)), polkit_(std::move(polkit)), files_(std::move(files)) {}

void HelperRegistration::connected(sdbus::IConnection& connection) {
  connection_ = &connection;
  bus_ = bus::proxy(connection, bus::driver::service, bus::driver::path);
  manager_ = bus::proxy(connection, systemdName, "/org/freedesktop/systemd1");
}

void HelperRegistration::disconnected() {
  unit_.reset();
  manager_.reset();
  bus_.reset();
  connection_ = nullptr;
  finish(noSystemBus);
}

void HelperRegistration::setChangeHandler(std::function<void()> handler) {
  watch_->setChangeHandler(handler);
  polkit_->setChangeHandler(std::move(handler));
}

void HelperRegistration::readStatus(std::function<void(int)> done) {
  waitingForNext_.push_back(std::move(done));
  if (!isReading_) startReading();
}

void HelperRegistration::startReading() {
  isReading_ = true;
  waiting_ = std::exchange(waitingForNext_, {});
  watch_->refresh([weak = weak_from_this()] {
    if (const auto registration = weak.lock()) registration->judgePresence();
  });
}

void HelperRegistration::judgePresence() {
  switch (watch_->presence()) {
    case HelperNameWatch::Presence::unknown:
    case HelperNameWatch::Presence::noBus:
      return finish(noSystemBus);
    case HelperNameWatch::Presence::absent:
      return finish(files_.hasDaemon() ? notRegistered : notFound);
    case HelperNameWatch::Presence::activatable:
      return askForServiceManager();
    case HelperNameWatch::Presence::owned:
      return askPolkit();
  }
}

// Asks systemd, if it runs: it starts the daemon, so its answer is the most reliable one. On other systems
// the bus's answer is enough.
void HelperRegistration::askForServiceManager() {
  if (!bus_) return finish(noSystemBus);
  bus_->callMethodAsync("NameHasOwner")
      .onInterface(bus::driver::interface)
      .withTimeout(shortLimitMicroseconds)
      .withArguments(systemdName)
      .uponReplyInvoke([this](bus::Failure error, bool isThere) {
        if (error || !isThere) return askPolkit();
        loadUnit();
      });
}

void HelperRegistration::loadUnit() {
  manager_->callMethodAsync("LoadUnit")
      .onInterface("org.freedesktop.systemd1.Manager")
      .withTimeout(shortLimitMicroseconds)
      .withArguments(helperUnit)
      .uponReplyInvoke([this](bus::Failure error, const sdbus::ObjectPath& unit) {
        if (!error) return askForLoadState(unit);
        const std::string& name = error->getName();
        if (name == "org.freedesktop.systemd1.NoSuchUnit") return finish(noUnit);
        if (name == "org.freedesktop.systemd1.UnitMasked") return finish(requiresApproval, Lack::unit);
        askPolkit();
      });
}

void HelperRegistration::askForLoadState(const std::string& unitPath) {
  unit_ = bus::proxy(*connection_, systemdName, unitPath);
  unit_->callMethodAsync("Get")
      .onInterface("org.freedesktop.DBus.Properties")
      .withTimeout(shortLimitMicroseconds)
      .withArguments(std::string("org.freedesktop.systemd1.Unit"), std::string("LoadState"))
      .uponReplyInvoke([this](bus::Failure error, const sdbus::Variant& loadState) {
        if (error || !loadState.containsValueOfType<std::string>()) return askPolkit();
        judgeLoadState(loadState.get<std::string>());
      });
}

void HelperRegistration::judgeLoadState(const std::string& loadState) {
  if (loadState == "masked") return finish(requiresApproval, Lack::unit);
  if (loadState == "not-found") return finish(noUnit);
  askPolkit();
}

void HelperRegistration::askPolkit() {
  polkit_->check(helper::action::purgeMemory, Interaction::none, [weak = weak_from_this()](Verdict verdict) {
    const auto registration = weak.lock();
    if (!registration) return;
    switch (verdict) {
      case Verdict::authorized:
        return registration->finish(enabled);
      case Verdict::needsPassword:
      case Verdict::dismissed:
        return registration->finish(requiresApproval, Lack::password);
      case Verdict::refused:
        return registration->finish(requiresApproval, Lack::permission);
      case Verdict::unknownAction:
        return registration->finish(notRegistered);
      case Verdict::unreachable:
        return registration->finish(noPolkit);
    }
  });
}

void HelperRegistration::finish(int status, Lack lack) {
  lack_ = lack;
  for (const auto& done : std::exchange(waiting_, {})) done(status);
  isReading_ = false;
  if (!waitingForNext_.empty()) startReading();
}

void HelperRegistration::readStartupItemConsent(std::function<void(ports::Consent)> done) {
  polkit_->check(helper::action::moveStartupItem, Interaction::none,
                 [done = std::move(done)](Verdict verdict) {
                   const bool isMissing = verdict == Verdict::needsPassword || verdict == Verdict::refused;
                   done(isMissing ? ports::Consent::missing : ports::Consent::granted);
                 });
}

void HelperRegistration::askForApproval(std::function<void(Outcome)> done) {
  readStatus([weak = weak_from_this(), done = std::move(done)](int status) {
    const auto registration = weak.lock();
    if (!registration) return;
    const auto answer = [done, status](Approval approval) { done({approval, status}); };
    switch (registration->lack_) {
      case Lack::nothing:
        return answer(Approval::notMissing);
      case Lack::password:
        return registration->promptFor(helper::action::purgeMemory, answer);
      case Lack::permission:
        return answer(Approval::refused);
      case Lack::unit:
        return answer(Approval::masked);
    }
  });
}

void HelperRegistration::askForStartupItemConsent(std::function<void(Outcome)> done) {
  polkit_->check(helper::action::moveStartupItem, Interaction::none,
                 [weak = weak_from_this(), done = std::move(done)](Verdict verdict) {
                   const auto registration = weak.lock();
                   if (!registration) return;
                   const auto answer = [done](Approval approval) { done({approval, std::nullopt}); };
                   if (verdict == Verdict::needsPassword)
                     return registration->promptFor(helper::action::moveStartupItem, answer);
                   if (verdict == Verdict::refused) return answer(Approval::refused);
                   registration->askForApproval(done);
                 });
}

// When there is nobody to ask, polkit answers as it does without interaction.
void HelperRegistration::promptFor(const std::string& action, std::function<void(Approval)> done) {
  polkit_->check(action, Interaction::mayAskTheUser, [done = std::move(done)](Verdict verdict) {
    switch (verdict) {
      case Verdict::authorized:
        return done(Approval::granted);
      case Verdict::dismissed:
      case Verdict::refused:
        return done(Approval::declined);
      case Verdict::needsPassword:
        return done(Approval::nobodyToAsk);
      case Verdict::unknownAction:
      case Verdict::unreachable:
        return done(Approval::notMissing);
    }
  });
}

}  // namespace vorli::linuxhost
