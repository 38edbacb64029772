#pragma once

#include "ports/TextOrder.h"

#include <locale.h>
#if __has_include(<xlocale.h>)
#include <xlocale.h>  // declares locale_t on some systems
#endif

namespace vorli::posix {

/// The order of the locale that the environment asks for; by code points when that locale is not installed.
class TextOrder final : public ports::TextOrder {
 public:
  TextOrder();
  ~TextOrder() override;
  TextOrder(const TextOrder&) = delete;
  TextOrder& operator=(const TextOrder&) = delete;

  std::string sortKey(std::string_view text) const override;

 private:
  const locale_t locale_;
};

}  // namespace vorli::posix
