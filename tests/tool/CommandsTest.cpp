// The commands on a session in this process: the menu, those without an option, and writes that
// fail.
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sstream>

#include "host/SystemCalls.h"
#include "presets/PresetManager.h"
#include "tests/TestFolder.h"
#include "tests/tool/LibraryFiles.h"
#include "tool/BulkMaintenance.h"
#include "tool/FilenameRepair.h"
#include "tool/Menu.h"
#include "tool/Session.h"

namespace cairnset {
namespace {

std::string nameThatFails;  // of the preset whose file cannot be written
int failure = 0;
int writes = 0;
ssize_t (*realWrite)(int, const void*, size_t, off_t) = nullptr;
int (*realOpen)(int, const char*, int, mode_t) = nullptr;

ssize_t countedWrite(int descriptor, const void* bytes, size_t size, off_t offset) {
  ++writes;
  const bool fails = failure != EACCES && static_cast<const char*>(bytes) + 12 == nameThatFails;
  return fails ? (errno = failure, -1) : realWrite(descriptor, bytes, size, offset);
}

int guardedOpen(int folder, const char* path, int flags, mode_t mode) {
  const bool fails = failure == EACCES && (flags & O_ACCMODE) == O_RDWR &&
                     std::string(path).ends_with(nameThatFails);
  return fails ? (errno = failure, -1) : realOpen(folder, path, flags, mode);
}

class CommandsTest : public testing::Test, protected TestFolder {
 protected:
  CommandsTest() {
    for (const PresetFile& preset : kLibrary) {
      const std::string file = path("lib/Presets/" + preset.path);
      std::filesystem::create_directories(file.substr(0, file.rfind('/')));
      write("lib/Presets/" + preset.path, preset.bytes());
    }
    std::strcpy(path_string, path("lib").c_str());
    TreeItem::_current_index = 0;
    EXPECT_EQ(instantiate(), 0);
    realWrite = std::exchange(systemCalls().pwrite, countedWrite);
    realOpen = std::exchange(systemCalls().open, guardedOpen);
    std::cout.rdbuf(out.rdbuf());
    std::cerr.rdbuf(err.rdbuf());
    std::cin.rdbuf(in.rdbuf());
  }
  ~CommandsTest() override {
    std::cout.rdbuf(before[0]);
    std::cerr.rdbuf(before[1]);
    std::cin.rdbuf(before[2]);
    std::cin.clear();
    systemCalls().pwrite = realWrite;
    systemCalls().open = realOpen;
    deinstantiate();
    failure = writes = 0;
    nameThatFails.clear();
  }

  // The file of one of the library's presets, as the format has it.
  void expectFile(PresetFile preset, bool rom, const char* effect) {
    preset.rom = rom;
    if (effect != nullptr) preset.references = {effect};
    EXPECT_TRUE(read("lib/Presets/" + preset.path) == preset.bytes()) << preset.path;
  }

