#pragma once

#include <map>
#include <objc/objc.h>
#include <string>

namespace vorli::objc {

/// The class that answers for an object; that of blocks is NSObject.
Class classOf(id object);

/// A new instance that nobody has initialised; its caller owns it.
id allocate(Class type);

/// Frees an instance, after the last `dealloc` of its classes.
void destroy(id object);

/// Objects, blocks and variables of blocks that are alive, by their class; those that are meant to live as
/// long as the program are not counted.
std::map<std::string, long> living();

/// The object lives as long as the program from now on.
void keepForEver(id object);

/// Number of references to an object.
long referencesTo(id object);

/// Count blocks, which have no class of their own.
void noteBirth(const char* type);
void noteDeath(const char* type);

}  // namespace vorli::objc
