#pragma once

#import <Foundation/Foundation.h>
#include <Security/Security.h>

namespace vorli::macfake {

/// The content of this program's signature.
struct Signature {
  id team = nil;
  OSStatus selfStatus = errSecSuccess;
  OSStatus informationStatus = errSecSuccess;
  SecCSFlags askedFlags = 0;
};

Signature& signature();

}  // namespace vorli::macfake
