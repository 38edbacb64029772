#pragma once

#include "tests/macos/runtime/Records.h"

namespace vorli::objc {

/// The one selector of this name.
SEL selectorOf(const char* name);

/// Null when there is no such class.
Class classNamed(const char* name);

/// The code that an instance of the class runs for the selector; null when there is none.
IMP codeFor(Class type, SEL selector);

/// Like `codeFor`, but without the superclasses.
IMP ownCodeFor(Class type, SEL selector);

/// True for the class itself and for what is derived from it.
bool isKind(Class type, Class other);

bool conforms(Class type, const ProtocolRecord& protocol);

/// Ends the program with a message: the code under test has broken a rule of the language.
[[noreturn]] void breakOff(const char* what, const char* which);

}  // namespace vorli::objc
