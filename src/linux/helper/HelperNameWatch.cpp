#include "linux/helper/HelperNameWatch.h"

#include "contract/HelperProtocol.h"
#include "linux/bus/BusDriver.h"
#include "linux/helper/BusCalls.h"

#include <algorithm>
#include <string>
#include <utility>

namespace vorli::linuxhost {

namespace {

const std::string helperName(helper::serviceName);

// Filters by the first argument: otherwise every program that connects or disconnects would wake this one.
const std::string ownerMatch = std::string("type='signal',sender='") + bus::driver::service +
                               "',member='NameOwnerChanged',arg0='" + helperName + "'";
const std::string activatablesMatch =
    std::string("type='signal',sender='") + bus::driver::service + "',member='ActivatableServicesChanged'";

// Treats an owned name as activatable: a daemon starts with each call and exits when idle, which is no
// change.
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
  bus_ = bus::proxy(connection, bus::driver::service, bus::driver::path);
  matches_.push_back(
      bus::match(connection, ownerMatch, [this](sdbus::Message& signal) { ownerChanged(signal); }));
  matches_.push_back(
      bus::match(connection, activatablesMatch, [this](sdbus::Message&) { refresh(nullptr); }));
  refresh(nullptr);
}

void HelperNameWatch::disconnected() {
  matches_.clear();
  bus_.reset();
  asking_ = 0;
  owned_.reset();
  activatable_.reset();
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
      .onInterface(bus::driver::interface)
      .withArguments(helperName)
      .uponReplyInvoke([this](bus::Failure error, bool owned) {
        if (!error) owned_ = owned;
        answered();
      });
}

void HelperNameWatch::askForActivatables() {
  bus_->callMethodAsync("ListActivatableNames")
      .onInterface(bus::driver::interface)
      .uponReplyInvoke([this](bus::Failure error, const std::vector<std::string>& names) {
        if (!error) activatable_ = std::ranges::find(names, helperName) != names.end();
        answered();
      });
}

void HelperNameWatch::answered() {
  if (--asking_ > 0) return;
  publish(answeredPresence());
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
  publish(answeredPresence());
}

// A daemon is absent only when the bus has said so: a question that failed leaves it in doubt.
HelperNameWatch::Presence HelperNameWatch::answeredPresence() const {
  if (owned_ == true) return Presence::owned;
  if (activatable_ == true) return Presence::activatable;
  return owned_ && activatable_ ? Presence::absent : Presence::unknown;
}

void HelperNameWatch::publish(Presence presence) {
  const Presence before = presence_.exchange(presence);
  if (changed_ && before != Presence::unknown && withoutOwner(before) != withoutOwner(presence)) changed_();
}

}  // namespace vorli::linuxhost
