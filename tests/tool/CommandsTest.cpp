// The commands on a session in this process: the menu, and those without an option.

#include "presets/PresetManager.h"
#include "tests/PresetFile.h"
#include "tool/BulkMaintenance.h"
#include "tool/FilenameRepair.h"
#include "tool/Menu.h"
#include "tool/NameChanging.h"
#include "tool/Session.h"

namespace cairnset {
namespace {

struct Redirection {
  std::ios& stream;
  std::streambuf* before;
  ~Redirection() { stream.rdbuf(before); }
};

class CommandsTest : public MemoryTest {
 protected:
  CommandsTest() {
    for (const PresetFile& preset : library)
      put(*this, preset);
    write("lib/Presets/Programs/Default", library[4].bytes().replace(84, 1, "\2"));
    std::strcpy(path_string, path("lib").c_str());
    TreeItem::_current_index = 0;
    EXPECT_EQ(instantiate(), 0);
  }
  ~CommandsTest() override { deinstantiate(); }

  // With the folders that are made, "p" is item 12 of the run and its neighbours 11 and 13.
  const std::vector<PresetFile> library = {
      {"Velocity Maps/Default", true}, {"Velocity Maps/v"},        {"Effects/?"},
      {"Effects/Default", true},       {"Programs/Default", true}, {"Programs/p", false, 0, {"?"}},
      {"Programs/q", false, 1, {"?"}}, {"Sessions/Default", true}};
  std::ostringstream out;
  std::istringstream in;
  const Redirection redirections[2] = {{std::cout, std::cout.rdbuf(out.rdbuf())},
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
      {"0\n8\n", {}},
      {"12\n8\n", {}},
      {"x\n8\n", {}},
      {"99999999999\n8\n", {}},
      {"7\n8 x", {"unrecognized command: 7\n\n", "unrecognized command: 8\n\n"}},
      {"1\n", {"Folder: Velocity Maps\n\t  5 [VMap] ROM  \"Default\"\n"}},
      {"2\n", {"   [ ok ]       11 [Prog] ROM  \"Default\" uses effect \"Default\""}},
      {"3\n", {"  5 [VMap] ROM  \"Default\"\n\t\t used by  15 [Sess]"}},
      {"5\n", {"    [ ok ]        5 [VMap] ROM  \"Default\"\n"}},
      {"6\n6\n",
       {"renaming effect \"?\" to \"_\"\n", "Fixing all preset file names has finished.\n\n"}},
      {"4\n", {"Sorting presets has finished.\n\n"}}};
  for (const auto& [typed, begins] : cases) {
    out.str(""), in.str(typed), std::cin.clear();
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
  int writes;
  intercept(host().calls.pwrite,
            [&](const auto& real, auto... args) { return ++writes, real(args...); });
  setROM(nullptr, true);
  for (const auto& [rom, expected] : {std::pair(true, 5), {true, 0}, {false, 8}, {false, 0}}) {
    out.str("");
    writes = 0;
    rom ? makeAllROM() : makeAllRAM();
    EXPECT_EQ(writes, expected);
    EXPECT_EQ(out.str(),
              std::string("Setting all presets to R") + (rom ? "O" : "A") + "M has finished.\n");
    for (PresetFile preset : library) {
      preset.rom = rom;
      EXPECT_EQ(read("lib/Presets/" + preset.path), preset.bytes()) << preset.path;
    }
  }
}

TEST_F(CommandsTest, ReferencesThatMayNotLastAreReported) {
  intercept(host().calls.flush, [](auto...) { return failWith(EIO); });
  EXPECT_EQ(fixFilenames(), kReferencesNotWritten);
}

// One where a name is the same in both cases, and a file has one name only.
TEST_F(CommandsTest, RenamesOnAVolumeThatIgnoresCaseAndHasNoLinks) {
  SystemCalls& calls = host().calls;
  intercept(calls.lstat, [](const auto& lstat, int folder, std::string path, struct stat* info) {
    if (lstat(folder, path.c_str(), info) == 0) return 0;
    path.back() = static_cast<char>(path.back() ^ 'a' ^ 'A');
    return lstat(folder, path.c_str(), info);
  });
  calls.link = [](auto...) { return failWith(EPERM); };
  intercept(calls.renameNoReplace, [&](const auto& rename, int from, auto old, int to, auto name) {
    struct stat info;
    return calls.lstat(to, name, &info) == 0 ? failWith(EEXIST) : rename(from, old, to, name);
  });
  write("lib/Presets/Effects/o", "no preset");
  EXPECT_EQ(changeNames({{kAllKinds, "Effects/?", "x"}, {kAllKinds, "Effects/x", "X"}}), 0);
  EXPECT_EQ(changeNames({{kAllKinds, "Effects/X", "O"}}), 30);
  EXPECT_TRUE(exists("lib/Presets/Effects/X") && !exists("lib/Presets/Effects/?"));
  EXPECT_EQ(read("lib/Presets/Effects/o"), "no preset");
  for (const char* referrer : {"p", "q"})
    EXPECT_EQ(read("lib/Presets/Programs/"s + referrer).substr(93, 2), "X\0"s);
}

}  // namespace
}  // namespace cairnset
