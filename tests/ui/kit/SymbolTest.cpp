#include "ui/kit/Symbol.h"
#include "ui/kit/SymbolPaths.h"

#include <QImage>
#include <QPainter>
#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace vorli::ui {
namespace {

std::vector<std::string> allNames() {
  std::vector<std::string> names;
  std::string line;
  for (const char character : symbolPaths) {
    if (character != '\n') {
      line += character;
    } else {
      if (!line.empty() && line.front() != ' ') names.push_back(line);
      line.clear();
    }
  }
  return names;
}

TEST(Symbol, familyIsComplete) {
  EXPECT_EQ(allNames().size(), 51U);
  for (const char* name : {"gearshape", "arrow.up.right.square", "key.option", "xmark", "box.missing"})
    EXPECT_NE(Symbol::named(name), nullptr) << name;
}

TEST(Symbol, eachDrawingFillsMostOfItsGridAndStaysInside) {
  for (const auto& name : allNames()) {
    const auto* symbol = Symbol::named(name);
    ASSERT_NE(symbol, nullptr) << name;
    QRectF bounds;
    for (const auto& part : symbol->parts()) {
      EXPECT_GT(part.path.elementCount(), 1) << name;
      bounds |= part.path.boundingRect();
    }
    EXPECT_GE(std::min(bounds.left(), bounds.top()), 0.0) << name;
    EXPECT_LE(std::max(bounds.right(), bounds.bottom()), 24.0) << name;
    EXPECT_GE(std::max(bounds.width(), bounds.height()), 8.0) << name;
  }
}

TEST(Symbol, nameMustMatchAsAWhole) {
  EXPECT_EQ(Symbol::named("gear"), nullptr);
  EXPECT_EQ(Symbol::named("wrench.and.screwdriver.fil"), nullptr);
  EXPECT_EQ(Symbol::named(""), nullptr);
  EXPECT_EQ(Symbol::named("  stroke 1.75"), nullptr);
}

TEST(Symbol, strokesAndFillsAreDistinguished) {
  ASSERT_NE(Symbol::named("xmark"), nullptr);
  EXPECT_EQ(Symbol::named("xmark")->parts().front().strokeWidth, 1.75);
  EXPECT_EQ(Symbol::named("paperplane.fill")->parts().front().strokeWidth, 0.0);
}

TEST(Symbol, knockedOutMarkShowsTheGround) {
  QImage image(96, 96, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::white);
  QPainter painter(&image);
  paintSymbol(painter, "exclamationmark.triangle.fill", QRectF(0.0, 0.0, 96.0, 96.0), Qt::black);
  painter.end();
  EXPECT_EQ(image.pixelColor(48, 44), QColor(Qt::white));  // in the exclamation mark
  EXPECT_EQ(image.pixelColor(48, 76), QColor(Qt::black));  // below it
}

}  // namespace
}  // namespace vorli::ui
