// The library as one JSON document, for --json and for the page of --html. docs/library.schema.json
// describes it.
#pragma once

#include <vector>

#include "host/files/ChangeRecord.h"

namespace cairnset {

class JsonWriter;

/// What the document says of the run, beside the library.
struct RunResult {
  int status;                       // the exit status
  std::vector<FileChange> changes;  // paths relative to the library's folder
};

/// Writes the document of the session's library as it is now, which without a library has no
/// presets. What it keeps in memory is an index of who uses what: some bytes for each reference.
void writeLibraryDocument(JsonWriter& json, const RunResult& run);

}  // namespace cairnset
