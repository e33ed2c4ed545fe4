#include "tool/DryRunReport.h"

#include <iostream>
#include <string>
#include <vector>

#include "host/files/DryRun.h"
#include "host/files/FileManager.h"
#include "host/preferences/BrumePrefs.h"
#include "host/terminal/ReportText.h"
#include "tool/Session.h"

namespace cairnset {

namespace {

// Invalid where no library was found.
FSRef libraryFolder() {
  FSRef folder;
  if (path_string[0] != '\0') {
    (void)FSPathMakeRef(path_string, &folder, nullptr);
  } else if (_prefs != nullptr && _prefs->isInitialised()) {
    folder = *_prefs->getItemsFSRef();
  }
  return folder;
}

std::string lineFor(const FileChange& change) {
  switch (change.kind) {
    case FileChange::Kind::kMakeFolder:
      return "make folder " + change.path;
    case FileChange::Kind::kMake:
      return "make " + change.path;
    case FileChange::Kind::kRename:
      return "rename " + change.path + " to " + change.newPath;
    case FileChange::Kind::kMove:
      return "move " + change.path + " to " + change.newPath;
    case FileChange::Kind::kReplace:
      return "replace " + change.newPath + " by " + change.path;
    case FileChange::Kind::kRewrite:
      return "rewrite " + change.path;
    case FileChange::Kind::kDelete:
      return "delete " + change.path;
  }
  return "";
}

}  // namespace

void listChanges(const DryRun& dryRun) {
  const std::vector<FileChange> changes = dryRun.changesIn(libraryFolder());
  std::cout << "\nChanges that were not made:\n";
  for (const FileChange& change : changes) {
    writeGivenText(std::cout, lineFor(change));
    std::cout << '\n';
  }
  if (changes.empty()) std::cout << "none\n";
}

}  // namespace cairnset
