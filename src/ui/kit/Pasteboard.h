#pragma once

#include "ports/Pasteboard.h"

namespace vorli::ui {

/// The desktop's clipboard. The program itself provides the contents, so they outlive its windows.
class Pasteboard final : public ports::Pasteboard {
 public:
  void setString(const std::string& text) override;
};

}  // namespace vorli::ui
