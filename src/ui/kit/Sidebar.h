#pragma once

#include "ui/kit/MovingValue.h"
#include "ui/kit/WindowPalette.h"

#include <QList>
#include <QPixmap>
#include <QString>
#include <QWidget>
#include <functional>
#include <string_view>

namespace vorli::ui {

class Control;

/// The left part of the settings: mark, name and a list of tabs.
class Sidebar final : public QWidget {
 public:
  struct Tab {
    std::string_view symbol;  // must outlive the sidebar
    QString label, spokenName, hint;
  };

  /// `chosen` runs when the user presses a tab.
  Sidebar(const QList<Tab>& tabs, Appearance appearance, QWidget* parent, std::function<void(int)> chosen);

  /// Shows a tab as the selected one.
  void select(int index);

  static constexpr int sidebarWidth = 216;

 private:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  QPixmap drawGround() const;

  const WindowPalette& palette_;
  QList<Control*> tabs_;
  MovingValue plate_{*this, -1.0};  // at the selected tab, by its number; negative before the first choice
  QPixmap ground_;                  // mark, dial and plate, which do not change
};

}  // namespace vorli::ui
