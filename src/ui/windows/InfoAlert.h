#pragma once

#include "ui/kit/PaperWindow.h"

#include <QImage>
#include <QString>

namespace vorli::ui {

/// An informational alert with one button, "OK". It blocks the program's other windows, but not the main
/// loop.
class InfoAlert final : public PaperWindow {
 public:
  InfoAlert(const WindowSurroundings& surroundings, const QString& messageText,
            const QString& informativeText);

  const QString& informativeText() const { return informativeText_; }

 private:
  void makeContent();
  void paintEvent(QPaintEvent* event) override;

  const QString informativeText_;
  QWidgetList content_;
  QImage mark_;
};

}  // namespace vorli::ui
