#include <algorithm>
#include <random>

#include <gtest/gtest.h>

#include "host/FileManager.h"
#include "host/FileSystemHelpers.h"
#include "host/MacRoman.h"
#include "host/PascalStrings.h"
#include "host/SystemCalls.h"
#include "presets/PresetManager.h"
#include "tests/CountedCalls.h"
#include "tests/TestFolder.h"

namespace cairnset {
namespace {

unsigned char* pascal(const std::string& name) {
  static unsigned char buffer[256];
  C2PCopy(buffer, name.c_str());
  return buffer;
}

// A library with one list that is loaded, that of the velocity maps.
class PresetListTest : public testing::Test, protected TestFolder {
 protected:
  PresetListTest() { manager.setOlvanItemsFSRef(ref("")); }

  void load() { manager.openAllPresetsOfType(kVelocityMapKind); }

  // A file as the library itself writes it, with a ROM flag and an index.
  void writePreset(const std::string& path, bool rom, std::int32_t index) {
    const std::string whole = "Presets/Velocity Maps/" + path;
    const std::string folder = whole.substr(0, whole.rfind('/'));
    makeFolder(folder);
    VelocityMapPreset preset(ref(folder), whole.substr(folder.size() + 1).c_str(), true);
    preset.setROM(rom);
    preset.setIndex(index);
    ASSERT_EQ(preset.writeOut(), 0);
  }

  std::string shown() {
    std::string text;
    for (const Preset* preset : list.presets()) {
      text += std::string(preset->getTreeItemName()) + (preset->isROM() ? " ROM " : " RAM ") +
              std::to_string(preset->index()) + "; ";
    }
    return text;
  }

