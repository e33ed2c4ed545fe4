// What a dry run tells beyond the report of the real run.
#pragma once

namespace cairnset {

class ChangeRecord;
class DryRun;

/// Prints the changes that the run would have made to the session's library and, outside of it, to
/// the preferences. A note says if some of that cannot be written, so that a real run would fail.
void listChanges(const ChangeRecord& record, const DryRun& dryRun);

}  // namespace cairnset
