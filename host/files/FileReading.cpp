#include "host/files/FileReading.h"

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <mutex>
#include <signal.h>
#include <string>
#include <sys/resource.h>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "host/Host.h"
#include "host/files/FileManager.h"
#include "host/files/Location.h"
#include "host/files/Opening.h"

namespace cairnset {

namespace {

constexpr std::size_t kFilesInABatch = 64;
constexpr std::size_t kFilesInAForcedBatch = 4;  // so that threads have work in small libraries
// One more thread for every so many files: for fewer, starting it costs what it saves. With a cold
// cache nearly all of the time is waiting; more threads than these gain nothing there.
constexpr std::size_t kFilesAThread = 512;
constexpr std::size_t kMostThreads = 16;
constexpr unsigned kDescriptorsAThread = 2;

OSErr readBytes(const SystemCalls& calls, int descriptor, std::int64_t size, char* buffer,
                std::size_t& got) {
  while (got < FileStart::kMost) {
    const ssize_t n =
        calls.pread(descriptor, buffer + got, FileStart::kMost - got, static_cast<off_t>(got));
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return resultFromErrno(errno);
    got += static_cast<std::size_t>(n);
    // What came to the end that the open saw needs no second read to prove it.
    if (n == 0 || static_cast<std::int64_t>(got) == size) break;
  }
  return noErr;
}

FileStart readFile(const SystemCalls& calls, int folder, const char* path, std::int8_t permissions,
                   char* buffer) {
  FileStart start;
  const Opened file = openFile(calls, folder, path, permissions);
  start.opened = file.result;
  if (start.opened != noErr) return start;
  std::size_t got = 0;
  start.read = readBytes(calls, file.descriptor, file.size, buffer, got);
  if (start.read == noErr) start.bytes = {buffer, got};
  start.size = got < FileStart::kMost ? static_cast<std::int64_t>(got) : file.size;
  start.closed = closeFile(calls, file.descriptor);
  return start;
}

// How many threads may share one table of descriptors and leave room for everybody else.
unsigned mostSharing() {
  struct rlimit limit;
  if (::getrlimit(RLIMIT_NOFILE, &limit) != 0) return 0;
  return static_cast<unsigned>(std::min<rlim_t>(limit.rlim_cur / (4 * kDescriptorsAThread), 64));
}

}  // namespace

FileStart readFileStart(const FSRef& file, std::int8_t permissions, char* buffer) {
  const Location place(file);
  FileStart start;
  start.opened = place.status();
  if (start.opened != noErr) return start;
  start = readFile(host().calls, place.folder(), place.path(), permissions, buffer);
  if (start.opened == fnfErr) start.opened = failureAt(file, ENOENT);
  return start;
}

// --- Many files ----------------------------------------------------------------------------------

// Files that are read in a row, with all that is needed to do so.
struct FileReading::Batch {
  struct File {
    FSRef ref;
    std::size_t folder, name;  // where the folder's path and the file's name begin in `names`
    FileStart start;
  };

  std::vector<File> files;
  std::string names;  // each ends in a NUL
  std::unique_ptr<char[]> bytes =
      std::make_unique_for_overwrite<char[]>(kFilesInABatch * FileStart::kMost);
  bool isTaken = false, isRead = false;  // guarded by the readers' mutex

  void add(const FSRef& file) {
    Host& h = host();
    const std::uint32_t folder = h.nodes.folder(file.node);
    const bool isSameFolder = !files.empty() && h.nodes.folder(files.back().ref.node) == folder;
    const std::size_t path = isSameFolder ? files.back().folder : put(h.folderPath(folder));
    files.push_back({file, path, put(h.nodes.name(file.node)), {}});
  }

  void clear() {
    files.clear();
    names.clear();
    isTaken = isRead = false;
  }

  // Works by names, since the table of nodes belongs to the thread that adds files to it.
  void read(const SystemCalls& calls) noexcept {
    char* buffer = bytes.get();
    int folder = -1;
    for (std::size_t i = 0; i < files.size(); ++i) {
      File& file = files[i];
      const char* const path = names.data() + file.folder;
      const char* const name = names.data() + file.name;
      const bool isFirst = i == 0 || files[i - 1].folder != file.folder;
      const bool isLast = i + 1 == files.size() || files[i + 1].folder != file.folder;
      // For one file alone, to walk its path costs less than to open the folder.
      if (isFirst && !isLast) folder = openFolder(calls, path).descriptor;
      if (folder >= 0) {
        file.start = readFile(calls, folder, name, fsRdWrPerm, buffer);
      } else {
        const Location place(calls, path, name);
        file.start.opened = place.status();
        if (place.status() == noErr)
          file.start = readFile(calls, place.folder(), place.path(), fsRdWrPerm, buffer);
      }
      buffer += file.start.bytes.size();
      if (isLast && folder >= 0) calls.close(std::exchange(folder, -1));
    }
  }

