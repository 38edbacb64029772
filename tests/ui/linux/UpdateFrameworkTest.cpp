#include "tests/fakes/ManualScheduler.h"
#include "tests/ui/linux/PrivateSessionBus.h"
#include "ui/linux/UpdateFramework.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVirtualObject>
#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vorli::ui {
namespace {

const QString transactionInterface = QStringLiteral("org.freedesktop.PackageKit.Transaction");

/// PackageKit as a test describes it.
class ScriptedPackageKit final : public QDBusVirtualObject {
 public:
  explicit ScriptedPackageKit(PrivateSessionBus& bus) : buses_(bus), bus_(bus.connect()) {
    bus_.registerVirtualObject("/", this, QDBusConnection::SubPath);
    bus_.registerService("org.freedesktop.PackageKit");
  }
  ~ScriptedPackageKit() override { buses_.disconnect(bus_); }

  QStringList owners{"vorli;1.0;amd64;installed"};
  QStringList updates;
  std::optional<std::pair<unsigned, QString>> error;
  bool failsWithoutAWord = false;
  bool answers = true;
  std::vector<QVariantList> searches;
  std::vector<QString> asked;  // names of the methods

  QString introspect(const QString&) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
    asked.push_back(message.member());
    if (message.member() == "CreateTransaction") {
      const auto path = QStringLiteral("/%1_transaction").arg(asked.size());
      bus.send(message.createReply(QVariant::fromValue(QDBusObjectPath(path))));
      return true;
    }
    bus.send(message.createReply());
    if (!answers) return true;
    if (message.member() == "SearchFiles") searches.push_back(message.arguments());
    finish(message.path(), message.member() == "SearchFiles" ? owners : updates);
    return true;
  }

 private:
  void finish(const QString& path, const QStringList& packages) const {
    for (const auto& package : packages) signal(path, "Package", {1u, package, "a program"});
    if (error) signal(path, "ErrorCode", {error->first, error->second});
    signal(path, "Finished", {error || failsWithoutAWord ? 2u : 1u, 5u});
  }
  void signal(const QString& path, const char* name, const QVariantList& values) const {
    auto message = QDBusMessage::createSignal(path, transactionInterface, QLatin1String(name));
    message.setArguments(values);
    bus_.send(message);
  }

  PrivateSessionBus& buses_;
  QDBusConnection bus_;
};

struct RecordingUpdaterDelegate final : ports::UpdaterDelegate {
  std::vector<std::string> heard;

  void didFinishLoadingAppcast() override { heard.emplace_back("an update"); }
  void didAbortWithError(int code, std::string description) override {
    heard.push_back(std::to_string(code) + " " + description);
  }
};

struct UpdateFrameworkTest : testing::Test {
  using Source = std::optional<std::string>;
  using Strings = std::vector<std::string>;

  PrivateSessionBus bus;
  fakes::ManualScheduler scheduler;
  std::unique_ptr<ScriptedPackageKit> service = std::make_unique<ScriptedPackageKit>(bus);
  Strings said;
  int opened = 0;
  int connections = 0;
  bool hasCentre = true;
  RecordingUpdaterDelegate delegate;
  std::optional<UpdateFramework> framework;
  std::unique_ptr<ports::Updater> updater;

  QString busName;

  UpdateFrameworkTest() { make(bus.connect()); }
  ~UpdateFrameworkTest() override { updater.reset(); }

