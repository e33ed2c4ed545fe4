// The second of the three steps of a load: what the files begin with.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <string_view>

#include "host/HostTypes.h"
#include "host/ResultCodes.h"

namespace cairnset {

/// The start of a file when it was read: all of a preset, of which the largest has 265 bytes.
struct FileStart {
  static constexpr std::size_t kMost = 1024;

  OSErr opened = noErr;  // fnfErr, permErr ...; ioErr where there is no regular file. Nothing else
                         // counts unless it is noErr.
  OSErr read = noErr;    // there are no bytes unless it is noErr
  OSErr closed = noErr;
  std::int64_t size = 0;   // of the whole file, in bytes
  std::string_view bytes;  // its first kMost bytes, or all of them
};

/// Opens a file with the permissions (fsRdPerm, fsRdWrPerm) and reads its start into `buffer`,
/// which holds FileStart::kMost bytes and must live as long as what is returned.
[[nodiscard]] FileStart readFileStart(const FSRef& file, std::int8_t permissions, char* buffer);

/// Reads the starts of many files, several at a time, and returns them in the order in which they
/// were added. Each is opened with read/write permission: one that may not be written has no start.
///
/// From some hundreds of files on there is a thread for each processor, and up to 16 while files
/// have to be waited for, as with a cold cache. Where threads are refused there are fewer, down to
/// none: then next() does the work. The results are the same for any number of them.
class FileReading {
 public:
  /// How many files may be added ahead of next(), so that memory does not grow with the library.
  static constexpr std::size_t kMostAhead = 2048;

  /// Whether a file ends after these bytes, by what they say. Only saves time: it is asked before a
  /// read that would find the end, and called by several threads.
  using IsWhole = bool(std::string_view start);

  explicit FileReading(IsWhole* isWhole);
  ~FileReading();
  FileReading(const FileReading&) = delete;
  FileReading& operator=(const FileReading&) = delete;

  void add(const FSRef& file);
  /// The start of the next file, which must have been added. Its bytes last until the next call.
  [[nodiscard]] FileStart next();

 private:
  struct Batch;
  class Readers;

  std::deque<std::unique_ptr<Batch>> _batches;  // in order; the first is being handed over
  std::size_t _handed_over = 0;                 // how many files of the first batch
  Batch* _filling = nullptr;                    // the last batch, as long as it has room
  std::unique_ptr<Batch> _spare;                // its memory serves again
  std::size_t _added = 0;                       // files in all
  std::unique_ptr<Readers> _readers;
  char _buffer[FileStart::kMost];
};

}  // namespace cairnset
