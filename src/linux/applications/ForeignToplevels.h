#pragma once

#include "linux/applications/WindowProtocol.h"

namespace vorli::linuxhost {

/// The windows of compositors that are based on wlroots. Windows of X11 programs are among them. Their
/// processes are not known. Main thread.
class ForeignToplevels final : public WindowProtocol {
 public:
  ForeignToplevels(wl_registry* registry, std::uint32_t name, std::uint32_t& lastID);

 private:
  void managerEvent(std::uint32_t event, const wl_argument* arguments) override;
  void windowEvent(wl_proxy* proxy, Toplevel& toplevel, std::uint32_t event,
                   const wl_argument* arguments) override;
};

}  // namespace vorli::linuxhost
