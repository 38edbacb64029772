#pragma once

#include "ui/PaperWindow.h"

#include <QImage>

namespace vorli::ui {

/// The program's mark, name and version.
class AboutPanel final : public PaperWindow {
 public:
  AboutPanel(const WindowSurroundings& surroundings, const QString& version);

 private:
  void paintEvent(QPaintEvent* event) override;

  QImage mark_;
};

}  // namespace vorli::ui
