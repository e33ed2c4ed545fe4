// Paths as texts, in either syntax: with "/", or with ":" as older systems have it. No function
// here reads a disk. The system counts as older below version 0x1000 (host/SystemVersion.h).
#pragma once

#include "host/HostTypes.h"

namespace cairnset {

/// The part after the last "\", ":" or "/", or all of the path. Nothing where either is null.
/// `name` may be `path`.
void extractFilename(const char* path, char* name);

/// What follows the last "\". The path must contain one; the path itself where it does not.
char* findFileFromPath(char* path);

/// The part before the last "\", ":" or "/", with that separator unless the system is an older one.
/// Empty where there is none or it is the first character. Nothing where either is null.
void extractPath(const char* path, char* folder);

/// Whether the path begins with "/" (on an older system: does not begin with ":"). Not for null.
bool isAbsolutePath(const char* path);
/// The opposite, but false for null too.
bool isRelativePath(const char* path);

/// Removes every "/" at the end, also where nothing else is left. Nothing for null.
void makePathUniform(char* path);

/// Turns a ":" path into the running system's syntax, in place. A path that does not begin with ":"
/// is absolute and begins with a volume's name; "/Volumes" goes in front of it, unless the name
/// begins with that of the default volume. The buffer must have room for 9 more characters. (On an
/// older system: "/" becomes ":", but one in front is dropped.)
void convertToNativePathFormat(char* path);

/// The 64-byte Pascal name of an FSSpec.
void extractFilename(const FSSpec* fsSpec, unsigned char* name);
/// The same as a C string, of at most 64 bytes.
void extractCFilename(const FSSpec* fsSpec, char* name);
/// Sets the name, cut to the 63 characters that fit.
void setFilename(FSSpec* fsSpec, const unsigned char* name);

}  // namespace cairnset
