#include "posix/TextOrder.h"

#include "base/UnicodeText.h"

#include <algorithm>
#include <cstring>

namespace vorli::posix {

TextOrder::TextOrder()
    : locale_(newlocale(LC_COLLATE_MASK | LC_CTYPE_MASK, "", static_cast<locale_t>(nullptr))) {}

TextOrder::~TextOrder() {
  if (locale_) freelocale(locale_);
}

std::string TextOrder::sortKey(std::string_view text) const {
  auto folded = lowercased(text);
  std::ranges::replace(folded, '\0', ' ');  // the system's function would end there
  if (!locale_) return folded;
  std::string key(strxfrm_l(nullptr, folded.c_str(), 0, locale_), '\0');
  strxfrm_l(key.data(), folded.c_str(), key.size() + 1, locale_);
  return key;
}

}  // namespace vorli::posix
