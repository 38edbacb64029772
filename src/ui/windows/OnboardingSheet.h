#pragma once

#include "base/Animated.h"
#include "base/Scheduler.h"
#include "base/Subscription.h"
#include "flows/OnboardingDoneView.h"
#include "flows/OnboardingView.h"
#include "flows/PreviewPickerBar.h"
#include "ports/MotionPreference.h"
#include "ui/kit/GlassPillButton.h"
#include "ui/kit/PaperWindow.h"
#include "ui/windows/OnboardingPicture.h"

#include <QImage>
#include <QLabel>
#include <QList>
#include <optional>

namespace vorli::ui {

class PreviewBar;

/// The window of the first steps: draws the step that it was given last.
class OnboardingSheet final : public PaperWindow {
 public:
  OnboardingSheet(const WindowSurroundings& surroundings, Scheduler& scheduler,
                  const ports::MotionPreference& motion);
  ~OnboardingSheet() override;

  // `bar` is null outside of the preview. The view lives until one turn of the main loop after it left the
  // window.
  void show(OnboardingView& view, PreviewPickerBar* bar);
  void show(OnboardingDoneView& view, PreviewPickerBar* bar);

  const OnboardingPicture& picture() const { return picture_; }

 private:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  bool event(QEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

  void makeButtons();
  void makeContentAnew();
  void take(OnboardingPicture next);
  void helperContentChanged();
  void placeDoneButton();
  void placeButtons(const OnboardingButton& primary, const std::optional<OnboardingButton>& secondary);
  void describe();
  void showBar(PreviewPickerBar* bar);
  void pressed(bool isPrimary);

  void paintHero(QPainter& painter);
  void paintBarGround(QPainter& painter) const;
  void startFrames();
  void frame();
  std::optional<double> nextFrameIn(double now) const;

  Scheduler& scheduler_;
  const ports::MotionPreference& motion_;
  OnboardingView* helperView_ = nullptr;
  OnboardingDoneView* doneView_ = nullptr;
  Subscription content_;

  OnboardingPicture picture_;
  OnboardingPicture earlier_;  // fades out while `arrival_` goes to 1
  Animated<double> arrival_;
  Animated<double> heroTop_;
  double moodSince_ = 0.0;

  GlassPillButton* secondary_ = nullptr;  // before `primary_`: reading order
  GlassPillButton* primary_ = nullptr;
  QLabel* words_ = nullptr;
  QLabel* status_ = nullptr;
  QList<QLabel*> explanations_;
  PreviewPickerBar* barModel_ = nullptr;
  PreviewBar* bar_ = nullptr;

  QImage mark_;
  static constexpr int noMark = -1;
  int markKey_ = noMark;  // what `mark_` shows
  Scheduler::TimerId frameTimer_ = 0;
};

}  // namespace vorli::ui
