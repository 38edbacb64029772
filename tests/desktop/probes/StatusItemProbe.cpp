// The status item alone, driven by lines on standard input. Prints what happens to it.
//
//   picture P [dimmed]     the dial at progress P, for the panel's own light
//   calm P C               the same under the calm C
//   sentence TEXT          the spoken state
//   updates                adds the row for updates to the menu
//   flood N                N different pictures, one in each turn of the main loop
//   send N                 N different pictures, each after the previous one was sent
//   about                  shows the about panel
//   alert TEXT             shows an alert
//   quit
//
// --hurry FACTOR lets the item's delays pass that many times faster.

#include "ambient/MenuBarTickDial.h"
#include "tests/desktop/probes/InputLines.h"
#include "tests/fakes/ApplicationBundle.h"
#include "ui/linux/StatusItem.h"
#include "ui/linux/X11Surroundings.h"
#include "ui/loop/QtScheduler.h"
#include "ui/windows/ApplicationHost.h"

#include <QApplication>
#include <functional>
#include <iostream>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using namespace vorli;

void say(const std::string& line) {
  std::cout << line << std::endl;
}

const char* nameOf(ui::TrayKind tray) {
  switch (tray) {
    case ui::TrayKind::undecided:
      return "undecided";
    case ui::TrayKind::statusNotifier:
      return "notifier";
    case ui::TrayKind::xembed:
      return "xembed";
    case ui::TrayKind::none:
      return "none";
  }
  return "";
}

// A main loop with a faster clock.
class HurriedScheduler final : public Scheduler {
 public:
  explicit HurriedScheduler(double factor) : factor_(factor) {}

  double now() const override { return loop_.now() * factor_; }
  void post(Work work) override { loop_.post(std::move(work)); }
  TimerId after(double seconds, Work work, Precision precision) override {
    return loop_.after(seconds / factor_, std::move(work), precision);
  }
  void cancel(TimerId timer) override { loop_.cancel(timer); }

 private:
  const double factor_;
  ui::QtScheduler loop_;
};

class Probe {
 public:
  explicit Probe(double hurry) : scheduler_(hurry) {
    item_.setTrayHandler([](ui::TrayKind tray) { say(std::string("tray ") + nameOf(tray)); });
    item_.setAppearanceHandler([this] {
      say(item_.hasDarkAppearance() ? "appearance dark" : "appearance light");
      show();
    });
    item_.setClickHandler([this](const ports::StatusClick& click) { clicked(click); });
    item_.setMenuProvider([this] {
      say("asked for rows");
      return rows();
    });
    say(item_.create() ? "created" : "not created");
    item_.setToolTip("Vorli");
    item_.setAccessibilityLabel("Vorli");
    say(item_.hasDarkAppearance() ? "appearance dark" : "appearance light");
    show();
  }

  void obey(const std::string& line) {
    std::istringstream words(line);
    std::string command;
    words >> command;
    if (command == "picture" || command == "calm") {
      std::string dimmed;
      words >> dial_.progress;
      if (command == "calm") words >> dial_.calmOverlay;
      words >> dimmed;
      dial_.dimmed = dimmed == "dimmed";
      show();
    } else if (command == "sentence") {
      std::string text;
      std::getline(words >> std::ws, text);
      item_.setAccessibilityValue(text);
    } else if (command == "updates") {
      offersUpdates_ = true;
      say("updates are configured");
    } else if (command == "flood") {
      int count = 0;
      words >> count;
      flood(count);
    } else if (command == "send") {
      int count = 0;
      words >> count;
      send(count);
    } else if (command == "about") {
      host_.openAboutPanel();
    } else if (command == "alert") {
      std::string text;
      std::getline(words >> std::ws, text);
      host_.showInfoAlert("Vorli", text);
    } else if (command == "quit") {
      QCoreApplication::quit();
    }
  }

