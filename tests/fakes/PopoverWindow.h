#pragma once

#include "base/SubscriberList.h"
#include "ports/PopoverWindow.h"

#include <string>
#include <utility>
#include <vector>

namespace vorli::fakes {

/// A panel that a test looks at. `calls` has the requests in order.
class PopoverWindow final : public ports::PopoverWindow {
 public:
  struct Motion {
    ports::PopoverSize size;
    Animation animation;
  };

  bool isShown() const override { return shown; }
  bool hasPlace() const override { return hasScreen; }
  bool show() override {
    calls.emplace_back("show");
    if (shown || !hasScreen) return shown;
    shown = true;
    if (didShow) didShow();
    return true;
  }
  void performClose() override {
    if (!shown) return;
    calls.emplace_back("performClose");
    if (shouldClose && !shouldClose()) return;
    calls.emplace_back("closed");
    shown = false;
  }
  ports::PopoverSize contentSize() const override { return size; }
  void setContentSize(ports::PopoverSize newSize) override {
    calls.push_back("size " + text(newSize));
    size = newSize;
  }
  void animateContentSize(ports::PopoverSize newSize, const Animation& animation) override {
    if (newSize == size) return;
    size = newSize;
    if (!shown) return;
    calls.push_back("animate " + text(newSize));
    motions.push_back({newSize, animation});
  }
  void makeKey() override { calls.emplace_back("key"); }
  void setShouldCloseHandler(std::function<bool()> handler) override { shouldClose = std::move(handler); }
  void setDidShowHandler(std::function<void()> handler) override { didShow = std::move(handler); }
  Subscription monitorPressesOutside(std::function<void()> handler) override {
    ++monitors;
    return presses_.add(std::move(handler));
  }

  void pressOutside() { presses_.deliver(); }
  bool isMonitored() const { return !presses_.empty(); }

  bool hasScreen = true;
  bool shown = false;
  ports::PopoverSize size;
  int monitors = 0;  // ever begun
  std::vector<std::string> calls;
  std::vector<Motion> motions;
  std::function<bool()> shouldClose;
  std::function<void()> didShow;

 private:
  static std::string text(ports::PopoverSize size) {
    return std::to_string(static_cast<int>(size.width)) + "x" + std::to_string(static_cast<int>(size.height));
  }

  SubscriberList<> presses_;
};

}  // namespace vorli::fakes
