// A file's name in its three forms, and the one seam between them.
//
//   volume name   the bytes of the directory entry: UTF-8, composed or decomposed, or any bytes
//                 at all; never "/" nor NUL
//   Unicode name  UTF-16; the volume's ":" is here "/" and the reverse, as the instrument's host
//                 and every copy made from it with rsync, tar or cp have it. A byte that is not
//                 part of valid UTF-8 is the lone surrogate U+DC00 + byte, so that each volume name
//                 has exactly one Unicode name and comes back from it unchanged.
//   held name     Mac Roman, composed: what presets, reports and references between presets use
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/HostTypes.h"

#pragma GCC visibility push(default)
namespace cairnset {

/// The Unicode name of a volume name; always possible. Neither composes nor decomposes.
std::u16string unicodeFromVolumeName(std::string_view volumeName);

struct VolumeName {
  OSErr result;
  std::string bytes;  // empty unless the result is noErr
};

/// The volume name of a Unicode name, written as it is given. bdNamErr for a name that no directory
/// entry can have: empty, ".", "..", more than 255 bytes, a NUL or a ":" (the volume's "/") in it,
/// or a surrogate that is no escaped byte. For any other it is the exact inverse of
/// unicodeFromVolumeName.
[[nodiscard]] VolumeName volumeNameFromUnicode(std::u16string_view name);

/// The held name of a volume name, of any length. A base letter with its combining marks becomes
/// the one Mac Roman character that it composes to, or one "_", so that composed and decomposed
/// copies of a name are held alike. A character with no Mac Roman form, and a byte that is not
/// UTF-8, is held as "_", which no file-name rule flags. ASCII punctuation stays even where a mark
/// follows it.
std::string heldNameFromVolumeName(std::string_view volumeName);
/// The same, appended to `held`.
void appendHeldNameFromVolumeName(std::string_view volumeName, std::string& held);

/// The same of a Unicode name. Here a surrogate that is no escaped byte is "_" too.
std::string heldNameFromUnicode(std::u16string_view name);

/// The held name that a report shows as this UTF-8 text, in which "/" and ":" stand for themselves;
/// nothing if a part of the text has no Mac Roman form.
std::optional<std::string> heldNameFromShownText(std::string_view text);

/// The key that puts a folder's entries in the order of the instrument's host: the Unicode name
/// decomposed and lower-cased, its code units packed so that comparing keys as unsigned bytes
/// compares them unit by unit. Two names can have one key; the exact names then decide.
/// Appends to `key`, so that a whole listing can share one buffer.
void appendSortKey(std::string_view volumeName, std::string& key);

}  // namespace cairnset
#pragma GCC visibility pop
