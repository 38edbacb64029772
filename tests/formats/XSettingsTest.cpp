#include "formats/XSettings.h"

#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <string>

namespace vorli::formats {
namespace {

enum class Order { little, big };

// Writes the bytes of a settings property.
class Settings {
 public:
  explicit Settings(Order order) : order_(order) {
    bytes_ = order == Order::big ? std::string("\1\0\0\0", 4) : std::string("\0\0\0\0", 4);
    number<std::uint32_t>(7);
    number<std::uint32_t>(0);  // the count, set at the end
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

  std::string bytes() const {
    auto result = bytes_;
    result[order_ == Order::big ? 11 : 8] = static_cast<char>(count_);
    return result;
  }

 private:
  template <typename Number>
  void number(Number value) {
    for (std::size_t i = 0; i < sizeof value; ++i) {
      const auto shift = 8 * (order_ == Order::big ? sizeof value - 1 - i : i);
      bytes_ += static_cast<char>(value >> shift);
    }
  }
  void padded(const char* text) {
    bytes_.append(text);
    while (bytes_.size() % 4) bytes_ += '\0';
  }
  void start(char type, const char* name) {
    ++count_;
    bytes_ += type;
    bytes_ += '\0';
    number(static_cast<std::uint16_t>(std::strlen(name)));
    padded(name);
    number<std::uint32_t>(3);
  }

  Order order_;
  std::string bytes_;
  int count_ = 0;
};

std::string usual(Order order) {
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

TEST(XSettingsTest, aMissingSettingOrAnotherTypeIsNotFound) {
  EXPECT_EQ(xSettingsText(usual(Order::little), "Net/Nothing"), std::nullopt);
  EXPECT_EQ(xSettingsText(usual(Order::little), "Xft/DPI"), std::nullopt);
  EXPECT_EQ(xSettingsText({}, "Net/ThemeName"), std::nullopt);
}

TEST(XSettingsTest, anEmptyTextIsFound) {
  EXPECT_EQ(xSettingsText(Settings(Order::little).text("Net/ThemeName", "").bytes(), "Net/ThemeName"), "");
}

TEST(XSettingsTest, damagedBytesAreNeverReadPastTheirEnd) {
  const auto whole = usual(Order::little);
  for (std::size_t length = 0; length < whole.size(); ++length) {
    EXPECT_EQ(xSettingsText(whole.substr(0, length), "Net/ThemeName"), std::nullopt) << length;
  }
  std::minstd_rand random(1);
  for (int round = 0; round < 20000; ++round) {
    auto damaged = whole;
    for (int i = 0; i < 3; ++i) {
      damaged[random() % damaged.size()] = static_cast<char>(random());
    }
    const auto found = xSettingsText(damaged, "Net/ThemeName");
    EXPECT_LT(found.value_or("").size(), whole.size());
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
    EXPECT_EQ(xSettingsNumber(bytes.substr(0, bytes.size() - 1), "Xft/DPI"), std::nullopt);
  }
}

}  // namespace
}  // namespace vorli::formats