  const std::vector<PresetFile> kLibrary = {{"Velocity Maps/Default", true},
                                            {"Velocity Maps/v"},
                                            {"Effects/?"},
                                            {"Effects/Default", true},
                                            {"Programs/Default", true},
                                            {"Programs/p", false, 0, {"?"}},  // 12
                                            {"Programs/q", false, 1, {"?"}},
                                            {"Sessions/Default", true}};
  std::streambuf* const before[3] = {std::cout.rdbuf(), std::cerr.rdbuf(), std::cin.rdbuf()};
  std::ostringstream out, err;
  std::istringstream in;
};

TEST_F(CommandsTest, MenuRunsNumbersAndEndsAtAllElse) {
  const std::string menu =
      "\nCommands:\n\t1) List Presets\n\t2) Check Dependencies\n\t3) List Parents\n"
      "\t4) Auto-Sort into subdirectories\n\n\t5) Check file names\n\t6) Fix file names\n\n\n"
      "\t0) Quit\n\n-> ";
  struct Case {
    const char* input;
    std::vector<const char*> begins;  // what follows each menu but the last
  };
  for (const auto& [input, begins] : {
           Case{"", {}},
           {"0\n8\n", {}},
           {"-1\n8\n", {}},
           {"12\n8\n", {}},
           {"x\n8\n", {}},
           {"99999999999\n8\n", {}},
           {"8", {}},
           {"7\n8 9\nx",
            {"unrecognized command: 7\n\n", "unrecognized command: 8\n\n",
             "unrecognized command: 9\n\n"}},
           {"1\n", {"Folder: Velocity Maps\n\t  5 [VMap] ROM  \"Default\"\n"}},
           {"2\n", {"   [ ok ]       11 [Prog] ROM  \"Default\" uses effect \"Default\""}},
           {"3\n", {"  5 [VMap] ROM  \"Default\"\n\t\t used by  15 [Sess]"}},
           {"5\n", {"    [ ok ]        5 [VMap] ROM  \"Default\"\n"}},
           {"6\n6\n",
            {"renaming effect \"?\" to \"_\"\n\t relinking program \"p\"\n",
             "Fixing all preset file names has finished.\n\n"}},
           {"4\n1\n", {"Sorting presets has finished.\n\n", "Folder: Velocity Maps\n"}},
       }) {
    SCOPED_TRACE(input);
    out.str("");
    in.clear();
    std::cin.clear();
    in.str(input);
    EXPECT_EQ(doInteractive(), 0);
    std::string rest = out.str();
    for (const char* begin : begins) {
      EXPECT_TRUE(rest.starts_with(menu + begin)) << rest;
      rest.erase(0, std::min(rest.find(menu, 1), rest.size()));
    }
    EXPECT_EQ(rest, menu);
  }
}

TEST_F(CommandsTest, ROMAndRAMWriteOnlyWhatIsOtherwise) {
  setROM(nullptr, true);
  for (const auto& [rom, expectedWrites] :
       {std::pair(true, 4), {true, 0}, {false, 8}, {false, 0}}) {
    writes = 0;
    rom ? makeAllROM() : makeAllRAM();
    EXPECT_EQ(writes, expectedWrites);
    for (const PresetFile& preset : kLibrary)
      expectFile(preset, rom, nullptr);
  }
  EXPECT_EQ(out.str(),
            "Setting all presets to ROM has finished.\nSetting all presets to ROM has finished.\n"
            "Setting all presets to RAM has finished.\nSetting all presets to RAM has finished.\n");
}

TEST_F(CommandsTest, OneThatCannotBeWrittenIsToldAndTheRestGoesOn) {
  for (const auto& [error, code] : {std::pair(ENOSPC, "-34"), {EIO, "-36"}, {EACCES, "-54"}}) {
    failure = error;
    nameThatFails = "p";
    err.str("");
    makeAllROM();
    EXPECT_EQ(err.str(),
              std::string("### error ") + code + " occurred while writing  12 [Prog] ROM  \"p\"\n");
    EXPECT_TRUE(_p->findPreset("p")->isROM());
    for (const PresetFile& preset : kLibrary)
      expectFile(preset, preset.rom || preset.path != "Programs/p", nullptr);
    failure = 0;
    nameThatFails.clear();
    makeAllRAM();
  }
}

TEST_F(CommandsTest, ARelinkThatCannotBeWrittenMakesTheStatus20) {
  failure = ENOSPC;
  nameThatFails = "p";
  EXPECT_EQ(fixFilenames(), 20);
  EXPECT_EQ(out.str(),
            "renaming effect \"?\" to \"_\"\n\t relinking program \"p\"\n"
            "\t relinking program \"q\"\nFixing all preset file names has finished.\n");
  EXPECT_EQ(err.str(), "### error -34 occurred while writing  12 [Prog]      \"p\"\n");
  expectFile(kLibrary[5], false, "?");
  expectFile(kLibrary[6], false, "_");
  EXPECT_TRUE(exists("lib/Presets/Effects/_"));
}

}  // namespace
}  // namespace cairnset
