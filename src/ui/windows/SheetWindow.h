#pragma once

#include "ports/SheetWindow.h"
#include "ui/kit/PaperWindow.h"

#include <QPointer>

namespace vorli::ui {

/// Shows one sheet of paper at a time, which is deleted when it is closed.
class SheetWindow final : public ports::SheetWindow {
 public:
  SheetWindow() = default;
  ~SheetWindow() override;
  SheetWindow(const SheetWindow&) = delete;
  SheetWindow& operator=(const SheetWindow&) = delete;

  /// Takes ownership of the sheet that `open` shows; replaces an earlier one.
  void take(PaperWindow* sheet);
  bool hasSheet() const { return !sheet_.isNull(); }

  void open(const std::string& title) override;
  void centerAndBringToFront() override;
  void close() override;
  void setCloseHandler(std::function<void()> handler) override { closed_ = std::move(handler); }

 private:
  std::function<void()> closed_;
  QPointer<PaperWindow> sheet_;
};

}  // namespace vorli::ui
