#pragma once

#include "ui/kit/PaperWindow.h"

#include <QImage>

class QLabel;

namespace vorli::ui {

/// The program's mark, name and version.
class AboutPanel final : public PaperWindow {
 public:
  AboutPanel(const WindowSurroundings& surroundings, const QString& version);

 private:
  void makeContent(const QString& version);
  void paintEvent(QPaintEvent* event) override;

  QWidget* name_ = nullptr;
  QLabel* version_ = nullptr;
  QImage mark_;
};

}  // namespace vorli::ui
