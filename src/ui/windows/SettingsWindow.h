#pragma once

#include "ui/kit/MovingValue.h"
#include "ui/kit/PaperWindow.h"
#include "ui/windows/SettingsPage.h"

#include <QPixmap>
#include <QRect>
#include <vector>

namespace vorli::ui {

class Sidebar;

/// The settings: the list of tabs at the left and the page of the selected one at the right. Only the shown
/// page exists.
class SettingsWindow final : public PaperWindow {
 public:
  SettingsWindow(const WindowSurroundings& surroundings, VorliSettingsView& view,
                 SneakyAppsPageFactory sneakyApps);

  static constexpr QSize windowSize{880, 620};

 private:
  void makeSidebar();
  void showTab(VorliSettingsTab tab);
  void fadeFrom(const QPixmap& earlier);
  void moveFade();
  QRect pagePlace() const;
  std::vector<VorliSettingsTab> offeredTabs() const;

  VorliSettingsView& view_;
  const SneakyAppsPageFactory sneakyApps_;
  const std::vector<VorliSettingsTab> tabs_;
  Sidebar* sidebar_ = nullptr;
  SettingsPage* page_ = nullptr;
  class LeavingPage;
  LeavingPage* leaving_ = nullptr;  // a picture of the page before, only while it fades
  MovingValue arrival_{*this, 1.0, [this] { moveFade(); }};  // opacity of the page
  MovingValue rise_{*this, 1.0, [this] { moveFade(); }};     // movement of the page to its place
  Subscription selection_;
};

}  // namespace vorli::ui
