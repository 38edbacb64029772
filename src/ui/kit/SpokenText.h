#pragma once

#include <QLabel>

namespace vorli::ui {

/// A text for assistive tools in the place where the parent has painted it.
class SpokenText final : public QLabel {
 public:
  explicit SpokenText(QWidget* parent) : QLabel(parent) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setTextFormat(Qt::PlainText);  // the name of an application may look like markup
  }

 private:
  void paintEvent(QPaintEvent*) override {}
};

}  // namespace vorli::ui
