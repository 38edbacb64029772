#include "macos/session/UpdateFramework.h"

#include "base/Assert.h"
#include "macos/Text.h"

#include <functional>
#include <utility>

// The called part of the framework, under our own names, because the linker does not know the framework's.
@protocol VorliFrameworkUpdater
- (void)setAutomaticallyChecksForUpdates:(BOOL)checks;
- (void)setUpdateCheckInterval:(NSTimeInterval)seconds;
- (BOOL)canCheckForUpdates;
- (void)checkForUpdatesInBackground;
@end

@protocol VorliFrameworkController
- (instancetype)initWithStartingUpdater:(BOOL)starts
                        updaterDelegate:(id)updaterDelegate
                     userDriverDelegate:(id)userDriverDelegate;
- (id<VorliFrameworkUpdater>)updater;
- (void)checkForUpdates:(id)sender;
@end

/// Receives the framework's calls. The framework looks up each method by its selector.
@interface VorliUpdaterReceiver : NSObject
- (instancetype)initWithFinished:(std::function<void()>)finished
                         aborted:(std::function<void(int, std::string)>)aborted;
@end

@implementation VorliUpdaterReceiver {
  std::function<void()> _finished;
  std::function<void(int, std::string)> _aborted;
}

- (instancetype)initWithFinished:(std::function<void()>)finished
                         aborted:(std::function<void(int, std::string)>)aborted {
  if ((self = [super init])) {
    _finished = std::move(finished);
    _aborted = std::move(aborted);
  }
  return self;
}

- (void)updater:(id)updater didFinishLoadingAppcast:(id)appcast {
  _finished();
}

- (void)updater:(id)updater didAbortWithError:(NSError*)error {
  _aborted(static_cast<int>(error.code), vorli::machost::textOf(error));
}

@end

namespace vorli::machost {

namespace {

/// Returns the framework's class; nil when the bundle does not contain the framework or it cannot be loaded.
Class controllerClass() {
  NSString* const folder = NSBundle.mainBundle.privateFrameworksPath;
  NSBundle* const framework =
      folder ? [NSBundle bundleWithPath:[folder stringByAppendingPathComponent:@"Sparkle.framework"]] : nil;
  return [framework loadAndReturnError:nil] ? NSClassFromString(@"SPUStandardUpdaterController") : nil;
}

class Updater final : public ports::Updater {
 public:
  Updater(Scheduler& scheduler, ports::UpdaterDelegate& delegate)
      : scheduler_(scheduler), delegate_(delegate) {
    receiver_ = [[VorliUpdaterReceiver alloc]
        initWithFinished:later([this] { delegate_.didFinishLoadingAppcast(); })
                 aborted:[this](int code, const std::string& text) {
                   later([this, code, text] { delegate_.didAbortWithError(code, text); })();
                 }];
    const id controller = [controllerClass() alloc];
    VORLI_ASSERT(controller);  // the source was found in the same bundle
    controller_ = [static_cast<id<VorliFrameworkController>>(controller) initWithStartingUpdater:YES
                                                                                 updaterDelegate:receiver_
                                                                              userDriverDelegate:nil];
  }

  void setAutomaticallyChecksForUpdates(bool checks) override {
    [controller_.updater setAutomaticallyChecksForUpdates:checks];
  }
  void setUpdateCheckInterval(double seconds) override {
    [controller_.updater setUpdateCheckInterval:seconds];
  }
  bool canCheckForUpdates() const override { return [controller_.updater canCheckForUpdates]; }
  void checkForUpdates() override { [controller_ checkForUpdates:nil]; }
  void checkForUpdatesInBackground() override { [controller_.updater checkForUpdatesInBackground]; }

 private:
  struct Life {};

  // Posts the work to the main loop; it is dropped when the updater has been destroyed.
  std::function<void()> later(std::function<void()> work) {
    return [&scheduler = scheduler_, life = std::weak_ptr(life_), work = std::move(work)] {
      scheduler.post([life, work] {
        if (!life.expired()) work();
      });
    };
  }

  Scheduler& scheduler_;
  ports::UpdaterDelegate& delegate_;
  const std::shared_ptr<Life> life_ = std::make_shared<Life>();
  VorliUpdaterReceiver* receiver_ = nil;  // the framework holds it weakly
  id<VorliFrameworkController> controller_ = nil;
};

}  // namespace

void UpdateFramework::findSource(OnceReply<std::optional<std::string>> reply) {
  if (!controllerClass()) return std::move(reply)(std::nullopt);
  std::move(reply)(textIn([NSBundle.mainBundle objectForInfoDictionaryKey:@"SUPublicEDKey"]));
}

std::unique_ptr<ports::Updater> UpdateFramework::startUpdater(ports::UpdaterDelegate& delegate) {
  return std::make_unique<Updater>(scheduler_, delegate);
}

}  // namespace vorli::machost