 private:
  std::size_t put(std::string_view text) {
    const std::size_t start = names.size();
    names.append(text).push_back('\0');
    return start;
  }
};

// The threads, and the batches that wait for them.
class FileReading::Readers {
 public:
  ~Readers() {
    {
      const std::lock_guard lock(_mutex);
      _isStopping = true;
    }
    _work.notify_all();
    for (std::thread& thread : _threads)
      thread.join();
  }

  std::size_t threads() const { return _threads.size(); }

  /// Sees to it that there are so many threads, or as many as the system allows.
  void setThreads(std::size_t count) {
    if (_isRefused || count <= _threads.size()) return;
    // Signals are for the thread that the program runs in, which may be holding them back.
    sigset_t all, before;
    sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &before);
    try {
      _threads.emplace_back([this] { run(); });
    } catch (const std::system_error&) {
      _isRefused = true;
    }
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
  }

  void give(Batch& batch) {
    {
      const std::lock_guard lock(_mutex);
      _waiting.push_back(&batch);
    }
    _work.notify_one();
  }

  /// Returns once the batch is read: by the thread that has taken it, or here if none has.
  void finish(Batch& batch) {
    {
      std::unique_lock lock(_mutex);
      if (batch.isTaken) return _read.wait(lock, [&batch] { return batch.isRead; });
      std::erase(_waiting, &batch);
    }
    batch.read(_calls);
  }

 private:
  void run() noexcept {
    // Threads that open and close files in one table of descriptors wait for one another.
    const bool isSharing = _calls.ownDescriptors() != 0;
    std::unique_lock lock(_mutex);
    if (isSharing && ++_sharing > mostSharing()) return;
    for (;;) {
      _work.wait(lock, [this] { return _isStopping || !_waiting.empty(); });
      if (_isStopping) return;
      Batch& batch = *_waiting.front();
      _waiting.pop_front();
      batch.isTaken = true;
      lock.unlock();
      batch.read(_calls);
      lock.lock();
      batch.isRead = true;
      _read.notify_one();
    }
  }

  const SystemCalls& _calls = host().calls;
  std::mutex _mutex;
  std::condition_variable _work, _read;
  std::deque<Batch*> _waiting;
  unsigned _sharing = 0;
  bool _isStopping = false;
  bool _isRefused = false;
  std::vector<std::thread> _threads;
};

FileReading::FileReading() : _readers(std::make_unique<Readers>()) {}

FileReading::~FileReading() {
  _readers.reset();  // its threads read the batches
}

void FileReading::add(const FSRef& file) {
  if (_filling == nullptr) {
    _batches.push_back(_spare != nullptr ? std::move(_spare) : std::make_unique<Batch>());
    _filling = _batches.back().get();
  }
  _filling->add(file);
  ++_added;
  const std::optional<unsigned>& forced = host().readers;
  _readers->setThreads(forced ? *forced : std::min(_added / kFilesAThread, kMostThreads));
  if (_filling->files.size() == (forced ? kFilesInAForcedBatch : kFilesInABatch)) {
    _readers->give(*std::exchange(_filling, nullptr));
  }
}

FileStart FileReading::next() {
  if (_handed_over == _batches.front()->files.size()) {
    _spare = std::move(_batches.front());
    _spare->clear();
    _batches.pop_front();
    _handed_over = 0;
  }
  Batch& batch = *_batches.front();
  if (_handed_over == 0) {
    if (_filling == &batch) _filling = nullptr;
    _readers->finish(batch);
  }
  const Batch::File& file = batch.files[_handed_over++];
  // Too many files open at a time is nothing that the library should be told of.
  if (file.start.opened == tmfoErr && _readers->threads() > 0) {
    return readFileStart(file.ref, fsRdWrPerm, _buffer);
  }
  return file.start;
}

}  // namespace cairnset
