#pragma once

// Taps of what other programs play.

#include <CoreAudio/CATapDescription.h>

CF_EXPORT OSStatus AudioHardwareCreateProcessTap(CATapDescription* description, AudioObjectID* tap)
    API_AVAILABLE(macos(14.2));
CF_EXPORT OSStatus AudioHardwareDestroyProcessTap(AudioObjectID tap) API_AVAILABLE(macos(14.2));
