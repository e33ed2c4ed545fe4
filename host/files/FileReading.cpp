#include "host/files/FileReading.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <mutex>
#include <new>
#include <sched.h>
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

namespace cairnset {

namespace {

constexpr std::size_t kFilesInABatch = 64;
constexpr std::size_t kFilesInAForcedBatch = 4;  // so that threads have work in small libraries
constexpr std::size_t kFewestFiles = 512;        // for fewer, starting a thread costs what it saves
constexpr unsigned kMostThreads = 16;            // more gain nothing, also where all is waiting
constexpr unsigned kMostSharing = 4;             // one descriptor table; each holds two at a time

// Makes sure of a regular file and looks up its size only where its start is no whole file: for a
// library in order that saves a tenth of the time of a load.
FileStart readFile(const SystemCalls& calls, int folder, const char* path, std::int8_t permissions,
                   char* buffer, FileReading::IsWhole* isWhole) {
  FileStart start;
  Opened file = openListedFile(calls, folder, path, permissions);
  std::size_t got = 0;
  bool isChecked = false;
  while (file.result == noErr && got < FileStart::kMost) {
    const ssize_t n = retried([&] {
      return calls.pread(file.descriptor, buffer + got, FileStart::kMost - got,
                         static_cast<off_t>(got));
    });
    if (n < 0) start.read = resultFromErrno(errno);
    if (n > 0) got += static_cast<std::size_t>(n);
    start.size = static_cast<std::int64_t>(got);
    if (!isChecked && !isWhole({buffer, got})) {
      file = checkedFile(calls, file.descriptor);
      isChecked = true;
    }
    if (n <= 0 || !isChecked || start.size == file.size) break;
  }
  start.opened = file.result;
  if (start.opened != noErr) return start;
  if (start.read == noErr) start.bytes = {buffer, got};
  if (got == FileStart::kMost) start.size = file.size;
  start.closed = closeFile(calls, file.descriptor);
  return start;
}

// How often this thread has waited, by its voluntary context switches. 0 where the system does not
// report them: there is then at most one thread for each processor.
long waits() {
#if defined(RUSAGE_THREAD)
  struct rusage usage;
  if (::getrusage(RUSAGE_THREAD, &usage) == 0) return usage.ru_nvcsw;
#endif
  return 0;
}

// How many processors this process may run on.
unsigned processors() {
#if defined(__linux__)
  cpu_set_t allowed;
  if (::sched_getaffinity(0, sizeof allowed, &allowed) == 0) {
    return static_cast<unsigned>(CPU_COUNT(&allowed));
  }
#endif
  return std::max(std::thread::hardware_concurrency(), 1u);
}

}  // namespace

FileStart readFileStart(const FSRef& file, std::int8_t permissions, char* buffer) {
  const Location place(file);
  FileStart start;
  start.opened = place.status();
  if (start.opened != noErr) return start;
  start = readFile(host().calls, place.folder(), place.path(), permissions, buffer,
                   [](std::string_view) { return false; });
  if (start.opened == fnfErr) start.opened = failureAt(file, ENOENT);
  return start;
}

// --- Many files ----------------------------------------------------------------------------------

// Files that one thread reads one after the other, with all that it needs.
struct FileReading::Batch {
  struct File {
    FSRef ref;
    int base;                  // where the folder's path starts
    std::size_t folder, name;  // where that path and the file's name begin in `names`
    bool isDeep;               // read by the main thread, which alone knows the base
    FileStart start;
  };

  std::vector<File> files;
  std::string names;  // each ends in a NUL
  std::unique_ptr<char[]> bytes =
      std::make_unique_for_overwrite<char[]>(kFilesInABatch * FileStart::kMost);
  bool isTaken = false, isRead = false;  // guarded by the readers' mutex
  bool isOutOfMemory = false;            // the reading ended early

  void add(const FSRef& file) {
    Host& h = host();
    const std::uint32_t folder = h.nodes.folder(file.node);
    const bool isSameFolder = !files.empty() && h.nodes.folder(files.back().ref.node) == folder;
    const FolderPath& place = h.folders.of(folder);
    const std::size_t path = isSameFolder ? files.back().folder : put(place.path);
    const bool isDeep = place.deep != nullptr || place.result != noErr;
    files.push_back({file, place.base, path, put(h.nodes.name(file.node)), isDeep, {}});
  }

  void clear() {
    files.clear();
    names.clear();
    isTaken = isRead = isOutOfMemory = false;
  }

