#pragma once

// Keys that reach the program wherever the focus is.

#include <CoreFoundation/CoreFoundation.h>

typedef struct OpaqueEventRef* EventRef;
typedef struct OpaqueEventHandlerRef* EventHandlerRef;
typedef struct OpaqueEventHandlerCallRef* EventHandlerCallRef;
typedef struct OpaqueEventTargetRef* EventTargetRef;
typedef struct OpaqueEventHotKeyRef* EventHotKeyRef;
typedef OSStatus (*EventHandlerProcPtr)(EventHandlerCallRef call, EventRef event, void* userData);
typedef EventHandlerProcPtr EventHandlerUPP;

#pragma pack(push, 2)
struct EventHotKeyID {
  OSType signature;
  UInt32 id;
};
struct EventTypeSpec {
  OSType eventClass;
  UInt32 eventKind;
};
#pragma pack(pop)
typedef struct EventHotKeyID EventHotKeyID;
typedef struct EventTypeSpec EventTypeSpec;

enum { kEventClassKeyboard = 'keyb', kEventHotKeyPressed = 5 };

CF_EXPORT EventTargetRef GetApplicationEventTarget(void);
CF_EXPORT OSStatus InstallEventHandler(EventTargetRef target, EventHandlerUPP handler, ItemCount typeCount,
                                       const EventTypeSpec* types, void* userData,
                                       EventHandlerRef* installed);
CF_EXPORT OSStatus RemoveEventHandler(EventHandlerRef handler);
CF_EXPORT OSStatus RegisterEventHotKey(UInt32 keyCode, UInt32 modifiers, EventHotKeyID identifier,
                                       EventTargetRef target, OptionBits options, EventHotKeyRef* registered);
CF_EXPORT OSStatus UnregisterEventHotKey(EventHotKeyRef hotKey);