  void make(const QDBusConnection& connection) {
    busName = connection.name();
    framework.emplace(
        [this, connection] {
          ++connections;
          return connection;
        },
        scheduler, "/usr/bin/vorli",
        UpdateFramework::Desktop{.openUpdates =
                                     [this] {
                                       ++opened;
                                       return hasCentre;
                                     },
                                 .say = [this](const std::string& text) { said.push_back(text); }});
  }
  Source findSource() {
    std::optional<Source> answer;
    framework->findSource(OnceReply<Source>([&](Source source) { answer = std::move(source); }));
    scheduler.advance(5.0);
    loopUntil([&] { return answer.has_value(); });
    return answer.value_or(std::nullopt);
  }
  void start() {
    EXPECT_EQ(findSource(), "vorli");
    updater = framework->startUpdater(delegate);
  }
  Strings afterBackgroundCheck() {
    const auto before = delegate.heard.size();
    updater->checkForUpdatesInBackground();
    loopUntil([&] { return delegate.heard.size() > before; });
    return delegate.heard;
  }
  Strings afterUsersCheck() {
    updater->checkForUpdates();
    loopUntil([&] { return !delegate.heard.empty(); });
    return delegate.heard;
  }
};

TEST_F(UpdateFrameworkTest, thePackageThatOwnsTheProgramVouchesForUpdates) {
  EXPECT_EQ(findSource(), "vorli");
  ASSERT_EQ(service->searches.size(), 1u);
  EXPECT_EQ(service->searches[0][0].toULongLong(), 4u);  // installed ones
  EXPECT_EQ(service->searches[0][1].toStringList(), QStringList{"/usr/bin/vorli"});
}

TEST_F(UpdateFrameworkTest, theStartOfTheProgramWaitsForNoBusAndStartsNoPackageKit) {
  framework->findSource(OnceReply<Source>([](const Source&) {}));
  scheduler.advance(4.9);
  EXPECT_EQ(connections, 0);
  scheduler.advance(0.1);
  EXPECT_EQ(connections, 1);
  loopUntil([&] { return !service->searches.empty(); });
}

TEST_F(UpdateFrameworkTest, nothingIsAskedOnceTheProgramEnds) {
  framework->findSource(OnceReply<Source>([](const Source&) {}));
  framework.reset();
  scheduler.advance(10.0);
  EXPECT_EQ(connections, 0);
}

TEST_F(UpdateFrameworkTest, aProgramOfNoPackageHasNoSource) {
  service->owners.clear();
  EXPECT_EQ(findSource(), std::nullopt);
}

TEST_F(UpdateFrameworkTest, theConnectionIsKeptOnlyForASource) {
  EXPECT_EQ(findSource(), "vorli");
  EXPECT_TRUE(QDBusConnection(busName).isConnected());
  service->owners.clear();
  EXPECT_EQ(findSource(), std::nullopt);
  EXPECT_FALSE(QDBusConnection(busName).isConnected());
}

TEST_F(UpdateFrameworkTest, withoutPackageKitOrABusThereIsNoSource) {
  service.reset();
  EXPECT_EQ(findSource(), std::nullopt);
  make(QDBusConnection("no such connection"));
  EXPECT_EQ(findSource(), std::nullopt);
}

TEST_F(UpdateFrameworkTest, aFailedSearchIsNoSource) {
  service->error = {4, "no cache"};
  EXPECT_EQ(findSource(), std::nullopt);
}

TEST_F(UpdateFrameworkTest, aServiceThatEndsInTheMiddleIsNoSource) {
  service->answers = false;
  std::optional<Source> answer;
  framework->findSource(OnceReply<Source>([&](Source source) { answer = std::move(source); }));
  scheduler.advance(5.0);
  loopUntil([&] { return service->asked.size() == 2; });
  service.reset();
  loopUntil([&] { return answer.has_value(); });
  EXPECT_EQ(*answer, std::nullopt);
}

TEST_F(UpdateFrameworkTest, anUpdateOfThePackageIsAnUpdate) {
  start();
  service->updates = {"other;2;amd64;stable", "vorli;1.1;amd64;stable"};
  EXPECT_EQ(afterBackgroundCheck(), Strings{"an update"});
  EXPECT_EQ(opened, 0);
  EXPECT_EQ(said, Strings{});
}

TEST_F(UpdateFrameworkTest, updatesOfOtherPackagesAreIgnored) {
  start();
  service->updates = {"vorli-extras;2;amd64;stable"};
  EXPECT_EQ(afterBackgroundCheck(), Strings{"1001 Vorli is up to date."});
  EXPECT_EQ(said, Strings{});
}

