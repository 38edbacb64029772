#include <gmock/gmock.h>
// The fixture is written for a program that has both precompiled.
#include "tests/fakes/Publish.h"
#include "tests/polish/PolishFixture.h"
#include "tests/ui/windows/FakeSurroundings.h"
#include "ui/linux/PopoverWindow.h"

#include <QApplication>
#include <QByteArray>
#include <atomic>
#include <cstddef>
#include <cstring>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

namespace vorli::ui {
namespace {

/// The X server of `DISPLAY` as long as the object exists. It closes each connection at the first byte.
class ClosingDisplay {
 public:
  ClosingDisplay() {
    const std::string number = std::to_string(::getpid());
    const std::string name = '\0' + ("/tmp/.X11-unix/X" + number);  // abstract, so no file is made
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, name.data(), name.size());
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size());
    EXPECT_EQ(::bind(socket_, reinterpret_cast<sockaddr*>(&address), length), 0);
    EXPECT_EQ(::listen(socket_, 1), 0);
    thread_ = std::thread([this] { serve(); });
    qputenv("DISPLAY", QByteArray::fromStdString(":" + number));
  }
  ~ClosingDisplay() {
    qunsetenv("DISPLAY");
    ::shutdown(socket_, SHUT_RDWR);
    thread_.join();
    ::close(socket_);
  }
  ClosingDisplay(const ClosingDisplay&) = delete;
  ClosingDisplay& operator=(const ClosingDisplay&) = delete;

  int connections() const { return connections_; }

 private:
  void serve() {
    for (int caller = accept(); caller >= 0; caller = accept()) {
      ++connections_;
      char byte = 0;
      EXPECT_EQ(::read(caller, &byte, 1), 1);
      ::close(caller);
    }
  }
  int accept() const { return ::accept4(socket_, nullptr, nullptr, SOCK_CLOEXEC); }

  const int socket_ = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  std::atomic<int> connections_ = 0;
  std::thread thread_;
};

// A desktop without an X server, where only the popover's own windows exist.
struct PopoverWindowTest : PolishFixture {
  ~PopoverWindowTest() override { window.unmount(); }

  static std::vector<PopoverWidget*> widgets() {
    std::vector<PopoverWidget*> found;
    for (auto* widget : QApplication::topLevelWidgets()) {
      if (auto* popover = dynamic_cast<PopoverWidget*>(widget)) found.push_back(popover);
    }
    return found;
  }

  ManagerSelections selections;
  FakeSurroundings surroundings;
  PopoverWindow window{scheduler, [] { return std::nullopt; }, selections, surroundings};
};

TEST_F(PopoverWindowTest, firstOpeningIsPreparedOnceWhenTheLaunchIsOver) {
  const auto timers = scheduler.pendingTimers();
  window.mount(*view);
  EXPECT_EQ(scheduler.pendingTimers(), timers + 1);
  scheduler.advance(1.999);
  EXPECT_TRUE(widgets().empty());
  scheduler.advance(0.001);
  ASSERT_EQ(widgets().size(), 1u);
  const auto* prepared = widgets().front();
  EXPECT_FALSE(prepared->isVisible());
  EXPECT_EQ(prepared->framesPainted(), 0u);
  EXPECT_EQ(scheduler.pendingTimers(), timers);  // it costs nothing from then on
  EXPECT_FALSE(window.isShown());
  EXPECT_TRUE(window.show());
  ASSERT_EQ(widgets().size(), 1u);
  EXPECT_EQ(widgets().front(), prepared);
}

TEST_F(PopoverWindowTest, connectionForPressesOutsideIsOpenBeforeTheFirstOpening) {
  const ClosingDisplay display;
  window.mount(*view);
  scheduler.advance(1.999);
  EXPECT_EQ(display.connections(), 0);
  scheduler.advance(0.001);
  EXPECT_EQ(display.connections(), 1);
}

TEST_F(PopoverWindowTest, lightOfTheFirstPictureIsComputedBeforeTheFirstOpening) {
  window.setContentSize({270.0, 304.0});
  window.mount(*view);
  scheduler.advance(2.0);
  auto* prepared = widgets().at(0);
  const auto profiles = prepared->lightProfiles();
  EXPECT_GT(profiles, 0u);
  ASSERT_TRUE(window.show());
  prepared->grab();
  EXPECT_EQ(prepared->lightProfiles(), profiles);
}

TEST_F(PopoverWindowTest, preparedPopoverShowsWhatANewOneShows) {
  fakes::publish(view->animatedProgress, 0.62);
  const auto firstPicture = [this] {
    window.setContentSize({270.0, 304.0});
    EXPECT_TRUE(window.show());
    return widgets().front()->grab().toImage();
  };
  window.mount(*view);
  const QImage unprepared = firstPicture();
  window.unmount();
  window.mount(*view);
  scheduler.advance(2.0);
  EXPECT_EQ(firstPicture(), unprepared);
}

TEST_F(PopoverWindowTest, openingBeforeThePreparationIsLeftAlone) {
  window.mount(*view);
  scheduler.advance(1.0);
  ASSERT_TRUE(window.show());
  auto* shown = widgets().front();
  scheduler.advance(5.0);
  EXPECT_EQ(widgets(), std::vector{shown});
  EXPECT_TRUE(shown->isVisible());
}

TEST_F(PopoverWindowTest, openPopoverFollowsTheDesktopsAppearance) {
  window.setContentSize({270.0, 304.0});
  window.mount(*view);
  ASSERT_TRUE(window.show());
  const auto shown = [this] { return widgets().at(0)->scene().picture(scheduler.now()).appearance; };
  EXPECT_EQ(shown(), Appearance::light);
  surroundings.change(Appearance::dark);
  EXPECT_EQ(shown(), Appearance::dark);
}

TEST_F(PopoverWindowTest, nothingIsPreparedForContentThatIsGone) {
  window.mount(*view);
  window.unmount();
  scheduler.advance(5.0);
  EXPECT_TRUE(widgets().empty());
}

TEST_F(PopoverWindowTest, hasAPlaceOnlyWithContent) {
  EXPECT_FALSE(window.hasPlace());
  window.mount(*view);
  EXPECT_TRUE(window.hasPlace());
}

}  // namespace
}  // namespace vorli::ui
