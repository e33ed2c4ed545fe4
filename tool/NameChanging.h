// --rename and --relink: presets and references get other names as the user asks for it.
#pragma once

#include <vector>

#include "presets/NameChanges.h"

namespace cairnset {

/// Makes these changes to the session's library, in order, or none of them. Returns kChangeRefused,
/// after a line on standard error, if one of them cannot be made: then nothing has been changed.
/// Returns kReferencesNotWritten if one fails, with the failure on standard error: those after it
/// are not made. Otherwise returns kSuccess. Signals are held back until all is done.
int changeNames(const std::vector<NameChange>& changes);

}  // namespace cairnset