  PresetManager manager{nullptr};
  VelocityMapPresetList& list = manager.velocityMaps();
};

TEST_F(PresetListTest, OrdersROMFirstAndNumbersRAMAnew) {
  writePreset("seven", false, 7);
  writePreset("sub/three", false, 3);
  writePreset("rom", true, 12);
  writePreset("Default", true, 0);
  writePreset("negative", true, -1);
  load();
  EXPECT_EQ(shown(), "negative ROM -1; Default ROM 0; rom ROM 12; three RAM 0; seven RAM 1; ");
  EXPECT_EQ(read("Presets/Velocity Maps/seven").substr(85, 4), std::string("\0\0\0\7", 4))
      << "nothing is written";
}

TEST_F(PresetListTest, SeesToADefaultInTheRootFolder) {
  struct Case {
    const char* file;
    bool rom;
    std::int32_t index;
    bool rewritten, another;
  };
  for (const auto& [file, rom, index, rewritten, another] : {Case{"Default", true, 0, false, false},
                                                             {"Default", false, 0, true, false},
                                                             {"Default", true, 5, true, false},
                                                             {"dEFAULT", false, 1, true, false},
                                                             {"sub/Default", false, 1, true, false},
                                                             {"Defaults", true, 0, false, true}}) {
    SCOPED_TRACE(file + std::to_string(rom) + std::to_string(index));
    PresetManager fresh(nullptr);
    TestFolder items;
    VelocityMapPresetList& maps = fresh.velocityMaps();
    fresh.setOlvanItemsFSRef(items.ref(""));
    fresh.openAllPresetsOfType(kVelocityMapKind);
    const std::string root = "Presets/Velocity Maps/";
    std::string bytes = items.read(root + "Default");
    const FSRef made = items.ref(root + "Default");
    FSDeleteObject(&made);
    items.makeFolder(root + "sub");
    bytes[84] = rom;
    bytes[88] = static_cast<char>(index);
    items.write(root + file, bytes);
    maps.clearPresets();
    fresh.openAllPresetsOfType(kVelocityMapKind);
    EXPECT_EQ(items.read(root + file) != bytes, rewritten);
    EXPECT_EQ(items.exists(root + "Default"), another || std::string(file) == "Default");
    const Preset* found = maps.findPreset("Default");
    ASSERT_NE(found, nullptr);
    EXPECT_TRUE(found->isROM() && found->index() == 0);
    EXPECT_EQ(found->isDefault(), std::string(found->getTreeItemName()) == "Default");
  }
}

TEST_F(PresetListTest, LoadingAgainAddsOnlyWhatIsNew) {
  writePreset("a", false, 1);
  writePreset("sub/deep/b", false, 2);
  load();
  const Preset* a = list.findPreset("A");
  const long limbs = list.countLimbsRecursively();
  writePreset("sub/deep/c", false, 0);
  load();
  EXPECT_EQ(list.count(), 4);
  EXPECT_EQ(list.countLeafsRecursively(), 4);
  EXPECT_EQ(list.countLimbsRecursively(), limbs);
  EXPECT_EQ(list.findPreset("a"), a);
  EXPECT_EQ(list.findPreset("c")->parent(), list.findPreset("b")->parent());
}

TEST_F(PresetListTest, WithoutARootThatCanBeListedNoDefaultIsMade) {
  load();
  const std::string bytes = read("Presets/Velocity Maps/Default");
  writePreset("x", false, 9);
  list.clearPresets();
  SystemCalls& calls = systemCalls();
  const auto readdir = calls.readdir;
  calls.readdir = [](DIR*) -> struct dirent* {
    errno = EIO;
    return nullptr;
  };
  load();
  calls.readdir = readdir;
  EXPECT_EQ(list.count(), 0);
  EXPECT_EQ(read("Presets/Velocity Maps/Default"), bytes);
}

TEST_F(PresetListTest, UnconfirmedListsDoNothing) {
  VelocityMapPresetList lost(&manager);
  SessionPresetList sessions(&manager);
  EXPECT_EQ(lost.newPreset(pascal("x"), true, false), 0);
  EXPECT_EQ(lost.openPreset(ref("")), nullptr);
  lost.openPresets();
  EXPECT_EQ(lost.count(), 0);
  // A list whose folder is a file, or can neither be found nor made, is not confirmed by another's.
  write("Presets/Effects", "a file");
  manager.openAllPresets();
  EXPECT_FALSE(manager.effects().confirmed());
  EXPECT_EQ(manager.effects().count(), 0);
  EXPECT_EQ(read("Presets/Effects"), "a file");
  EXPECT_EQ(manager.programs().count(), 1);
}

TEST_F(PresetListTest, MakesDuplicatesAndDeletesPresets) {
  load();
  EXPECT_EQ(list.newPreset(pascal("a/b?. "), true, true), 0);
  EXPECT_TRUE(exists("Presets/Velocity Maps/User/a_b_"));
  Preset* made = list.findPreset("A_B_");
  ASSERT_NE(made, nullptr);
  EXPECT_STREQ(made->parent()->getTreeItemName(), "User");
  EXPECT_EQ(list.newPreset(pascal(" . "), true, true), bdNamErr) << "nothing is left of the name";
  made->setROM(true);
  EXPECT_EQ(list.duplicatePreset(list.findPresetIndex(made), pascal("co|py")), 0);
  const Preset* copy = list.findPreset("co_py");
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(copy->index(), made->index());
  EXPECT_FALSE(copy->isROM());
  EXPECT_EQ(list.duplicatePreset(1, pascal("co_py")), dupFNErr);
  EXPECT_EQ(list.duplicatePreset(99, pascal("x")), 0);
  const long count = list.count();
  list.deletePreset(list.findPresetIndex(copy));
  list.deletePreset(99);
  EXPECT_FALSE(exists("Presets/Velocity Maps/User/co_py"));
  EXPECT_EQ(list.count(), count - 1);
  EXPECT_EQ(list.countLeafsRecursively(), count - 1);
}

TEST_F(PresetListTest, AccessorsByPositionStandEveryPosition) {
  load();
  Str255 name = "\3abc";
  for (const long i : {-1L, 1L, 99L}) {
    EXPECT_EQ(list.getCName(i), nullptr);
    EXPECT_FALSE(list.isROM(i) || list.isRAM(i) || list.getEdited(i) || list.isDefault(i));
    EXPECT_EQ(list.renamePreset(i, pascal("x")) + list.savePreset(i) + list.reloadPreset(i), 0);
    list.getPresetListName(i, name);
    EXPECT_EQ(name[0], 0);
  }
  list.setCurrentPreset(nullptr);
  EXPECT_EQ(list.currentPreset(), list.presetAt(0));
  EXPECT_EQ(list.findPresetIndex(nullptr), 0);
}

// Every indexed answer against the plain walk that defines it, through random changes.
TEST_F(PresetListTest, LookUpsAreThoseOfPlainWalks) {
  for (const char* folder : {"f", "f/g", "h"})
    makeFolder(std::string("Presets/Velocity Maps/") + folder);
  load();
  std::mt19937 random(3);
  const auto pick = [&random](std::size_t n) { return static_cast<std::size_t>(random()) % n; };
  const std::string names[] = {"a", "A", "b", "Default", "\x8E", "\x83", "e", "long name"};
  const char* folders[] = {"", "/f", "/f/g", "/h"};
  for (int step = 0; step < 2500; ++step) {
    Preset* preset =
        list.presetAt(static_cast<long>(pick(static_cast<std::size_t>(list.count() + 1))));
    const FSRef folder = ref(std::string("Presets/Velocity Maps") + folders[pick(4)]);
    const std::string& name = names[pick(8)];
    switch (pick(12)) {
      case 0:
      case 1:
        list.setUserFolder(folder);
        list.newPreset(pascal(name), true, true);
        break;
      case 2:
        if (preset != nullptr) preset->rename(pascal(name));
        break;
      case 3:
        if (preset != nullptr) preset->moveToFolder(folder, pick(2) == 0);
        break;
      case 4:
        if (list.count() > 12) list.deletePreset(list.findPresetIndex(preset));
        preset = nullptr;
        break;
      case 5:
        list.reorderPresets();
        break;
      case 6:
        list.swapPtrs(static_cast<long>(pick(9)), static_cast<long>(pick(9)));
        break;
      case 7:
        if (preset != nullptr) preset->setIndex(static_cast<std::int32_t>(pick(4)));
        break;
      default:
        break;
    }
    const Preset* byName = nullptr;
    const Preset* byFile = nullptr;
    const Preset* byFileName = nullptr;
    const FSRef file = preset != nullptr ? preset->fileRef() : folder;
    for (const Preset* p : list.presets()) {
      if (byName == nullptr && fncmp(name.c_str(), p->getTreeItemName()) == 0) byName = p;
      if (byFile == nullptr && isSameFile(&p->fileRef(), &file)) byFile = p;
      Str255 own;
      p->getName(own);
      if (byFileName == nullptr && equalPString(own, pascal(name), false) &&
          isSameFolder(&p->fileRef(), &folder)) {
        byFileName = p;
      }
    }
    ASSERT_EQ(list.findPreset(name.c_str()), byName) << "step " << step;
    ASSERT_EQ(list.findPresetUsingFileSpec(file), byFile) << "step " << step;
    list.setUserFolder(folder);
    ASSERT_EQ(list.findPresetInUserFolder(pascal(name), false), byFileName) << "step " << step;
  }
}

// Noise-free, and so the gate against a step that has become quadratic or asks the disk twice.
// readdir is left out: how many names one call brings is the system's affair.
TEST_F(PresetListTest, ALoadCostsFourCallsAPreset) {
  load();
  const std::string bytes = read("Presets/Velocity Maps/Default");
  long calls[2] = {};
  for (const int round : {0, 1}) {
    for (int i = 0; i < 100; ++i) {
      const std::string folder = "Presets/Velocity Maps/f" + std::to_string(i % 10);
      makeFolder(folder);
      write(folder + "/" + std::to_string(100 * round + i), bytes);
    }
    list.clearPresets();
    const CountedCalls counted;
    load();
    calls[round] = CountedCalls::count;
    ASSERT_EQ(list.count(), 101 + 100 * round);
  }
  EXPECT_EQ(calls[1] - calls[0], 4 * 100) << "open, fstat, pread, close";
  EXPECT_LE(calls[0], 4 * 101 + 12 * 12 + 20) << "12 folders, and what is paid once";
}

TEST_F(PresetListTest, ManagersCountAndCopyWithoutPresets) {
  manager.openAllPresets();
  const std::int32_t count = PresetManager::_count;
  {
    PresetManager copy(manager);
    EXPECT_EQ(PresetManager::_count, count + 1);
    EXPECT_EQ(copy.programs().count(), 0);
    EXPECT_TRUE(copy.programs().confirmed());
    EXPECT_EQ(copy.presetsFolder(), FSRef());
    copy.programs().openPresets();
    EXPECT_EQ(copy.programs().count(), 1);
  }
  EXPECT_EQ(PresetManager::_count, count);
}

TEST_F(PresetListTest, SynchronisingAddsNewFilesAndWritesMissingOnes) {
  manager.openAllPresets();
  const FSRef file = ref("Presets/Effects/Default");
  const std::string bytes = read("Presets/Effects/Default");
  FSDeleteObject(&file);
  manager.synchronizePresetList(0x12345678);
  manager.synchronizePresetList(kProgramKind);
  EXPECT_FALSE(exists("Presets/Effects/Default"));
  write("Presets/Effects/New", bytes);
  manager.synchronizePresetList(kAllKinds);
  EXPECT_EQ(read("Presets/Effects/Default"), bytes);
  EXPECT_EQ(manager.effects().count(), 2);
}

TEST_F(PresetListTest, TopLevelPresetsGoToTheListOfTheirKind) {
  manager.openAllPresets();
  for (const char* kind : {"Velocity Maps", "Effects", "Programs", "Sessions"}) {
    write(std::string("Presets/loose ") + kind, read(std::string("Presets/") + kind + "/Default"));
  }
  write("Presets/text", "no preset at all");
  EXPECT_EQ(manager.openTopLevelPresets(kEffectsKind), 0);
  EXPECT_EQ(manager.effects().count(), 2);
  EXPECT_EQ(manager.openTopLevelPresets(kAllKinds), 0);
  for (const PresetList* kind : std::initializer_list<PresetList*>{
           &manager.velocityMaps(), &manager.effects(), &manager.programs(), &manager.sessions()}) {
    EXPECT_EQ(kind->count(), 2);
    EXPECT_EQ(kind->countLeafsRecursively(), 1) << "no limb stands for Presets itself";
  }
}

}  // namespace
}  // namespace cairnset