  // Uses names only: the node table belongs to the thread that adds files.
  void read(const SystemCalls& calls, IsWhole* isWhole) {
    char* buffer = bytes.get();
    int folder = -1;
    for (std::size_t i = 0; i < files.size(); ++i) {
      File& file = files[i];
      if (file.isDeep) continue;
      const char* const path = names.data() + file.folder;
      const char* const name = names.data() + file.name;
      const bool isFirst = i == 0 || files[i - 1].folder != file.folder;
      const bool isLast = i + 1 == files.size() || files[i + 1].folder != file.folder;
      // For a single file, opening by its path costs less than opening the folder.
      if (isFirst && !isLast && *path != '\0')
        folder = openFolder(calls, file.base, path).descriptor;
      if (folder >= 0) {
        file.start = readFile(calls, folder, name, fsRdWrPerm, buffer, isWhole);
      } else {
        const Location place(calls, file.base, path, name);
        file.start.opened = place.status();
        if (place.status() == noErr)
          file.start = readFile(calls, place.folder(), place.path(), fsRdWrPerm, buffer, isWhole);
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

// The threads, and the batches waiting for them.
class FileReading::Readers {
 public:
  explicit Readers(IsWhole* isWhole) : _is_whole(isWhole) {}
  ~Readers() {
    {
      const std::lock_guard lock(_mutex);
      _isStopping = true;
    }
    _work.notify_all();
    for (std::thread& thread : _threads)
      thread.join();
  }

  bool haveThreads() const { return !_threads.empty(); }

  /// Starts another thread if more are wanted.
  void startThread() {
    const std::optional<unsigned>& forced = host().readers;
    if (_isRefused || _threads.size() >= (forced ? *forced : _wanted.load())) return;
    // Signals are for the main thread, which may be blocking them.
    sigset_t all, before;
    sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &before);
    try {
      _threads.emplace_back([this] { run(); });
    } catch (const std::system_error&) {
      _isRefused = true;
    } catch (const std::bad_alloc&) {
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

  /// Returns once the batch is read. While another thread reads it, this one reads others.
  void finish(Batch& batch) {
    std::unique_lock lock(_mutex);
    if (!batch.isTaken && !batch.isRead) {
      std::erase(_waiting, &batch);
      lock.unlock();
      return read(batch);
    }
    while (!batch.isRead) {
      if (_waiting.empty()) {
        _read.wait(lock);
      } else {
        readNext(lock);
      }
    }
  }

 private:
  // Threads that open and close files in one descriptor table contend for it.
  void run() noexcept {
    const bool isSharing = _calls.ownDescriptors() != 0;
    std::unique_lock lock(_mutex);
    if (isSharing && ++_sharing > kMostSharing) return;
    for (;;) {
      _work.wait(lock, [this] { return _isStopping || !_waiting.empty(); });
      if (_isStopping) return;
      readNext(lock);
      _read.notify_one();
    }
  }

  void readNext(std::unique_lock<std::mutex>& lock) noexcept {
    Batch& batch = *_waiting.front();
    _waiting.pop_front();
    batch.isTaken = true;
    lock.unlock();
    read(batch);
    lock.lock();
    batch.isRead = true;
  }

  // One thread for each processor is enough unless they wait for the files.
  void read(Batch& batch) noexcept {
    const long before = waits();
    try {
      batch.read(_calls, _is_whole);
    } catch (const std::bad_alloc&) {
      batch.isOutOfMemory = true;
    }
    const auto waited = static_cast<std::size_t>(waits() - before);
    if (waited > batch.files.size() / 2 && _wanted < kMostThreads) ++_wanted;
  }

  const SystemCalls& _calls = host().calls;
  IsWhole* const _is_whole;
  std::mutex _mutex;
  std::condition_variable _work, _read;
  std::deque<Batch*> _waiting;
  std::atomic<unsigned> _wanted = processors() - 1;
  unsigned _sharing = 0;
  bool _isStopping = false;
  bool _isRefused = false;
  std::vector<std::thread> _threads;
};

FileReading::FileReading(IsWhole* isWhole) : _readers(std::make_unique<Readers>(isWhole)) {}

FileReading::~FileReading() = default;  // the readers first, whose threads read the batches

void FileReading::add(const FSRef& file) {
  if (_filling == nullptr) {
    _batches.push_back(_spare != nullptr ? std::move(_spare) : std::make_unique<Batch>());
    _filling = _batches.back().get();
  }
  _filling->add(file);
  const bool isForced = host().readers.has_value();
  if (++_added >= kFewestFiles || isForced) _readers->startThread();
  if (_filling->files.size() == (isForced ? kFilesInAForcedBatch : kFilesInABatch)) {
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
    if (batch.isOutOfMemory) throw std::bad_alloc();
  }
  const Batch::File& file = batch.files[_handed_over++];
  // The threads themselves may have used up the descriptors: try once more, alone.
  if (file.isDeep || (file.start.opened == tmfoErr && _readers->haveThreads())) {
    return readFileStart(file.ref, fsRdWrPerm, _buffer);
  }
  return file.start;
}

}  // namespace cairnset
