#include "macos/session/UpdateFramework.h"
#include "tests/fakes/ManualScheduler.h"
#include "tests/macos/runtime/Foundation.h"
#include "tests/macos/runtime/Machine.h"

#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace {

std::vector<std::string> updaterCalls;

}  // namespace

/// The methods of the delegate that the framework calls.
@protocol VorliUpdaterEvents
- (void)updater:(id)updater didFinishLoadingAppcast:(id)appcast;
- (void)updater:(id)updater didAbortWithError:(NSError*)error;
@end

/// Stands for the controller of the framework, which is found by its name.
@interface SPUStandardUpdaterController : NSObject
@property(weak) id<VorliUpdaterEvents> delegate;
@end

@implementation SPUStandardUpdaterController

- (instancetype)initWithStartingUpdater:(BOOL)starts
                        updaterDelegate:(id)updaterDelegate
                     userDriverDelegate:(id)userDriverDelegate {
  self = [super init];
  self.delegate = updaterDelegate;
  updaterCalls.push_back(starts ? "start" : "do not start");
  return self;
}
- (id)updater {
  return self;
}
- (void)setAutomaticallyChecksForUpdates:(BOOL)checks {
  updaterCalls.push_back(checks ? "automatic" : "by hand");
}
- (void)setUpdateCheckInterval:(NSTimeInterval)seconds {
  updaterCalls.push_back("every " + std::to_string(static_cast<int>(seconds)));
}
- (BOOL)canCheckForUpdates {
  return updaterCalls.back() == "start";
}
- (void)checkForUpdatesInBackground {
  updaterCalls.push_back("check silently");
}
- (void)checkForUpdates:(id)sender {
  updaterCalls.push_back("check");
  [self.delegate updater:self didFinishLoadingAppcast:nil];
  [self.delegate updater:self didAbortWithError:[NSError errorWithCode:1001 text:@"You're up to date!"]];
}
@end

namespace vorli::machost {
namespace {

struct RecordingUpdaterDelegate final : ports::UpdaterDelegate {
  void didFinishLoadingAppcast() override { events.push_back("loaded"); }
  void didAbortWithError(int code, std::string description) override {
    events.push_back(std::to_string(code) + " " + description);
  }
  std::vector<std::string> events;
};

struct UpdateFrameworkTest : testing::Test {
  UpdateFrameworkTest() {
    updaterCalls.clear();
    macfake::machine().mainBundle = [NSBundle installAt:@"/Applications/Vorli.app"
                                                   info:@{@"SUPublicEDKey" : @"key"}];
    [NSBundle installAt:@"/Applications/Vorli.app/Contents/Frameworks/Sparkle.framework" info:@{}];
  }
  std::optional<std::string> source() {
    std::optional<std::string> source;
    const auto reply = [&source](std::optional<std::string> is) { source = std::move(is); };
    framework.findSource(OnceReply<std::optional<std::string>>(reply));
    return source;
  }

  fakes::ManualScheduler scheduler;
  UpdateFramework framework{scheduler};
  RecordingUpdaterDelegate delegate;
};

TEST_F(UpdateFrameworkTest, theKeyOfABundleThatHoldsTheFrameworkIsTheSource) {
  EXPECT_EQ(source(), "key");
}

TEST_F(UpdateFrameworkTest, withoutTheFrameworkOrTheKeyThereIsNoSource) {
  macfake::machine().canLoadBundles = false;
  EXPECT_FALSE(source());
  macfake::machine().canLoadBundles = true;
  macfake::machine().mainBundle = [NSBundle installAt:@"/Applications/Vorli.app" info:@{}];
  EXPECT_FALSE(source());
  macfake::machine().bundles[@"/Applications/Vorli.app/Contents/Frameworks/Sparkle.framework"] = nil;
  EXPECT_FALSE(source());
}

TEST_F(UpdateFrameworkTest, settingsAndChecksReachTheFramework) {
  const auto updater = framework.startUpdater(delegate);
  EXPECT_TRUE(updater->canCheckForUpdates());
  updater->setAutomaticallyChecksForUpdates(true);
  updater->setUpdateCheckInterval(86400.0);
  updater->checkForUpdatesInBackground();
  EXPECT_FALSE(updater->canCheckForUpdates());
  EXPECT_EQ(updaterCalls, (std::vector<std::string>{"start", "automatic", "every 86400", "check silently"}));
}

TEST_F(UpdateFrameworkTest, resultsArriveFromTheMainLoop) {
  const auto updater = framework.startUpdater(delegate);
  updater->checkForUpdates();
  EXPECT_EQ(delegate.events, std::vector<std::string>{});
  scheduler.runReady();
  EXPECT_EQ(delegate.events, (std::vector<std::string>{"loaded", "1001 You're up to date!"}));
}

TEST_F(UpdateFrameworkTest, aResultThatComesAfterTheUpdaterIsDropped) {
  auto updater = framework.startUpdater(delegate);
  updater->checkForUpdates();
  updater.reset();
  scheduler.runReady();
  EXPECT_EQ(delegate.events, std::vector<std::string>{});
}

}  // namespace
}  // namespace vorli::machost
