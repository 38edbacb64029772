#pragma once

#include "base/Assert.h"
#include "ports/SheetWindow.h"

#include <utility>

namespace vorli::fakes {

/// A window without a picture.
class SheetWindow final : public ports::SheetWindow {
 public:
  void open(const std::string& given) override {
    VORLI_ASSERT(!isOpen);
    isOpen = true;
    title = given;
    ++openings;
  }
  void centerAndBringToFront() override { ++broughtToFront; }
  void close() override {
    if (std::exchange(isOpen, false) && handler) handler();
  }
  void setCloseHandler(std::function<void()> given) override { handler = std::move(given); }

  bool isOpen = false;
  std::string title;
  int openings = 0;
  int broughtToFront = 0;
  std::function<void()> handler;
};

}  // namespace vorli::fakes
