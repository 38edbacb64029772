#pragma once

#include "diagnostics/CrashReportView.h"
#include "ui/kit/MovingValue.h"
#include "ui/kit/PaperWindow.h"
#include "ui/kit/Paragraph.h"

#include <QAbstractButton>
#include <QTextEdit>

namespace vorli::ui {

class CheckBox;
class GlassPillButton;

/// The window around one crash report: what happened, the full report for those who want to read it, and two
/// answers.
class CrashReportSheet final : public PaperWindow {
 public:
  CrashReportSheet(const WindowSurroundings& surroundings, CrashReportView& view);

  /// Form of the upper half of the window, for the folded or the unfolded report.
  enum class Form { collapsed, expanded };

 private:
  void paintEvent(QPaintEvent* event) override;
  void makeContent();
  void makeReport();
  void makeAnswers();
  /// Places everything for the collapsed or the expanded report.
  void arrange();
  void paintHero(QPainter& painter);
  Paragraph bodyIn(Form form) const;
  double wordsHeight(Form form) const;
  void paintWords(QPainter& painter, double top, Form form) const;
  int boxHeight() const;
  QRect card() const;

  CrashReportView& view_;
  QAbstractButton* disclosure_ = nullptr;
  QTextEdit* report_ = nullptr;
  CheckBox* suppress_ = nullptr;
  GlassPillButton* dismiss_ = nullptr;
  GlassPillButton* send_ = nullptr;
  MovingValue open_{*this, 0.0, [this] { arrange(); }};  // share to which the report is unfolded
  Subscription expansion_;
};

}  // namespace vorli::ui
