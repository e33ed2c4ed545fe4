// Writing a file of the user's choice, for example a page, outside the library.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "host/HostTypes.h"
#include "host/ResultCodes.h"

namespace cairnset {

struct SystemCalls;

/// A file that is written under another name beside its place, and takes its name once it is
/// complete and on the disk. Until then, and after any failure, the old file stays. It is always
/// really written, even while changes to the library are only rehearsed.
class ReplacedFile {
 public:
  /// The file at a path as a user gives it, links resolved; it need not exist. Writes nothing.
  explicit ReplacedFile(const char* path);
  /// Removes what was written, unless finish() succeeded.
  ~ReplacedFile();
  ReplacedFile(const ReplacedFile&) = delete;
  ReplacedFile& operator=(const ReplacedFile&) = delete;

  /// The first failure: the folder does not exist, something other than a regular file has the
  /// name, a write failed ... After one, nothing more is written.
  OSErr status() const { return _status; }
  /// Whether the file is in the folder or below it, however the two paths are spelt.
  bool isBelow(const FSRef& folder) const;

  void write(std::string_view bytes);
  /// Puts the file in its place and returns status().
  [[nodiscard]] OSErr finish();

 private:
  void begin();
  void note(OSErr result) {
    if (_status == noErr) _status = result;
  }

  std::unique_ptr<const SystemCalls> _calls;
  OSErr _status = noErr;
  FSRef _folder;
  std::string _name;
  int _open_folder = -1;
  std::string _written_name;  // empty while there is no such file
  int _descriptor = -1;       // of that file
  std::int64_t _size = 0;
};

}  // namespace cairnset
