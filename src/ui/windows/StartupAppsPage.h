#pragma once

#include "base/Animated.h"
#include "base/Scheduler.h"
#include "base/Subscription.h"
#include "ports/MotionPreference.h"
#include "startup/StartupAppsView.h"
#include "ui/kit/Paragraph.h"
#include "ui/kit/WindowPalette.h"
#include "ui/windows/StartupAppsList.h"

#include <QLabel>
#include <QScrollArea>
#include <QWidget>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vorli::ui {

class ThinScrollBar;
class Toast;

/// The page of startup items: the list, or the notice that replaces it, and the toasts above. A visit lasts
/// from showing to hiding the page; minimising the window does not end it.
class StartupAppsPage final : public QWidget {
 public:
  StartupAppsPage(StartupAppsView& view, const StartupAppsHost& host, Appearance appearance, QWidget* parent);
  ~StartupAppsPage() override;

  StartupAppsList& list() { return *list_; }

 private:
  class Edges;
  /// A toast and its fading.
  struct Floating {
    Toast* toast = nullptr;
    std::shared_ptr<Animated<double>> presence;  // from 0 to 1
  };
  /// Content of the helper's toast, whose text may change while it is shown.
  struct HelperShown {
    HelperUnavailable state;
    std::string text;

    bool operator==(const HelperShown&) const = default;
  };

  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void enterEvent(QEnterEvent* event) override;
  void leaveEvent(QEvent* event) override;

  void contentChanged(const std::optional<Animation>& animation);
  void updateToasts();
  void appear(Floating& floating, Toast* toast);
  void leave(Floating& floating);
  void moveToasts();
  void showUndoToast(UndoToastView& view);
  void showHelperToast(HelperUnavailableToast& view);
  void placeToasts();
  Paragraph lookingText() const;
  QRectF spinnerPlace() const;
  void paintLooking(QPainter& painter);
  void paintNotice(QPainter& painter, const StartupAppsNotice& notice);
  void spin();
  void followBar();
  void showThumb();
  void sayNotice();
  std::optional<StartupAppsNotice> notice() const;

  StartupAppsView& view_;
  Scheduler& scheduler_;
  const ports::MotionPreference& motion_;
  ports::ApplicationIcons& icons_;
  const Appearance appearance_;
  const WindowPalette& palette_;
  bool isVisiting_ = false;
  Subscription content_;
  QScrollArea* scroll_ = nullptr;
  StartupAppsList* list_ = nullptr;
  Edges* edges_ = nullptr;
  ThinScrollBar* thumb_ = nullptr;
  QLabel* spokenNotice_ = nullptr;

  std::optional<UndoAction> undoShown_;
  std::optional<HelperShown> helperShown_;
  Subscription elapsed_;
  Floating undoToast_;
  Floating helperToast_;
  std::vector<Floating> leaving_;
  Scheduler::TimerId toastTimer_ = 0;
  Scheduler::TimerId thumbTimer_ = 0;
  Scheduler::TimerId spinTimer_ = 0;
  int spinStep_ = 0;
};

}  // namespace vorli::ui
