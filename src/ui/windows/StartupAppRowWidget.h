#pragma once

#include "base/Date.h"
#include "startup/StartupAppsView.h"
#include "ui/kit/CalloutPanel.h"
#include "ui/kit/FollowsPointer.h"
#include "ui/kit/GlassPillButton.h"

#include <QPointer>
#include <QWidget>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vorli::ui {

class ApplicationPictures;

/// Edges of the card that a row touches.
struct RowEdges {
  bool isFirst = false;
  bool isLast = false;
};

/// A row of the list of startup items with its buttons and, below it, its
/// callout or the question that it asks.
class StartupAppRowWidget final : public FollowsPointer<QWidget> {
 public:
  StartupAppRowWidget(StartupAppsView& view, ApplicationPictures& pictures, Appearance appearance,
                      QWidget* parent);
  ~StartupAppRowWidget() override;

  /// Shows an item of a section. The section must outlive the next call.
  void show(const StartupAppsSection& section, const StartupItem& item, Date now, RowEdges edges);
  const std::string& itemID() const { return item_.id; }
  /// File of the application whose icon the row shows; empty when there is none.
  std::string applicationPath() const;

  /// The row's height without its panel.
  double rowHeight() const { return rowHeight_; }
  /// 0 when there is no panel.
  double panelHeight() const { return panel_ ? panelHeight_ : 0.0; }
  static double heightOf(const StartupAppRow& row, const StartupItem& item, Appearance appearance);

  /// Fades the panel in as it opens, and out as it closes; 0 drops a closing one.
  void setPanelShown(double share);
  /// Fades the row out while it leaves the list.
  void setPresence(double share);
  /// The controls in reading order.
  std::vector<QWidget*> controls() const;

 private:
  /// The panel is not a part of the row that lights up.
  bool isHovered() const override { return FollowsPointer::isHovered() && !isPointerOnPanel_; }
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void updateButtons(const StartupAppRow& row);
  void updatePanel(const StartupAppsSection& section);
  /// Puts the panel below the row.
  void placePanel();
  enum class Replaced { no, yes };
  void closePanel(Replaced replaced);
  void dropClosingPanel();
  void giveFocusBack();
  void updateOpacity();
  void paintHover(QPainter& painter) const;
  void paintIcon(QPainter& painter, const QRectF& place) const;
  void paintTexts(QPainter& painter) const;
  void paintMeta(QPainter& painter, const QRectF& place, const QColor& ink) const;

  StartupAppsView& view_;
  ApplicationPictures& pictures_;
  const Appearance appearance_;
  const WindowPalette& palette_;
  StartupItem item_;
  RowEdges edges_;
  QString origin_;
  double buttonsWidth_ = 0.0;
  double rowHeight_ = 0.0;
  double panelHeight_ = 0.0;
  double presence_ = 1.0;
  QString panelKey_;  // identifies the text of the panel
  std::vector<RowButton> shownButtons_;
  std::vector<GlassPillButton*> buttons_;  // from left to right
  CalloutPanel* panel_ = nullptr;
  CalloutPanel* closing_ = nullptr;  // answered, but still visible
  bool isPointerOnPanel_ = false;
  QPointer<QWidget> asker_;  // the widget that had the focus before the question
};

}  // namespace vorli::ui
