#include "linux/applications/SessionApplications.h"

#include <utility>

namespace vorli::linuxhost {
namespace {

constexpr double pauseBetweenLooks = 15.0;
// A new process becomes its program, and connects to the compositor, some moments after its start.
constexpr double settlingSeconds = 0.3;

}  // namespace

SessionApplications::SessionApplications(Scheduler& scheduler, const std::string& compositorSocket,
                                         Handlers handlers)
    : scheduler_(scheduler), handlers_(std::move(handlers)), clients_(compositorSocket) {
  units_ = std::make_unique<ApplicationUnits>(ApplicationUnits::sliceOfThisUser(), [this](std::int32_t pid) {
    handlers_.processSeen(pid);
    started_.insert(pid);
    scheduler_.cancel(std::exchange(timer_, 0));  // a look that is due sooner may find it unchanged
    lookSoon();
  });
  busNames_ =
      std::make_unique<BusNames>(BusNames::Handlers{.isApplication = handlers_.isApplication,
                                                    .ownerSeen =
                                                        [this](std::int32_t pid, const std::string& id) {
                                                          handlers_.ownerSeen(pid, id);
                                                          lookSoon();
                                                        },
                                                    .quitActionSeen = handlers_.quitActionSeen});
  look();
}

SessionApplications::~SessionApplications() {
  scheduler_.cancel(timer_);
}

void SessionApplications::lookForClients() {
  if (timer_ != 0 || scheduler_.now() - lastLook_ < pauseBetweenLooks) return;
  timer_ = scheduler_.after(0.0, [this] { look(); });
}

void SessionApplications::lookForOwnerOf(std::uint32_t window) {
  if (window <= lastWindow_) return;
  lastWindow_ = window;
  lookSoon();
}

void SessionApplications::lookSoon() {
  if (timer_ == 0) timer_ = scheduler_.after(settlingSeconds, [this] { look(); });
}

void SessionApplications::look() {
  scheduler_.cancel(std::exchange(timer_, 0));
  lastLook_ = scheduler_.now();
  for (const auto pid : std::exchange(started_, {})) handlers_.processSeen(pid);
  const auto before = std::exchange(known_, clients_.look().value_or(std::set<std::int32_t>()));
  for (const auto pid : std::set(known_)) {
    if (!before.contains(pid)) handlers_.processSeen(pid);
  }
}

}  // namespace vorli::linuxhost
