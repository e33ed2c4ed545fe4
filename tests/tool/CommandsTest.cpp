// The commands on a session in this process: the menu, those without an option, and writes that
// fail.
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sstream>

#include "host/SystemCalls.h"
#include "presets/PresetManager.h"
#include "tests/PresetFile.h"
#include "tool/BulkMaintenance.h"
#include "tool/FilenameRepair.h"
#include "tool/Menu.h"
#include "tool/Session.h"

namespace cairnset {
namespace {

SystemCalls real;
std::string fails;  // the preset whose file cannot be written
int failure = 0;    // and why, if at all: EACCES as it is opened, anything else as it is written
int writes = 0;

ssize_t countedWrite(int descriptor, const void* bytes, size_t size, off_t offset) {
  ++writes;
  const bool ends =
      failure != 0 && failure != EACCES && static_cast<const char*>(bytes) + 12 == fails;
  return ends ? (errno = failure, -1) : real.pwrite(descriptor, bytes, size, offset);
}

int guardedOpen(int folder, const char* path, int flags, mode_t mode) {
  const bool ends =
      failure == EACCES && (flags & O_RDWR) != 0 && std::string(path).ends_with(fails);
  return ends ? (errno = failure, -1) : real.open(folder, path, flags, mode);
}

struct Redirection {
  std::ios& stream;
  std::streambuf* before;
  ~Redirection() { stream.rdbuf(before); }
};

class CommandsTest : public testing::Test, protected TestFolder {
 protected:
  CommandsTest() {
    for (const PresetFile& preset : library)
      put(*this, preset);
    std::strcpy(path_string, path("lib").c_str());
    TreeItem::_current_index = 0;
    EXPECT_EQ(instantiate(), 0);
    real = systemCalls();
    systemCalls().pwrite = countedWrite;
    systemCalls().open = guardedOpen;
    writes = failure = 0;
  }
  ~CommandsTest() override {
    systemCalls() = real;
    deinstantiate();
  }

  void expectFile(PresetFile preset, bool rom) {
    preset.rom = rom;
    EXPECT_TRUE(read("lib/Presets/" + preset.path) == preset.bytes()) << preset.path;
  }

  // With the folders that are made, "p" is item 12 of the run and its neighbours 11 and 13.
  const std::vector<PresetFile> library = {
      {"Velocity Maps/Default", true}, {"Velocity Maps/v"},        {"Effects/?"},
      {"Effects/Default", true},       {"Programs/Default", true}, {"Programs/p", false, 0, {"?"}},
      {"Programs/q", false, 1, {"?"}}, {"Sessions/Default", true}};
  std::ostringstream out, err;
  std::istringstream in;
  const Redirection redirections[3] = {{std::cout, std::cout.rdbuf(out.rdbuf())},
                                       {std::cerr, std::cerr.rdbuf(err.rdbuf())},
                                       {std::cin, std::cin.rdbuf(in.rdbuf())}};
};

TEST_F(CommandsTest, MenuRunsNumbersAndEndsAtAllElse) {
  const std::string menu =
      "\nCommands:\n\t1) List Presets\n\t2) Check Dependencies\n\t3) List Parents\n"
      "\t4) Auto-Sort into subdirectories\n\n\t5) Check file names\n\t6) Fix file names\n\n\n"
      "\t0) Quit\n\n-> ";
  // What is typed, and how each command's output begins.
  const std::pair<const char*, std::vector<const char*>> cases[] = {
      {"", {}},
      {"8", {}},
      {"0\n8\n", {}},
      {"-1\n8\n", {}},
      {"12\n8\n", {}},
      {"x\n8\n", {}},
      {"99999999999\n8\n", {}},
      {"7\n8 x", {"unrecognized command: 7\n\n", "unrecognized command: 8\n\n"}},
      {"9\n", {"unrecognized command: 9\n\n"}},
      {"1\n", {"Folder: Velocity Maps\n\t  5 [VMap] ROM  \"Default\"\n"}},
      {"2\n", {"   [ ok ]       11 [Prog] ROM  \"Default\" uses effect \"Default\""}},
      {"3\n", {"  5 [VMap] ROM  \"Default\"\n\t\t used by  15 [Sess]"}},
      {"5\n", {"    [ ok ]        5 [VMap] ROM  \"Default\"\n"}},
      {"6\n6\n",
       {"renaming effect \"?\" to \"_\"\n", "Fixing all preset file names has finished.\n\n"}},
      {"4\n", {"Sorting presets has finished.\n\n"}}};
  for (const auto& [typed, begins] : cases) {
    SCOPED_TRACE(typed);
    out.str("");
    in.str(typed);
    std::cin.clear();
    EXPECT_EQ(doInteractive(), 0);
    std::string rest = out.str();
    for (const char* begin : begins) {
      EXPECT_TRUE(rest.starts_with(menu + begin)) << rest;
      rest.erase(0, std::min(rest.find(menu, 1), rest.size()));
    }
    EXPECT_EQ(rest, menu);
  }
  EXPECT_TRUE(exists("lib/Presets/Velocity Maps/User/v"));
}

TEST_F(CommandsTest, ROMAndRAMWriteOnlyWhatIsOtherwise) {
  setROM(nullptr, true);
  for (const auto& [rom, expected] : {std::pair(true, 4), {true, 0}, {false, 8}, {false, 0}}) {
    out.str("");
    writes = 0;
    rom ? makeAllROM() : makeAllRAM();
    EXPECT_EQ(writes, expected);
    EXPECT_EQ(out.str(),
              std::string("Setting all presets to R") + (rom ? "O" : "A") + "M has finished.\n");
    for (const PresetFile& preset : library)
      expectFile(preset, rom);
  }
}

TEST_F(CommandsTest, OneThatCannotBeWrittenIsToldAndTheRestGoesOn) {
  fails = "p";
  for (const auto& [error, code] : {std::pair(ENOSPC, "-34"), {EIO, "-36"}, {EACCES, "-54"}}) {
    failure = error;
    err.str("");
    makeAllROM();
    EXPECT_EQ(err.str(),
              std::string("### error ") + code + " occurred while writing  12 [Prog] ROM  \"p\"\n");
    EXPECT_TRUE(_p->findPreset("p")->isROM());
    for (const PresetFile& preset : library)
      expectFile(preset, preset.path != "Programs/p");
    failure = 0;
    makeAllRAM();
  }
}

TEST_F(CommandsTest, ARelinkThatCannotBeWrittenMakesTheStatus20) {
  fails = "p";
  failure = ENOSPC;
  EXPECT_EQ(fixFilenames(), 20);
  EXPECT_EQ(out.str(),
            "renaming effect \"?\" to \"_\"\n\t relinking program \"p\"\n"
            "\t relinking program \"q\"\nFixing all preset file names has finished.\n");
  EXPECT_EQ(err.str(), "### error -34 occurred while writing  12 [Prog]      \"p\"\n");
  expectFile(library[5], false);
  expectFile({"Programs/q", false, 1, {"_"}}, false);
}

}  // namespace
}  // namespace cairnset
