#pragma once

#include "tests/fakes/ManualScheduler.h"
#include "tests/linux/RecordedTree.h"
#include "tests/linux/applications/ScriptedCompositor.h"

#include <QCoreApplication>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace vorli::linuxhost {

/// A private Wayland session with a scripted compositor and without an X server.
struct WaylandFixture : testing::Test {
  using Protocol = ScriptedCompositor::Protocol;

  WaylandFixture() {
    if (const char* name = getenv("DISPLAY")) display = name;
    unsetenv("DISPLAY");
    setenv("WAYLAND_DISPLAY", socket().c_str(), 1);
  }
  ~WaylandFixture() override {
    unsetenv("WAYLAND_DISPLAY");
    if (display) setenv("DISPLAY", display->c_str(), 1);
    for (const auto client : clients) {
      kill(client, SIGKILL);
      waitpid(client, nullptr, 0);
    }
  }

  std::string socket() const { return tree.path("wayland-7").string(); }
  void start(Protocol protocol) { compositor.emplace(socket(), protocol); }

  /// Lets both sides communicate until everything that was begun is done.
  void settle() {
    for (int i = 0; i < 8; ++i) {
      if (compositor) compositor->dispatch();
      QCoreApplication::processEvents();
      scheduler.advance(0.25);
    }
  }

  /// Lets both sides communicate once, while no time passes.
  void talk() {
    compositor->dispatch();  // accepts a connection
    compositor->dispatch();  // reads from it
    QCoreApplication::processEvents();
    scheduler.runReady();
  }

  /// A process that is connected to the compositor and otherwise waits. It runs this same program.
  std::int32_t startClient() {
    const std::string path = socket();
    int ready[2];
    if (pipe(ready) != 0) return 0;
    const pid_t client = fork();
    if (client == 0) {
      prctl(PR_SET_PDEATHSIG, SIGKILL);
      sockaddr_un address{};
      address.sun_family = AF_UNIX;
      std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
      const int connection = ::socket(AF_UNIX, SOCK_STREAM, 0);
      const auto* place = reinterpret_cast<const sockaddr*>(&address);
      const char answer = connect(connection, place, sizeof address) == 0 ? 'y' : 'n';
      if (write(ready[1], &answer, 1) != 1) _exit(1);
      for (;;) pause();
    }
    char answer = 'n';
    const bool isReady = read(ready[0], &answer, 1) == 1 && answer == 'y';
    for (const int end : ready) close(end);
    clients.push_back(client);
    compositor->dispatch();  // accepts the connection
    return isReady ? client : 0;
  }
  /// A process that runs this same program and only waits. Start it before the session is followed, because
  /// it inherits the connections of this process.
  std::int32_t startStranger() {
    const pid_t stranger = fork();
    if (stranger == 0) {
      prctl(PR_SET_PDEATHSIG, SIGKILL);
      for (;;) pause();
    }
    clients.push_back(stranger);
    return stranger;
  }
  static bool isAlive(std::int32_t client) { return waitpid(client, nullptr, WNOHANG) == 0; }

  RecordedTree tree;
  fakes::ManualScheduler scheduler;
  std::optional<ScriptedCompositor> compositor;
  std::vector<std::int32_t> clients;
  std::optional<std::string> display;  // of the session in which the tests run
};

}  // namespace vorli::linuxhost
