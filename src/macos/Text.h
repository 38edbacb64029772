#pragma once

#import <Foundation/Foundation.h>
#include <optional>
#include <string>
#include <string_view>

namespace vorli::machost {

/// Repairs invalid UTF-8, so the result is never nil.
NSString* stringOf(std::string_view text);

/// Returns an empty text for nil.
std::string textOf(NSString* string);

/// Returns the text in an object; empty when the object is nil or not a text.
std::optional<std::string> textIn(id object);

/// Returns the system's description of a failure.
std::string textOf(NSError* error);

}  // namespace vorli::machost
