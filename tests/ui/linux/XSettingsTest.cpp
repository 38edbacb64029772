#include "ui/linux/XSettings.h"

#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <random>

namespace vorli::ui {
namespace {

enum class Order { little, big };

// Writes the bytes of a settings property.
class Settings {
 public:
  explicit Settings(Order order) : order_(order) {
    bytes_ = order == Order::big ? QByteArray("\1\0\0\0", 4) : QByteArray("\0\0\0\0", 4);
    number<std::uint32_t>(7);
    number<std::uint32_t>(0);  // the count, set at last
  }

  Settings& text(const char* name, const char* value) {
    start(1, name);
    number(static_cast<std::uint32_t>(std::strlen(value)));
    padded(value);
    return *this;
  }
  Settings& integer(const char* name, std::uint32_t value) {
    start(0, name);
    number(value);
    return *this;
  }
  Settings& colour(const char* name) {
    start(2, name);
    bytes_.append(8, '\x11');
    return *this;
  }

  QByteArray bytes() const {
    auto result = bytes_;
    result[order_ == Order::big ? 11 : 8] = static_cast<char>(count_);
    return result;
  }

 private:
  template <typename Number>
  void number(Number value) {
    for (std::size_t i = 0; i < sizeof value; ++i) {
      const auto shift = 8 * (order_ == Order::big ? sizeof value - 1 - i : i);
      bytes_.append(static_cast<char>(value >> shift));
    }
  }
  void padded(const char* text) {
    bytes_.append(text);
    while (bytes_.size() % 4) bytes_.append('\0');
  }
  void start(char type, const char* name) {
    ++count_;
    bytes_.append(type).append('\0');
    number(static_cast<std::uint16_t>(std::strlen(name)));
    padded(name);
    number<std::uint32_t>(3);
  }

  Order order_;
  QByteArray bytes_;
  int count_ = 0;
};

QByteArray usual(Order order) {
  return Settings(order)
      .integer("Xft/DPI", 98304)
      .colour("Gtk/Colour")
      .text("Net/IconThemeName", "Adwaita")
      .text("Net/ThemeName", "Adwaita-dark")
      .bytes();
}

TEST(XSettingsTest, findsATextInBothByteOrders) {
  for (const auto order : {Order::little, Order::big}) {
    EXPECT_EQ(xSettingsText(usual(order), "Net/ThemeName"), "Adwaita-dark");
    EXPECT_EQ(xSettingsText(usual(order), "Net/IconThemeName"), "Adwaita");
  }
}

TEST(XSettingsTest, whatIsMissingOrNoTextIsNotThere) {
  EXPECT_EQ(xSettingsText(usual(Order::little), "Net/Nothing"), std::nullopt);
  EXPECT_EQ(xSettingsText(usual(Order::little), "Xft/DPI"), std::nullopt);
  EXPECT_EQ(xSettingsText({}, "Net/ThemeName"), std::nullopt);
}

TEST(XSettingsTest, anEmptyTextIsOne) {
  EXPECT_EQ(xSettingsText(Settings(Order::little).text("Net/ThemeName", "").bytes(), "Net/ThemeName"), "");
}

TEST(XSettingsTest, damagedBytesAreNeverReadPastTheirEnd) {
  const auto whole = usual(Order::little);
  for (qsizetype length = 0; length < whole.size(); ++length) {
    EXPECT_EQ(xSettingsText(whole.left(length), "Net/ThemeName"), std::nullopt) << length;
  }
  std::minstd_rand random(1);
  for (int round = 0; round < 20000; ++round) {
    auto damaged = whole;
    for (int i = 0; i < 3; ++i) {
      damaged[static_cast<qsizetype>(random() % static_cast<unsigned>(damaged.size()))] =
          static_cast<char>(random());
    }
    const auto found = xSettingsText(damaged, "Net/ThemeName");
    EXPECT_LT(found.value_or("").size(), static_cast<std::size_t>(whole.size()));
  }
}

TEST(XSettingsTest, findsANumberInBothOrders) {
  for (const auto order : {Order::little, Order::big}) {
    const auto bytes = Settings(order)
                           .colour("Gtk/Background")
                           .integer("Gtk/EnableAnimations", 0)
                           .text("Net/ThemeName", "Dusk")
                           .integer("Xft/DPI", 98304)
                           .bytes();
    EXPECT_EQ(xSettingsNumber(bytes, "Gtk/EnableAnimations"), 0);
    EXPECT_EQ(xSettingsNumber(bytes, "Xft/DPI"), 98304);
    EXPECT_EQ(xSettingsNumber(bytes, "Net/ThemeName"), std::nullopt);
    EXPECT_EQ(xSettingsText(bytes, "Xft/DPI"), std::nullopt);
    EXPECT_EQ(xSettingsNumber(bytes, "Gtk/Background"), std::nullopt);
    EXPECT_EQ(xSettingsNumber(bytes, "Xft/Antialias"), std::nullopt);
    EXPECT_EQ(xSettingsNumber(bytes.left(bytes.size() - 1), "Xft/DPI"), std::nullopt);
  }
}

}  // namespace
}  // namespace vorli::ui
