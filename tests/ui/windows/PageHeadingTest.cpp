#include "tests/ui/windows/DrawnTexts.h"
#include "ui/windows/PageHeading.h"

#include <QPainter>
#include <gtest/gtest.h>

namespace vorli::ui {
namespace {

struct HeadingWidget final : QWidget {
  HeadingWidget(const QString& title, const QString& subtitle) : heading(title, subtitle, 600.0) {
    resize(600, 60 + static_cast<int>(heading.addedHeight()));
  }
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    heading.paint(painter, {0.0, 0.0}, WindowPalette::of(Appearance::light));
  }

  const PageHeading heading;
};

TEST(PageHeading, addsNothingForOneLineEach) {
  EXPECT_EQ(HeadingWidget("General", "How Vorli behaves on your computer.").heading.addedHeight(), 0.0);
}

TEST(PageHeading, wrapsATitleAndASentenceThatAreTooLong) {
  HeadingWidget widget(
      QStringLiteral("Benachrichtigungen auf diesem Rechner und auf allen anderen"),
      QStringLiteral("Programme, die im Hintergrund laufen, ohne dass Sie sie geöffnet haben, und "
                     "was sie dabei an Speicher und Zeit verbrauchen."));
  EXPECT_EQ(widget.heading.addedHeight(), 36.0 + 20.0);
  expectTextsFit(widget, QStringLiteral("heading"));
}

}  // namespace
}  // namespace vorli::ui
