#pragma once

#include <cstdint>
#include <filesystem>
#include <list>
#include <string>
#include <string_view>
#include <vector>
#include <wayland-server.h>

namespace vorli::linuxhost {

/// A compositor that a test scripts. It speaks the real wire protocol and shows nothing. It runs only inside
/// `dispatch`, on the test's thread.
class ScriptedCompositor {
 public:
  enum class Protocol { none, foreignToplevels, plasma };

  struct Window {
    std::string appID;
    std::int32_t pid = 0;
    bool isActive = false;
    bool isMinimised = false;
    bool isOnTaskBar = true;
    std::string uuid = {};                   // set by `open`
    std::vector<wl_resource*> objects = {};  // one for each client
  };

  ScriptedCompositor(std::filesystem::path socket, Protocol protocol);
  ~ScriptedCompositor();
  ScriptedCompositor(const ScriptedCompositor&) = delete;
  ScriptedCompositor& operator=(const ScriptedCompositor&) = delete;

  /// Reads what clients have sent, and sends them what is due.
  void dispatch();

  Window& open(Window window);
  /// Sends the window's state to the clients.
  void update(Window& window);
  void setTitle(Window& window, const std::string& title);
  void close(Window& window);
  void showDesktop();
  /// Announces that it stops describing windows.
  void finish();

  /// Application identifiers of the windows that clients asked to close, in order.
  std::vector<std::string> closeRequests;

 private:
  static void bind(wl_client* client, void* self, std::uint32_t version, std::uint32_t id);
  static int managerRequest(const void*, void* manager, std::uint32_t request, const wl_message*,
                            wl_argument* arguments);
  static int windowRequest(const void*, void* object, std::uint32_t request, const wl_message*, wl_argument*);
  static void forget(wl_resource* object);

  void announce(Window& window, wl_resource* manager);
  void describe(Window& window, wl_resource* object) const;
  wl_resource* addObject(Window& window, wl_client* client, std::uint32_t id);
  Window* windowOf(const wl_resource* object);
  bool isPlasma() const { return protocol_ == Protocol::plasma; }

  const std::filesystem::path socket_;
  const Protocol protocol_;
  wl_display* display_;
  std::list<Window> windows_;
  std::vector<wl_resource*> managers_;
};

}  // namespace vorli::linuxhost
