#include "ui/linux/UpdateFramework.h"

#include "ui/linux/PackageTransaction.h"

#include <QStringList>
#include <QVariant>
#include <algorithm>
#include <utility>

namespace vorli::ui {

namespace {

// Filters of PackageKit.
constexpr qulonglong noFilter = 1ULL << 1;
constexpr qulonglong installedOnly = 1ULL << 2;

constexpr double searchDelay = 5.0;  // seconds

constexpr int noUpdateFound = 1001;  // defined by the port

QString nameOf(const QString& package) {
  return package.section(QLatin1Char(';'), 0, 0);
}

class PackageUpdater final : public ports::Updater {
 public:
  PackageUpdater(const QDBusConnection& bus, Scheduler& scheduler, QString package,
                 const UpdateFramework::Desktop& desktop, ports::UpdaterDelegate& delegate)
      : bus_(bus),
        scheduler_(scheduler),
        package_(std::move(package)),
        desktop_(desktop),
        delegate_(delegate) {}
  ~PackageUpdater() override { scheduler_.cancel(timer_); }

  void setAutomaticallyChecksForUpdates(bool checks) override {
    checksByItself_ = checks;
    scheduleNext();
  }
  void setUpdateCheckInterval(double seconds) override {
    interval_ = seconds;
    scheduleNext();
  }
  bool canCheckForUpdates() const override { return !isChecking_; }

  void checkForUpdates() override {
    userWaits_ = true;
    checkForUpdatesInBackground();
  }

  // A check that is already in progress answers the user too.
  void checkForUpdatesInBackground() override {
    if (std::exchange(isChecking_, true)) return;
    PackageTransaction::ask(bus_, &context_, QStringLiteral("GetUpdates"), {noFilter},
                            [this](const PackageTransaction::Result& result) { ended(result); });
  }

 private:
  void scheduleNext() {
    scheduler_.cancel(std::exchange(timer_, 0));
    if (!checksByItself_ || interval_ <= 0.0) return;
    timer_ = scheduler_.after(
        interval_,
        [this] {
          checkForUpdatesInBackground();
          scheduleNext();
        },
        Scheduler::Precision::coarse);
  }

  void ended(const PackageTransaction::Result& result) {
    isChecking_ = false;
    const bool tellsUser = std::exchange(userWaits_, false);
    if (!result) {
      if (tellsUser) desktop_.say("Vorli couldn't look for updates. " + result.error().text);
      return delegate_.didAbortWithError(result.error().code, result.error().text);
    }
    const bool isThere =
        std::ranges::any_of(*result, [this](const QString& package) { return nameOf(package) == package_; });
    if (tellsUser) tellUser(isThere);
    if (isThere) return delegate_.didFinishLoadingAppcast();
    delegate_.didAbortWithError(noUpdateFound, upToDate);
  }

  void tellUser(bool isThere) const {
    if (!isThere) return desktop_.say(upToDate);
    if (!desktop_.openUpdates())
      desktop_.say("An update for Vorli is ready. Install it with your system's updates.");
  }

  static constexpr const char* upToDate = "Vorli is up to date.";

  QDBusConnection bus_;
  Scheduler& scheduler_;
  const QString package_;
  const UpdateFramework::Desktop& desktop_;
  ports::UpdaterDelegate& delegate_;
  bool checksByItself_ = false;
  double interval_ = 0.0;
  bool isChecking_ = false;
  bool userWaits_ = false;
  Scheduler::TimerId timer_ = 0;
  QObject context_;  // last: its destruction cancels a pending check
};

}  // namespace

UpdateFramework::UpdateFramework(std::function<QDBusConnection()> connect, Scheduler& scheduler,
                                 QString program, Desktop desktop)
    : connect_(std::move(connect)),
      scheduler_(scheduler),
      program_(std::move(program)),
      desktop_(std::move(desktop)) {}

UpdateFramework::~UpdateFramework() {
  scheduler_.cancel(search_);
}

void UpdateFramework::findSource(SourceReply reply) {
  search_ = scheduler_.after(
      searchDelay, [this, shared = std::make_shared<SourceReply>(std::move(reply))] { searchOwner(shared); });
}

void UpdateFramework::searchOwner(const std::shared_ptr<SourceReply>& reply) {
  bus_ = connect_();
  PackageTransaction::ask(*bus_, &context_, QStringLiteral("SearchFiles"),
                          {installedOnly, QStringList{program_}},
                          [this, reply](const PackageTransaction::Result& result) {
                            std::optional<std::string> source;
                            if (result && !result->isEmpty()) {
                              package_ = nameOf(result->front());
                              source = package_.toStdString();
                            } else {
                              QDBusConnection::disconnectFromBus(bus_->name());
                              bus_.reset();
                            }
                            std::move (*reply)(std::move(source));
                          });
}

std::unique_ptr<ports::Updater> UpdateFramework::startUpdater(ports::UpdaterDelegate& delegate) {
  return std::make_unique<PackageUpdater>(*bus_, scheduler_, package_, desktop_, delegate);
}

}  // namespace vorli::ui
