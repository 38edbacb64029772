#pragma once

#include "ui/PaperWindow.h"

#include <QImage>
#include <QString>

namespace vorli::ui {

/// An informational alert: one thing to know, one button "OK". Other windows of the program wait for it, the
/// main loop does not.
class InfoAlert final : public PaperWindow {
 public:
  InfoAlert(const WindowSurroundings& surroundings, const QString& messageText,
            const QString& informativeText);

  const QString& informativeText() const { return informativeText_; }

 private:
  void paintEvent(QPaintEvent* event) override;

  const QString informativeText_;
  QImage mark_;
};

}  // namespace vorli::ui
