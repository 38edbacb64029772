#pragma once

#include "ports/LoginItem.h"

#include <string>
#include <vector>

namespace vorli::fakes {

/// A login item that is registered or not, as a test says.
class LoginItem final : public ports::LoginItem {
 public:
  int rawStatus = 0;
  std::expected<void, std::string> result;
  std::vector<std::string> calls;  // "register", "unregister"

  int status() override { return rawStatus; }
  std::expected<void, std::string> registerItem() override {
    calls.emplace_back("register");
    return result;
  }
  std::expected<void, std::string> unregisterItem() override {
    calls.emplace_back("unregister");
    return result;
  }
};

}  // namespace vorli::fakes
