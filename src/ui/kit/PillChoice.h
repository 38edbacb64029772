#pragma once

#include "ui/kit/Control.h"

#include <QList>
#include <QStringList>
#include <functional>

namespace vorli::ui {

/// A choice between a few words, one pill each, side by side. The arrow keys move between them.
class PillChoice final : public QWidget {
 public:
  PillChoice(const QStringList& words, const QString& spokenName, Appearance appearance, QWidget* parent);

  int chosen() const;
  /// Shows a choice without calling the handler.
  void choose(int index);
  /// Sets the handler that is called when the user chooses.
  void setHandler(std::function<void(int)> handler) { handler_ = std::move(handler); }

  QSize sizeHint() const override;

 private:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

  const WindowPalette& palette_;
  QList<Control*> pills_;
  std::function<void(int)> handler_;
};

}  // namespace vorli::ui
