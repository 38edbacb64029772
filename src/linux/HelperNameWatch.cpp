#include "linux/HelperNameWatch.h"

#include "helper/HelperProtocol.h"

#include <algorithm>
#include <string>
#include <utility>

namespace vorli::linuxhost {

namespace {

const std::string busName = "org.freedesktop.DBus";
const std::string helperName(helper::serviceName);

// Named by its first argument: every other program that comes or goes would wake us too.
const std::string ownerMatch =
    "type='signal',sender='" + busName + "',member='NameOwnerChanged',arg0='" + helperName + "'";
const std::string activatablesMatch =
    "type='signal',sender='" + busName + "',member='ActivatableServicesChanged'";

// A daemon comes with each call and goes when idle: that is no news.
HelperNameWatch::Presence withoutOwner(HelperNameWatch::Presence presence) {
  using Presence = HelperNameWatch::Presence;
  return presence == Presence::owned ? Presence::activatable : presence;
}

}  // namespace

std::shared_ptr<HelperNameWatch> HelperNameWatch::on(SystemBus& bus) {
  std::shared_ptr<HelperNameWatch> watch(new HelperNameWatch());
  bus.attach(watch);
  return watch;
}

bool HelperNameWatch::mayLeadToDaemon() const {
  const Presence presence = presence_;
  return presence != Presence::noBus && presence != Presence::absent;
}

void HelperNameWatch::connected(sdbus::IConnection& connection) {
  bus_ = sdbus::createProxy(connection, busName, "/org/freedesktop/DBus");
  matches_.push_back(
      connection.addMatch(ownerMatch, [this](sdbus::Message& signal) { ownerChanged(signal); }));
  matches_.push_back(connection.addMatch(activatablesMatch, [this](sdbus::Message&) { refresh(nullptr); }));
  refresh(nullptr);
}

void HelperNameWatch::disconnected() {
  matches_.clear();
  bus_.reset();
  asking_ = 0;
  owned_ = activatable_ = false;
  publish(Presence::noBus);
  for (const auto& done : std::exchange(waiting_, {})) done();
}

void HelperNameWatch::refresh(std::function<void()> done) {
  if (!bus_) {
    if (done) done();
    return;
  }
  if (done) waiting_.push_back(std::move(done));
  asking_ += 2;
  askForOwner();
  askForActivatables();
}

void HelperNameWatch::askForOwner() {
  bus_->callMethodAsync("NameHasOwner")
      .onInterface(busName)
      .withArguments(helperName)
      .uponReplyInvoke([this](const sdbus::Error* error, bool owned) {
        if (!error) owned_ = owned;
        answered();
      });
}

void HelperNameWatch::askForActivatables() {
  bus_->callMethodAsync("ListActivatableNames")
      .onInterface(busName)
      .uponReplyInvoke([this](const sdbus::Error* error, const std::vector<std::string>& names) {
        if (!error) activatable_ = std::ranges::find(names, helperName) != names.end();
        answered();
      });
}

void HelperNameWatch::answered() {
  if (--asking_ > 0) return;
  publish(owned_ ? Presence::owned : activatable_ ? Presence::activatable : Presence::absent);
  for (const auto& done : std::exchange(waiting_, {})) done();
}

void HelperNameWatch::ownerChanged(sdbus::Message& signal) {
  std::string name, before, now;
  try {
    signal >> name >> before >> now;
  } catch (const sdbus::Error&) {
    return;  // the bus itself never sends another signature
  }
  owned_ = !now.empty();
  if (presence_ == Presence::unknown) return;
  publish(owned_ ? Presence::owned : activatable_ ? Presence::activatable : Presence::absent);
}

void HelperNameWatch::publish(Presence presence) {
  const Presence before = presence_.exchange(presence);
  if (changed_ && before != Presence::unknown && withoutOwner(before) != withoutOwner(presence)) changed_();
}

}  // namespace vorli::linuxhost
