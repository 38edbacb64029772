#include "ui/status/StatusMenuStyle.h"

#include "ui/kit/Typeface.h"

#include <QAction>
#include <QMenu>
#include <QPainter>
#include <QStyleFactory>
#include <QStyleOptionMenuItem>

namespace vorli::ui {
namespace {

constexpr int menuWidth = 224;
constexpr int menuPadding = 6;
constexpr int rowHeight = 28;
constexpr int separatorHeight = 11;
constexpr int inset = 10;
constexpr double rowRadius = 7.0;

// Kept apart from the row's text, because QMenu widens itself for a text with a shortcut.
QString shortcutOf(const QStyleOptionMenuItem& row, const QWidget* widget) {
  const auto* menu = qobject_cast<const QMenu*>(widget);
  const auto* action = menu ? menu->actionAt(row.rect.center()) : nullptr;
  return action ? action->data().toString() : QString();
}

void drawRow(const QStyleOptionMenuItem& row, const QString& shortcut, QPainter& painter,
             const WindowPalette& palette) {
  if (row.menuItemType == QStyleOptionMenuItem::Separator) {
    painter.fillRect(QRectF(row.rect.x() + inset, row.rect.center().y(), row.rect.width() - 2 * inset, 1),
                     palette.divider);
    return;
  }
  const bool chosen = row.state & QStyle::State_Selected;
  if (chosen) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(palette.primary.over(row.rect));
    painter.drawRoundedRect(row.rect, rowRadius, rowRadius);
  }
  const QRect text = row.rect.adjusted(inset, 0, -inset, 0);
  constexpr int flags = Qt::AlignVCenter | Qt::TextSingleLine | Qt::TextHideMnemonic;
  painter.setFont(geist(13.0));
  painter.setPen(chosen ? palette.primaryText : palette.ink);
  painter.drawText(text, flags | Qt::AlignLeft, row.text);
  painter.setFont(geist(12.0));
  painter.setPen(chosen ? palette.primaryText : palette.meta);
  painter.drawText(text, flags | Qt::AlignRight, shortcut);
}

}  // namespace

StatusMenuStyle::StatusMenuStyle(Appearance appearance)
    : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))), palette_(WindowPalette::of(appearance)) {}

int StatusMenuStyle::pixelMetric(PixelMetric metric, const QStyleOption* option,
                                 const QWidget* widget) const {
  switch (metric) {
    case PM_MenuPanelWidth:
    case PM_MenuDesktopFrameWidth:
      return 0;
    case PM_MenuHMargin:
    case PM_MenuVMargin:
      return menuPadding;
    default:
      return QProxyStyle::pixelMetric(metric, option, widget);
  }
}

int StatusMenuStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                               QStyleHintReturn* returnData) const {
  if (hint == SH_Menu_MouseTracking) return 1;
  if (hint == SH_Menu_Scrollable) return 0;
  return QProxyStyle::styleHint(hint, option, widget, returnData);
}

QSize StatusMenuStyle::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                                        const QWidget* widget) const {
  if (type != CT_MenuItem) return QProxyStyle::sizeFromContents(type, option, size, widget);
  const auto* row = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
  const bool separator = row && row->menuItemType == QStyleOptionMenuItem::Separator;
  return {menuWidth - 2 * menuPadding, separator ? separatorHeight : rowHeight};
}

void StatusMenuStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                    const QWidget* widget) const {
  if (element == PE_FrameMenu) return;
  if (element != PE_PanelMenu) return QProxyStyle::drawPrimitive(element, option, painter, widget);
  painter->save();
  painter->setRenderHint(QPainter::Antialiasing);
  const QRectF sheet = option->rect;
  painter->setPen(Qt::NoPen);
  painter->setBrush(palette_.toast.over(sheet));
  painter->drawRoundedRect(sheet, cornerRadius, cornerRadius);
  painter->setPen(QPen(palette_.toastLine, 1.0));
  painter->setBrush(Qt::NoBrush);
  painter->drawRoundedRect(sheet.adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius - 0.5, cornerRadius - 0.5);
  painter->restore();
}

void StatusMenuStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                                  const QWidget* widget) const {
  if (element == CE_MenuEmptyArea) return;
  const auto* row = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
  if (element != CE_MenuItem || !row) return QProxyStyle::drawControl(element, option, painter, widget);
  painter->save();
  painter->setRenderHint(QPainter::Antialiasing);
  drawRow(*row, shortcutOf(*row, widget), *painter, palette_);
  painter->restore();
}

}  // namespace vorli::ui
