// What -z, --rename and --relink print about what they have done.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "presets/PresetKinds.h"
#include "presets/Renames.h"

namespace cairnset {

/// The word for a kind in reports: "velmap", "effect", "program" or "session".
[[nodiscard]] const char* kindWord(PresetKind kind);

/// Lines about renames on standard output, and about what failed on standard error, as they are
/// added; the last ones at the end.
class RenameReport {
 public:
  /// -z takes a rename to a name that is taken for no failure.
  explicit RenameReport(bool refusedIsFailure) : _refused_is_failure(refusedIsFailure) {}

  /// A line for the rename, one for each preset that was relinked, and one for each failure.
  void add(const Renamed& renamed);
  /// The same for references of which no preset was renamed.
  void add(PresetKind kind, const std::string& oldName, const std::string& newName,
           const std::vector<Relinked>& relinked);
  /// kReferencesNotWritten if anything failed, or an old name had to be kept; else kSuccess.
  int status() const { return _status; }
  /// Prints what is left, and returns status().
  int end();

 private:
  void addHeader(const char* doing, PresetKind kind, const std::string& oldName,
                 const std::string& newName);
  void addRelinked(const std::vector<Relinked>& relinked);
  void fail(const char* doing, const Preset& preset, OSErr result, const std::string& name);

  std::string _text;             // for standard output
  std::set<PresetKind> _needed;  // the kinds for which old names were kept
  const bool _refused_is_failure;
  int _status = 0;
};

}  // namespace cairnset
