#pragma once

#include "ports/LoginItem.h"

namespace vorli::machost {

/// The program itself as a login item of the system.
class LoginItem final : public ports::LoginItem {
 public:
  int status() override;
  [[nodiscard]] std::expected<void, std::string> registerItem() override;
  [[nodiscard]] std::expected<void, std::string> unregisterItem() override;
};

}  // namespace vorli::machost
