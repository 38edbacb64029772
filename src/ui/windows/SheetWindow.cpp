#include "ui/windows/SheetWindow.h"

#include "base/Assert.h"

namespace vorli::ui {

SheetWindow::~SheetWindow() {
  delete sheet_;
}

void SheetWindow::take(PaperWindow* sheet) {
  delete sheet_;
  sheet_ = sheet;
  // A closed sheet lives on until the next turn of the main loop.
  sheet->setCloseHandler([this] {
    sheet_.clear();
    if (closed_) closed_();
  });
}

void SheetWindow::open(const std::string& title) {
  VORLI_ASSERT(sheet_);
  sheet_->setWindowTitle(QString::fromStdString(title));
  sheet_->present();
}

void SheetWindow::centerAndBringToFront() {
  if (!sheet_) return;
  sheet_->centre();
  sheet_->present();
}

void SheetWindow::close() {
  if (sheet_) sheet_->close();
}

}  // namespace vorli::ui
