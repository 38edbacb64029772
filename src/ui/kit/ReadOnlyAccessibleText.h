#pragma once

#include <QAccessible>
#include <QString>

namespace vorli::ui {

/// A text of an element beside its name and description. The accessibility bus has no other way to carry a
/// value that is not a number.
class ReadOnlyAccessibleText : public QAccessibleTextInterface {
 public:
  QString text(int start, int end) const override { return content().mid(start, end < 0 ? -1 : end - start); }
  int characterCount() const override { return static_cast<int>(content().size()); }
  int cursorPosition() const override { return 0; }
  void setCursorPosition(int) override {}
  int selectionCount() const override { return 0; }
  void selection(int, int* start, int* end) const override { *start = *end = 0; }
  void addSelection(int, int) override {}
  void removeSelection(int) override {}
  void setSelection(int, int, int) override {}
  QRect characterRect(int) const override { return {}; }
  int offsetAtPoint(const QPoint&) const override { return -1; }
  void scrollToSubstring(int, int) override {}
  QString attributes(int, int* start, int* end) const override {
    *start = 0;
    *end = characterCount();
    return {};
  }

 private:
  virtual QString content() const = 0;
};

}  // namespace vorli::ui
