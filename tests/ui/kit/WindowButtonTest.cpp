#include "tests/ui/ActiveWindow.h"
#include "ui/kit/WindowButton.h"

#include <QApplication>
#include <QImage>
#include <QWidget>
#include <gtest/gtest.h>

namespace vorli::ui {
namespace {

TEST(WindowButton, showsTheWholeWidthOfItsFocusRing) {
  QWidget window;
  WindowButton close(WindowButton::Kind::close, Appearance::light, &window);
  window.show();
  makeActive(window);
  close.clearFocus();  // the focus came with the window's activation
  close.setFocus(Qt::TabFocusReason);
  QImage image(close.size(), QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  close.render(&image, {}, {}, QWidget::RenderFlags());
  EXPECT_GT(qAlpha(image.pixel(0, 14)), 200);
  EXPECT_GT(qAlpha(image.pixel(1, 14)), 200);
  EXPECT_LT(qAlpha(image.pixel(3, 14)), 50);
}

}  // namespace
}  // namespace vorli::ui
