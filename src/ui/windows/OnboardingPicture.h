#pragma once

#include "flows/OnboardingDoneView.h"
#include "flows/OnboardingView.h"
#include "ui/kit/AppMark.h"
#include "ui/kit/WindowPalette.h"

#include <QPainter>
#include <QRectF>
#include <QString>
#include <string_view>
#include <utility>
#include <vector>

namespace vorli::ui {

/// Lengths of the first steps' window, in points.
struct OnboardingMetrics {
  static constexpr int width = 460, height = 600;
  static constexpr double margin = 32.0, contentWidth = 396.0;
  static constexpr double buttonTop = 524.0, buttonHeight = 44.0;
  static constexpr double secondaryWidth = 128.0, buttonGap = 10.0;
  static constexpr double statusTop = 488.0, statusHeight = 16.0;
  static constexpr double cardBottom = 472.0;
  static constexpr double markSide = 96.0, doneDialSide = 176.0;
  static constexpr double haloRadius = 200.0;
};

/// Draws one state of the first steps: a mark on a halo with a title and a sentence, and a card below them.
class OnboardingPicture {
 public:
  enum class Dot { idle, amber, green };
  struct Row {
    std::string_view icon;
    ExplainerRow::Look look;
    QString title;
    QString body;

    bool operator==(const Row&) const = default;
  };

  /// The parts of the picture.
  struct Content {
    QString title;
    QString sentence;
    std::vector<Row> rows;
    QString statusLine;
    Dot dot = Dot::idle;
    OnboardingView::Mood mood = OnboardingView::Mood::ready;
    bool isDone = false;
    double room = 0.0;  // height in which the mark and the words are centred

    bool operator==(const Content&) const = default;
  };

  OnboardingPicture() = default;
  explicit OnboardingPicture(Content content) : content_(std::move(content)) {}
  static OnboardingPicture of(const OnboardingView& view);
  static OnboardingPicture of(const OnboardingDoneView& view);

  const QString& title() const { return content_.title; }
  const QString& sentence() const { return content_.sentence; }
  const std::vector<Row>& rows() const { return content_.rows; }
  const QString& statusLine() const { return content_.statusLine; }
  OnboardingView::Mood mood() const { return content_.mood; }
  bool isDone() const { return content_.isDone; }

  // Places within the sheet.
  QRectF card() const;
  QRectF row(std::size_t index) const;
  /// Place of the mark, which is smaller than usual where large fonts leave too little room above the card.
  QRectF mark() const;
  QRectF titlePlace() const;
  QRectF sentencePlace() const;

  /// Title and sentence, moved down by `offset`.
  void paintWords(QPainter& painter, double offset, const WindowPalette& palette) const;
  void paintCard(QPainter& painter, const WindowPalette& palette) const;

  bool operator==(const OnboardingPicture&) const = default;

 private:
  void paintStatusLine(QPainter& painter, const WindowPalette& palette) const;
  double room() const;
  double largestMark() const;
  double wordsHeight() const;

  Content content_;
};

/// The dial of the mark: all lit when ready, a group that moves round while waiting, a few in amber in
/// trouble. `position` is the number of ticks by which the waiting dial has moved.
MarkTicks moodTicks(OnboardingView::Mood mood, int position, const WindowPalette& palette);
/// Time in which the waiting dial moves by one tick.
constexpr double waitingTickSeconds = 0.2;

/// Paints the light behind the mark; `breath` goes from 0 to 1.
void paintHalo(QPainter& painter, const QPointF& centre, double breath, OnboardingView::Mood mood,
               const WindowPalette& palette);

/// Paints the done step's dial: `ticks` of twelve, and the check mark, of which the share `drawn` is drawn,
/// at the size `pop`.
void paintDoneDial(QPainter& painter, const QRectF& place, double ticks, double drawn, double pop,
                   const WindowPalette& palette);

}  // namespace vorli::ui