TEST_F(UpdateFrameworkTest, aFailureHasThePackageManagersCodeAndText) {
  start();
  service->error = {2, "The network is down."};
  EXPECT_EQ(afterBackgroundCheck(), Strings{"2 The network is down."});
  EXPECT_TRUE(updater->canCheckForUpdates());
}

TEST_F(UpdateFrameworkTest, aFailureWithoutATextGetsOne) {
  start();
  service->failsWithoutAWord = true;
  EXPECT_EQ(afterBackgroundCheck(), Strings{"0 The package service gave no reason."});
}

TEST_F(UpdateFrameworkTest, theUsersCheckOpensTheUpdatesOfTheSystem) {
  start();
  service->updates = {"vorli;1.1;amd64;stable"};
  EXPECT_EQ(afterUsersCheck(), Strings{"an update"});
  EXPECT_EQ(opened, 1);
  EXPECT_EQ(said, Strings{});
}

TEST_F(UpdateFrameworkTest, theUsersCheckShowsTheResultWhereNothingCanBeOpened) {
  start();
  hasCentre = false;
  service->updates = {"vorli;1.1;amd64;stable"};
  afterUsersCheck();
  EXPECT_EQ(said, Strings{"An update for Vorli is ready. Install it with your system's updates."});
}

TEST_F(UpdateFrameworkTest, theUsersCheckShowsThatEverythingIsUpToDate) {
  start();
  EXPECT_EQ(afterUsersCheck(), Strings{"1001 Vorli is up to date."});
  EXPECT_EQ(said, Strings{"Vorli is up to date."});
}

TEST_F(UpdateFrameworkTest, theUsersCheckShowsWhatWentWrong) {
  start();
  service->error = {2, "The network is down."};
  afterUsersCheck();
  EXPECT_EQ(said, Strings{"Vorli couldn't look for updates. The network is down."});
}

TEST_F(UpdateFrameworkTest, aCheckInProgressAnswersTheUserToo) {
  start();
  updater->checkForUpdatesInBackground();
  EXPECT_FALSE(updater->canCheckForUpdates());
  updater->checkForUpdates();
  loopUntil([&] { return !delegate.heard.empty(); });
  EXPECT_EQ(said, Strings{"Vorli is up to date."});
  EXPECT_EQ(std::ranges::count(service->asked, QString("GetUpdates")), 1);
}

TEST_F(UpdateFrameworkTest, checksByItselfEachInterval) {
  start();
  updater->setAutomaticallyChecksForUpdates(true);
  updater->setUpdateCheckInterval(3600.0);
  scheduler.advance(3599.0);
  EXPECT_TRUE(updater->canCheckForUpdates());
  for (std::size_t check = 1; check <= 3; ++check) {
    scheduler.advance(check == 1 ? 1.0 : 3600.0);
    loopUntil([&] { return delegate.heard.size() == check; });
  }
  updater->setAutomaticallyChecksForUpdates(false);
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
}

TEST_F(UpdateFrameworkTest, asksForNothingThatChangesOrDownloads) {
  start();
  service->updates = {"vorli;1.1;amd64;stable"};
  afterUsersCheck();
  EXPECT_EQ(service->asked,
            (std::vector<QString>{"CreateTransaction", "SearchFiles", "CreateTransaction", "GetUpdates"}));
}

TEST_F(UpdateFrameworkTest, aCheckEndsWithTheUpdater) {
  start();
  updater->setAutomaticallyChecksForUpdates(true);
  updater->setUpdateCheckInterval(3600.0);
  updater->checkForUpdates();
  updater.reset();
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
  EXPECT_EQ(findSource(), "vorli");  // everything that came in the meantime has been handled
  EXPECT_EQ(delegate.heard, Strings{});
  EXPECT_EQ(said, Strings{});
}

}  // namespace
}  // namespace vorli::ui
