// The library as one HTML page that is complete in itself, for --html: tool/page.html with the
// document of tool/LibraryDocument.h in it.
#pragma once

#include <string_view>

namespace cairnset {

class ReplacedFile;
struct RunResult;

/// The parts of tool/page.html, made by the build (tool/embed-page.cmake).
extern const std::string_view kPageBeforeDocument;
extern const std::string_view kPageAfterDocument;

/// Writes the page of the session's library; Returns kSuccess, or kReportNotWritten if the page
/// could not be written; the old file then stays.
[[nodiscard]] int writePage(ReplacedFile& file, const RunResult& run);

}  // namespace cairnset
