#include "tool/Page.h"

#include "host/files/ReplacedFile.h"
#include "host/terminal/Process.h"
#include "tool/JsonWriter.h"
#include "tool/LibraryDocument.h"
#include "tool/Session.h"

namespace cairnset {

int writePage(ReplacedFile& file, const RunResult& run) {
  const HeldSignals held;  // an interrupted run leaves no unfinished file
  file.write(kPageBeforeDocument);
  JsonWriter json([&file](std::string_view text) { file.write(text); });
  writeLibraryDocument(json, run);
  file.write(kPageAfterDocument);
  return file.finish() == noErr ? kSuccess : kReportNotWritten;
}

}  // namespace cairnset
