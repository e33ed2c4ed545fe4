// How long loading a library and each report on it take, by number of presets. Reports go nowhere.
#include <cstring>
#include <filesystem>
#include <iostream>
#include <streambuf>
#include <string>

#include <benchmark/benchmark.h>

#include "examples/ExampleLibrary.h"
#include "host/FileManager.h"
#include "tool/FilenameRepair.h"
#include "tool/Reports.h"
#include "tool/Session.h"

namespace cairnset {

namespace {

namespace fs = std::filesystem;

class Nowhere : public std::streambuf {
  int overflow(int c) override { return traits_type::not_eof(c); }
  std::streamsize xsputn(const char*, std::streamsize count) override { return count; }
};

/// A library on disk and the session on it, for as long as one benchmark runs.
class LibrarySession {
 public:
  explicit LibrarySession(benchmark::State& state) {
    do {
      _folder = fs::temp_directory_path() / ("cairnset-benchmark-" + std::to_string(_next++));
    } while (!fs::create_directory(_folder));
    FSRef items;
    LibrarySummary summary;
    const auto count = static_cast<std::size_t>(state.range(0));
    const std::string path = _folder.string();
    if (path.size() >= kPathStringSize || FSPathMakeRef(path.c_str(), &items, nullptr) != noErr ||
        makeExampleLibrary(items, count, LibraryShape::kTypical, summary) != noErr) {
      state.SkipWithError("the library could not be made");
      return;
    }
    path_string[path.copy(path_string, kPathStringSize - 1)] = '\0';
    if (instantiate() != kSuccess) state.SkipWithError("the library could not be loaded");
    _console = std::cout.rdbuf(&_nowhere);
  }
  ~LibrarySession() {
    if (_console != nullptr) std::cout.rdbuf(_console);
    deinstantiate();
    fs::remove_all(_folder);
  }

 private:
  static inline int _next = 0;
  fs::path _folder;
  Nowhere _nowhere;
  std::streambuf* _console = nullptr;
};

template <typename Step>
void run(benchmark::State& state, Step step) {
  const LibrarySession session(state);
  for (auto _ : state)
    step();
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void Load(benchmark::State& state) {
  run(state, instantiate);
}
void ListPresets(benchmark::State& state) {
  run(state, listPresets);
}
void ListAllDependencies(benchmark::State& state) {
  run(state, listAllDependencies);
}
void ListParents(benchmark::State& state) {
  run(state, listParents);
}
void CheckFilenames(benchmark::State& state) {
  run(state, checkFilenames);
}

void sizes(benchmark::internal::Benchmark* b) {
  b->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);
}

BENCHMARK(Load)->Apply(sizes);
BENCHMARK(ListPresets)->Apply(sizes);
BENCHMARK(ListAllDependencies)->Apply(sizes);
BENCHMARK(ListParents)->Apply(sizes);
BENCHMARK(CheckFilenames)->Apply(sizes);

}  // namespace

}  // namespace cairnset

BENCHMARK_MAIN();
