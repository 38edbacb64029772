#include "tests/macos/runtime/Signature.h"

#include "tests/macos/runtime/Foundation.h"
#include "tests/macos/runtime/State.h"

namespace vorli::macfake {

static State<Signature> signatureState;

Signature& signature() {
  return *signatureState;
}

}  // namespace vorli::macfake

using vorli::macfake::signature;

const CFStringRef kSecCodeInfoTeamIdentifier = (__bridge CFStringRef) @"teamid";

OSStatus SecCodeCopySelf(SecCSFlags, SecCodeRef* self) {
  if (signature().selfStatus == errSecSuccess) *self = (__bridge_retained SecCodeRef)[[NSObject alloc] init];
  return signature().selfStatus;
}

OSStatus SecCodeCopySigningInformation(SecStaticCodeRef, SecCSFlags flags, CFDictionaryRef* information) {
  signature().askedFlags = flags;
  if (signature().informationStatus != errSecSuccess) return signature().informationStatus;
  NSMutableDictionary* const facts = [[NSMutableDictionary alloc] init];
  facts[@"identifier"] = @"com.kv.vorli.helper";
  facts[@"teamid"] = signature().team;
  *information = (__bridge_retained CFDictionaryRef)facts;
  return errSecSuccess;
}
