// Held names (Mac Roman) into the host's Unicode names and back; host/text/Names.h says what they
// are.
#pragma once

#include <string>

#include "host/HostTypes.h"

namespace cairnset {

/// The host's string object.
using CFStringRef = const std::u16string*;

/// What the conversions to Unicode return beside noErr; the name is then empty.
enum : OSErr { kNameIsEmpty = 4, kNameNotConverted = 5 };

/// The first 254 characters; those from 0x80 up count as Mac Roman, so every text converts but a
/// null one.
OSErr ConvertCStringToHFSUniStr(const char* text, HFSUniStr255* name);
OSErr ConvertPStringToHFSUniStr(const unsigned char* text, HFSUniStr255* name);
/// The first 255 units; a null reference is an empty text.
OSErr ConvertCFStringRefToHFSUniStr(CFStringRef text, HFSUniStr255* name);

/// The held name, cut to `size` bytes, NUL included. -1, with an empty text where there is room for
/// one, for a null name; -1 also where there is no room at all.
OSErr ConvertHFSUniStrToCString(const HFSUniStr255* name, char* text, long size);

}  // namespace cairnset
