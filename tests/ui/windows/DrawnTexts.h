#pragma once

#include <QAbstractScrollArea>
#include <QFont>
#include <QFontMetricsF>
#include <QList>
#include <QPaintDevice>
#include <QPaintEngine>
#include <QPointF>
#include <QRectF>
#include <QString>
#include <QStringList>
#include <QTextEdit>
#include <QTransform>
#include <QWidget>
#include <gtest/gtest.h>

namespace vorli::ui {

/// A text that a widget has drawn, and the place of its ink in the widget.
struct DrawnText {
  QString text;
  QRectF ink;
};

/// Records the texts that are drawn on it, and nothing else.
class TextRecorder final : public QPaintDevice {
 public:
  explicit TextRecorder(const QWidget& widget) : size_(widget.size()), dpi_(widget.logicalDpiY()) {}

  QPaintEngine* paintEngine() const override { return &engine_; }
  const QList<DrawnText>& texts() const { return engine_.texts; }

 protected:
  int metric(PaintDeviceMetric metric) const override {
    switch (metric) {
      case PdmWidth:
        return size_.width();
      case PdmHeight:
        return size_.height();
      case PdmDpiX:
      case PdmDpiY:
      case PdmPhysicalDpiX:
      case PdmPhysicalDpiY:
        return dpi_;
      case PdmDevicePixelRatio:
        return 1;
      case PdmDevicePixelRatioScaled:
        return static_cast<int>(devicePixelRatioFScale());
      default:
        return QPaintDevice::metric(metric);
    }
  }

 private:
  class Engine final : public QPaintEngine {
   public:
    Engine() : QPaintEngine(AllFeatures) {}
    bool begin(QPaintDevice*) override { return true; }
    bool end() override { return true; }
    void updateState(const QPaintEngineState& state) override { transform_ = state.transform(); }
    void drawPath(const QPainterPath&) override {}
    void drawPolygon(const QPointF*, int, PolygonDrawMode) override {}
    void drawPixmap(const QRectF&, const QPixmap&, const QRectF&) override {}
    void drawTiledPixmap(const QRectF&, const QPixmap&, const QPointF&) override {}
    void drawImage(const QRectF&, const QImage&, const QRectF&, Qt::ImageConversionFlags) override {}
    void drawTextItem(const QPointF& place, const QTextItem& item) override {
      if (item.text().trimmed().isEmpty()) return;
      const QRectF ink = QFontMetricsF(item.font()).tightBoundingRect(item.text());
      texts.push_back({item.text(), transform_.mapRect(ink.translated(place))});
    }
    Type type() const override { return User; }

    QList<DrawnText> texts;

   private:
    QTransform transform_;
  };

  const QSize size_;
  const int dpi_;
  mutable Engine engine_;
};

/// The texts of one widget without its children.
inline QList<DrawnText> textsDrawnBy(QWidget& widget) {
  TextRecorder recorder(widget);
  widget.render(&recorder, {}, {}, QWidget::RenderFlags());
  return recorder.texts();
}

inline bool isScrolled(const QWidget& widget) {
  for (const auto* each = &widget; each; each = each->parentWidget())
    if (qobject_cast<const QAbstractScrollArea*>(each)) return true;
  return false;
}

/// Expects that every text in `top` is drawn in full, inside its widget, and clear of all other texts. Texts
/// that scroll are left out, and the texts of `endingWithDots` really end with dots. Effects are removed,
/// because they would draw the texts elsewhere first.
inline void expectTextsFit(QWidget& top, const QString& what, const QStringList& endingWithDots = {}) {
  QList<QWidget*> widgets{&top};
  for (auto* child : top.findChildren<QWidget*>()) {
    const auto* scrolled = qobject_cast<QTextEdit*>(child->parentWidget());
    if (child->isVisibleTo(&top) && !scrolled) widgets.push_back(child);
  }
  struct Placed {
    DrawnText drawn;
    QRectF ink;  // in `top`
  };
  QList<Placed> all;
  for (auto* widget : widgets) {
    widget->setGraphicsEffect(nullptr);
    for (const auto& drawn : textsDrawnBy(*widget)) {
      const auto name = (what + QStringLiteral(": ") + drawn.text).toStdString();
      const bool mayEndSo = endingWithDots.contains(drawn.text);
      EXPECT_TRUE(mayEndSo || !drawn.text.endsWith(u'…')) << name << " is cut";
      EXPECT_TRUE(QRectF(widget->rect()).adjusted(-1.0, -1.0, 1.0, 1.0).contains(drawn.ink))
          << name << " leaves its widget of " << widget->width() << " x " << widget->height();
      const QRectF ink = drawn.ink.translated(widget->mapTo(&top, QPoint()));
      EXPECT_TRUE(isScrolled(*widget) || QRectF(top.rect()).contains(ink)) << name << " leaves the window";
      all.push_back({drawn, ink});
    }
  }
  EXPECT_FALSE(all.empty()) << what.toStdString();
  constexpr double rounding = 2.0;  // each ink is rounded up to whole points
  for (qsizetype i = 0; i < all.size(); ++i) {
    for (qsizetype j = i + 1; j < all.size(); ++j) {
      if (all[i].drawn.text == all[j].drawn.text) continue;  // a pressed text is drawn twice
      const QRectF common = all[i].ink.intersected(all[j].ink);
      EXPECT_FALSE(common.width() > rounding && common.height() > rounding)
          << what.toStdString() << ": " << all[i].drawn.text.toStdString() << " lies on "
          << all[j].drawn.text.toStdString();
    }
  }
}

}  // namespace vorli::ui
