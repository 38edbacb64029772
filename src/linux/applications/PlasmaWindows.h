#pragma once

#include "linux/applications/WindowProtocol.h"

namespace vorli::linuxhost {

/// The windows of Plasma, which shows them to programs whose desktop entry requests it. Windows of X11
/// programs are among them. Main thread.
class PlasmaWindows final : public WindowProtocol {
 public:
  /// Older versions identify windows in another way.
  static constexpr std::uint32_t oldestVersion = 13;

  PlasmaWindows(wl_registry* registry, std::uint32_t name, std::uint32_t version, std::uint32_t& lastID);

 private:
  void managerEvent(std::uint32_t event, const wl_argument* arguments) override;
  void windowEvent(wl_proxy* proxy, Toplevel& toplevel, std::uint32_t event,
                   const wl_argument* arguments) override;
};

}  // namespace vorli::linuxhost
