// Registers one global key and prints what happens to it. A line on standard input advances the key's own
// clock by half a second; otherwise that clock stands still.

#include "nudges/GlobalHotkeyManager.h"
#include "tests/fakes/ManualScheduler.h"
#include "ui/linux/GlobalHotkeys.h"
#include "ui/loop/QtScheduler.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QSocketNotifier>
#include <cstdio>
#include <iostream>
#include <string>
#include <unistd.h>

namespace {

using State = vorli::GlobalHotkeyManager::State;

const char* nameOf(State state) {
  switch (state) {
    case State::none:
      return "none";
    case State::registered:
      return "registered";
    case State::notParsed:
      return "not parsed";
    case State::refused:
      return "refused";
    case State::declined:
      return "declined";
    case State::unavailable:
      return "unavailable";
  }
  return "";
}

void say(const char* text) {
  std::puts(text);
  std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
  QCoreApplication application(argc, argv);
  vorli::ui::QtScheduler scheduler;
  vorli::fakes::ManualScheduler keyTime;
  vorli::ui::GlobalHotkeys hotkeys(keyTime, QDBusConnection::sessionBus(),
                                   vorli::ui::GlobalHotkeys::thisSession());
  vorli::GlobalHotkeyManager manager(scheduler, hotkeys);
  manager.registerCombo(argc > 1 ? argv[1] : "opt+shift+C", [] { say("press"); });
  const auto told = manager.state.subscribe([](State state) { say(nameOf(state)); });
  QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
  QObject::connect(&input, &QSocketNotifier::activated, &application, [&] {
    std::string line;
    if (!std::getline(std::cin, line)) return QCoreApplication::quit();
    keyTime.advance(0.5);
    say("half a second");
  });
  return QCoreApplication::exec();
}