 private:
  void show() {
    dial_.isDark = item_.hasDarkAppearance();
    item_.setPicture(dial_.picture(18.0, 1.0));
  }

  void flood(int left) {
    if (left == 0) return say("flooded");
    dial_.progress = (left % 1201) / 1200.0;
    dial_.calmOverlay = (left % 997) / 997.0;
    show();
    scheduler_.post([this, left] { flood(left - 1); });
  }

  void send(int left) {
    if (left == 0) return say("sent");
    dial_.progress = (left % 1201) / 1200.0;
    dial_.calmOverlay = left / 65536.0;
    auto picture = dial_.picture(18.0, 1.0);
    picture.strokes[0].colour.blue = (left % 256) / 255.0;  // two consecutive pictures always differ
    item_.setPicture(picture);
    scheduler_.after(
        ui::PictureThrottle::intervalSeconds, [this, left] { send(left - 1); }, Scheduler::Precision::exact);
  }

  void clicked(const ports::StatusClick& click) {
    std::ostringstream line;
    line << "click " << (click.button == ports::StatusClick::Button::right ? "right" : "left")
         << (click.control == ports::StatusClick::Control::held ? " control" : " plain");
    if (const auto& place = item_.lastClick()) {
      const QRect& icon = place->icon;
      line << " at " << place->point.x() << ' ' << place->point.y() << " icon " << icon.x() << ' ' << icon.y()
           << ' ' << icon.width() << ' ' << icon.height();
    }
    say(line.str());
    if (click.button == ports::StatusClick::Button::right ||
        click.control == ports::StatusClick::Control::held) {
      item_.showMenu(rows());
    }
  }

  // Rows of the probe's own, so that the tray's tests do not depend on the program's menu.
  std::vector<ports::MenuRow> rows() {
    std::vector<ports::MenuRow> rows{row("Polish Now", "polish"),
                                     separator(),
                                     row("Restart Panel", "dock"),
                                     row("Restart File Manager", "finder"),
                                     separator(),
                                     row("Open Startup Applications", "login items"),
                                     separator(),
                                     row("About Vorli", "about"),
                                     separator(),
                                     row("Quit Vorli", "quit", "q")};
    if (offersUpdates_) rows.insert(rows.begin() + 5, row("Check for Updates…", "updates"));
    return rows;
  }

  static ports::MenuRow row(std::string title, std::string_view chosen, std::string keyEquivalent = {}) {
    return {.kind = ports::MenuRow::Kind::action,
            .title = std::move(title),
            .keyEquivalent = std::move(keyEquivalent),
            .action = [line = "chose " + std::string(chosen)] { say(line); }};
  }
  static ports::MenuRow separator() {
    return {.kind = ports::MenuRow::Kind::separator, .title = {}, .keyEquivalent = {}, .action = {}};
  }

  HurriedScheduler scheduler_;
  QDBusConnection bus_ = QDBusConnection::connectToBus(QDBusConnection::SessionBus, "vorli-tray");
  ui::ManagerSelections selections_;
  ui::DesktopAppearance desktop_{bus_, selections_};
  ui::PanelAppearance panel_{selections_, desktop_, qEnvironmentVariable("XDG_CURRENT_DESKTOP")};
  ui::X11Surroundings surroundings_{desktop_, selections_};
  fakes::ApplicationBundle bundle_;
  ui::ApplicationHost host_{bundle_, surroundings_};
  ui::StatusItem item_{scheduler_, bus_, selections_, desktop_, panel_};
  MenuBarTickDial dial_;
  bool offersUpdates_ = false;
};

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  const auto arguments = QApplication::arguments();
  const auto hurry = arguments.indexOf("--hurry");
  Probe probe(hurry < 0 ? 1.0 : arguments.value(hurry + 1).toDouble());
  const vorli::InputLines input([&probe](const QByteArray& line) { probe.obey(line.toStdString()); },
                                QCoreApplication::quit);
  return QApplication::exec();
}
