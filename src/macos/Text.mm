#include "macos/Text.h"

#include "base/UTF8.h"

namespace vorli::machost {

NSString* stringOf(std::string_view text) {
  NSString* const string = [[NSString alloc] initWithBytes:text.data()
                                                    length:text.size()
                                                  encoding:NSUTF8StringEncoding];
  return string ? string : stringOf(repairedUTF8(text));
}

std::string textOf(NSString* string) {
  const char* const bytes = string.UTF8String;
  return bytes ? bytes : "";
}

std::optional<std::string> textIn(id object) {
  if (![object isKindOfClass:NSString.class]) return std::nullopt;
  return textOf(static_cast<NSString*>(object));
}

std::string textOf(NSError* error) {
  return textOf(error.localizedDescription);
}

}  // namespace vorli::machost
