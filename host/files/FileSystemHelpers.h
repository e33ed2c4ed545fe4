// Short queries about files and folders, for the preset library and the preferences.
//
// Result codes are those of the File Manager (host/files/FileManager.h). Functions that return a
// flag, a number or a name return false, 0 or an empty name on any failure.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "host/HostTypes.h"
#include "host/ResultCodes.h"

namespace cairnset {

// --- Paths and references ------------------------------------------------------------------------

OSErr convertPathToFSRef(const char* path, FSRef* ref);
OSErr convertPathToFSSpec(const char* path, FSSpec* fsSpec);
/// `size` bytes, NUL included; bdNamErr where the path is longer.
OSErr convertFSRefToPath(const FSRef* ref, char* path, long size);
OSErr convertFSSpecToPath(const FSSpec* fsSpec, char* path, long size);
/// noErr (0, not true) where an item exists at the reference.
OSErr FSRefIsValid(const FSRef& ref);
/// Always false, on purpose: nobody may rely on it to find a file.
bool fileExists(const FSRef* ref);

// --- Names -----------------------------------------------------------------------------------

/// The held name of a place, cut to `size` bytes (1 or more), NUL included. It is read off the
/// reference: no system call, and the item need not exist.
void getPlaceName(const FSRef& ref, char* name, std::size_t size);
/// The place that an item of this held name has in the folder, whether there is one or not; no
/// place if none can have the name. No system call.
FSRef placeOfName(const FSRef& folder, const char* name);
/// The path of a place below a folder, relative to it, or else its absolute path; in the bytes of
/// the volume. Read off the references likewise.
std::string getPlacePath(const FSRef& ref, const FSRef& folder);
/// The same as getPlaceName, of an item that exists.
void getCFilename(const FSRef& ref, char* name, unsigned long size);
OSErr getPFilename(const FSRef& ref, unsigned char* name);
/// Renames nothing: makes `ref` the reference of the existing item `name` in the same folder. At
/// most 64 UTF-16 units of the name count.
OSErr setCFilename(FSRef& ref, const char* name);
OSErr setPFilename(FSRef& ref, const unsigned char* name);

// --- Structure -------------------------------------------------------------------------------

OSErr getParent(FSRef& parent, const FSRef& item);
OSErr getParent(FSSpec& parent, const FSSpec& item);
bool isFolder(const FSRef* ref);
bool isAlias(const FSRef* ref);
/// Whether something is there that can have a data fork: no folder, alias, FIFO, socket or device.
/// Opens nothing.
bool isRegularFile(const FSRef* ref);
/// Whether that is certain not to be there. False if it is, or if the place cannot be looked at.
bool isNoFile(const FSRef* ref);
std::uint32_t getNode(const FSRef* ref);
/// The node number of a folder; 0 for anything else.
std::uint32_t getFolderNode(const FSRef* ref);
bool isSameFile(const FSRef* a, const FSRef* b);
/// Whether two items are in one folder, where a folder counts as being in itself.
bool isSameFolder(const FSRef* a, const FSRef* b);
/// Seconds since 1904-01-01 UTC in the upper 48 bits, 65536ths in the lower 16; 0 on failure.
std::uint64_t getCreationDate(const FSRef* ref);
OSErr setCreationDate(const FSRef* ref, unsigned long long date);

// --- The user's preferences folder ---------------------------------------------------------------

/// The folder, which is not made where it is missing.
OSErr getPrefsFSRef(FSRef* folder);
/// The same folder by number, made where it is missing.
OSErr getPrefsVolRefNumAndDirID(short* vRefNum, long* dirID);

}  // namespace cairnset
