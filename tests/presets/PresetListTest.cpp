#include <numeric>

#include "host/files/FileSystemHelpers.h"
#include "presets/BrowserSorting.h"
#include "presets/ExchangeOrder.h"
#include "presets/Renames.h"
#include "tests/presets/PresetTest.h"

namespace cairnset {

const std::string kRoot = "lib/Presets/Velocity Maps";

// A library with one list that is loaded, that of the velocity maps.
class PresetListTest : public MemoryTest {
 protected:
  PresetListTest() {
    makeFolder("lib");
    EXPECT_EQ(manager.setOlvanItemsFSRef(ref("lib")), 0);
  }
  void load() { manager.openAllPresetsOfType(kVelocityMapKind); }

  std::string shown() {
    std::string text;
    for (const Preset* preset : list.presets())
      text += std::string(preset->getTreeItemName()) + (preset->isROM() ? " ROM " : " RAM ") +
              std::to_string(preset->index()) + "; ";
    return text;
  }

  PresetManager manager{nullptr};
  VelocityMapPresetList& list = manager.velocityMaps();
};

TEST_F(PresetListTest, OrdersROMFirstNumbersRAMAnewAndLoadsOnlyWhatIsNew) {
  for (const PresetFile& preset : {PresetFile{"Velocity Maps/a", false, 1},
                                   {"Velocity Maps/sub/deep/b", false, 2},
                                   {"Velocity Maps/rom", true, 12},
                                   {"Velocity Maps/negative", true, 0xFFFFFFFF}})
    put(*this, preset);
  load();
  EXPECT_EQ(shown(), "negative ROM -1; Default ROM 0; rom ROM 12; a RAM 0; b RAM 1; ");
  const Preset* a = list.findPreset("A");
  const long limbs = list.countLimbsRecursively();
  put(*this, PresetFile{"Velocity Maps/sub/deep/c"});
  load();
  EXPECT_EQ(shown(), "negative ROM -1; Default ROM 0; rom ROM 12; a RAM 0; c RAM 1; b RAM 2; ");
  EXPECT_TRUE(list.countLeafsRecursively() == 6 && list.countLimbsRecursively() == limbs);
  EXPECT_EQ(list.findPreset("a"), a);
  EXPECT_EQ(list.findPreset("c")->parent(), list.findPreset("b")->parent());
  const std::string bytes = read(kRoot + "/Default");
  list.clearPresets();
  host().calls.readdir = [](DIR*) -> struct dirent* {
    return failWith(EIO), nullptr;
  };
  load();
  EXPECT_TRUE(list.count() == 0 && read(kRoot + "/Default") == bytes)
      << "none is made over one not seen";
}

TEST_F(PresetListTest, LooksUpToANullEntryOrBehindIt) {
  load();
  list.addPtr(nullptr);
  EXPECT_NE(list.findPresetUsingFileSpec(ref(kRoot + "/Default")), nullptr) << "makes the index";
  put(*this, PresetFile{"Velocity Maps/User/late"});
  Preset* late = list.openPreset(ref(kRoot + "/User/late"));
  EXPECT_EQ(list.findPresetUsingFileSpec(late->fileRef()), nullptr);
  EXPECT_EQ(list.findPresetInUserFolder(pascal("late"), true), nullptr);
  EXPECT_EQ(list.findPresetInSameFolder(late, pascal("late"), true), nullptr);
  EXPECT_TRUE(list.findPreset(pascal("late"), true) == late && list.findPreset("late") == late);
}

TEST_F(PresetListTest, HangsAPresetUnderTheLimbOfItsFolderAlsoOfOneThatCameBack) {
  PresetLimb* limb = new PresetLimb;
  makeFolder(kRoot + "/f");
  const FSRef folder = ref(kRoot + "/f");
  remove(kRoot + "/f");
  limb->setSpec(folder), list.addLimb(limb);
  put(*this, PresetFile{"Velocity Maps/f/p"});
  load();
  EXPECT_TRUE(limb->getTreeItemID() == folder.node && limb->leaves().count() == 1);
  put(*this, PresetFile{"Velocity Maps/f/b"}), put(*this, PresetFile{"Velocity Maps/g/c"});
  limb->setSpec(ref(kRoot + "/g"));
  EXPECT_EQ(list.openPreset(ref(kRoot + "/f/b"))->parent(), nullptr);
  EXPECT_EQ(list.openPreset(ref(kRoot + "/g/c"))->parent(), limb);
}

TEST_F(PresetListTest, MakesDuplicatesAndDeletesPresets) {
  load();
  EXPECT_EQ(list.newPreset(pascal("a/b?. "), true, true), 0);
  EXPECT_TRUE(exists(kRoot + "/User/a_b_"));
  Preset* made = list.findPreset("A_B_");
  ASSERT_NE(made, nullptr);
  EXPECT_EQ(list.newPreset(pascal(" . "), true, true), bdNamErr) << "nothing is left of the name";
  EXPECT_EQ(list.duplicatePreset(list.findPresetIndex(made), pascal("co|py")), 0);
  const Preset* copy = list.findPreset("co_py");
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(list.duplicatePreset(1, pascal("co_py")), dupFNErr);
  const long count = list.count();
  list.deletePreset(list.findPresetIndex(copy));
  list.deletePreset(99);
  EXPECT_FALSE(list.setUserFolder(FSRef()));
  EXPECT_EQ(list.newPreset(pascal("new"), true, false), 0) << "unconfirmed, it does nothing";
  EXPECT_FALSE(exists(kRoot + "/User/co_py"));
  EXPECT_TRUE(list.count() == count - 1 && list.countLeafsRecursively() == count - 1);
}

// Every indexed answer against the plain walk that defines it, through random changes.
TEST_F(PresetListTest, LookUpsAreThoseOfPlainWalks) {
  for (const char* folder : {"/f/g", "/h"})
    makeFolder(kRoot + folder);
  load();
  std::mt19937 random(3);
  const auto pick = [&random](long n) { return static_cast<long>(random() >> 1) % n; };
  const std::string names[] = {"a", "A", "b", "Default", "\x8E", "\x83", "e", "long name"};
  const char* folders[] = {"", "/f", "/f/g", "/h"};
  for (int step = 0; step < 2500; ++step) {
    const long at = pick(list.count() + 1);
    const FSRef folder = ref(kRoot + folders[pick(4)]);
    const std::string& name = names[pick(8)];
    const long operation = pick(12);
    if (operation < 2) list.newPreset(pascal(name), true, true);
    if (operation == 2 && list.count() > 12) list.deletePreset(at);
    if (operation == 3) list.reorderPresets();
    if (operation == 4) list.swapPtrs(pick(9), pick(9));
    Preset* preset = list.presetAt(at);
    if (preset != nullptr && operation == 5) preset->rename(pascal(name));
    if (preset != nullptr && operation == 6) (void)preset->moveToFolder(folder, pick(2) == 0);
    if (preset != nullptr && operation == 7) preset->setIndex(static_cast<std::int32_t>(pick(4)));
    const FSRef file = preset != nullptr ? preset->fileRef() : folder;
    list.setUserFolder(folder);  // also where the next new preset goes
    Preset *named = nullptr, *ofFile = nullptr, *here = nullptr;
    for (Preset* p : list.presets()) {
      Str255 own;
      p->getName(own);
      if (named == nullptr && fncmp(name.c_str(), p->getTreeItemName()) == 0) named = p;
      if (ofFile == nullptr && isSameFile(&p->fileRef(), &file)) ofFile = p;
      if (here == nullptr && isSameFolder(&p->fileRef(), &folder) &&
          equalPString(own, pascal(name), false))
        here = p;
    }
    ASSERT_EQ(list.findPreset(name.c_str()), named) << "step " << step;
    ASSERT_EQ(list.findPresetUsingFileSpec(file), ofFile) << "step " << step;
    ASSERT_EQ(list.findPresetInUserFolder(pascal(name), false), here) << "step " << step;
  }
}

// Noise-free, and so the gate against a step that has become quadratic or asks the disk twice.
// readdir is left out: how many names one call brings is the system's affair.
TEST_F(PresetListTest, ALoadCostsThreeCallsAPreset) {
  host().readers = std::nullopt;
  load();
  SystemCalls& s = host().calls;
  long calls = 0;
  const auto one = [&calls](const auto& call, auto... args) { return ++calls, call(args...); };
  const auto count = [&one](auto&... counted) { (intercept(counted, one), ...); };
  count(s.open, s.close, s.fstat, s.pread, s.pwrite, s.lstat, s.mkdir, s.renameNoReplace, s.unlink,
        s.readlink, s.realpath, s.fdopendir, s.closedir);
  for (int i = 0; i < 400; ++i)
    put(*this, PresetFile{"Velocity Maps/f" + std::to_string(i % 10) + "/" + std::to_string(i)});
  list.clearPresets(), load();
  ASSERT_EQ(list.count(), 401);
  EXPECT_LE(calls, 3 * 401 + 12 * 12 + 20) << "open, pread, close; 12 folders, once paid";
}

// L a hard link, F a flush, W a rewrite, R a rename, to which after L nothing is left but U.
TEST_F(PresetListTest, RenamesInASafeOrderAndReportsWhatFailed) {
  const std::pair<const char*, const char*> cases[] = {
      {"", "LLFFWWFFRRULLFFWWFFRURUR s 0 e -48 p 0 0 q 0 0 v 0 s 0 0 p 0 s 0 0 e 0"},
      {"LLFFWW", "LLFFWWFLLLFFWWFFRURUR s 0 e -48 p 0 0 q -46 0 v 0 s 0 0 p 0 s 0 0 e 0"},
      {"LLFFWWF", "LLFFWWFFLLLFFWWFFRURUR s 0 e -48 p 0 -46 q 0 0 v 0 s 0 0 p 0 s 0 0 e 0"},
      {"LLFFWWFFRRUL", "LLFFWWFFRRULLFWFRUWRR s 0 e -48 p 0 0 q 0 0 v 0 s 0 0 p 0 s 0 0 e 0"}};
  for (const auto& [fails, report] : cases) {
    if (exists("lib/Presets")) remove("lib/Presets");
    for (const char* name : {"Velocity Maps/v", "Effects/e", "Effects/User/e", "Programs/p",
                             "Programs/q", "Sessions/s"})
      put(*this, PresetFile{name, true, 1, {*name == 'S' ? "v" : "e", "p"}});
    PresetManager all(nullptr);
    EXPECT_EQ(all.setOlvanItemsFSRef(ref("lib")), 0);
    all.openAllPresets();
    std::string order, failing = fails;
    const auto watch = [&order, &failing](auto& call, char letter) {
      intercept(call, [&order, &failing, letter](const auto& system, auto... args) {
        order += letter;
        return order == failing ? failWith(EROFS) : system(args...);
      });
    };
    SystemCalls& s = host().calls;
    watch(s.link, 'L'), watch(s.flush, 'F'), watch(s.pwrite, 'W');
    watch(s.renameNoReplace, 'R'), watch(s.unlink, 'U');
    std::string shown;
    PresetList &v = all.velocityMaps(), &e = all.effects(), &p = all.programs();
    const std::vector<NewName> names{{all.sessions().findPreset("s"), "t"},
                                     {e.presetAt(2), "Default"},
                                     {v.findPreset("v"), "w"},
                                     {p.findPreset("p"), "o"},
                                     {e.presetAt(1), "f"}};
    for (const Renamed& renamed : renamePresets(all, names)) {
      shown += ' ' + renamed.oldName + ' ' + std::to_string(renamed.result);
      for (const auto& [preset, name, written, flushed] : renamed.referrers)
        shown += ' ' + name + ' ' + std::to_string(written) + ' ' + std::to_string(flushed);
    }
    s = toSee();
    EXPECT_EQ(order + shown, report);
  }
}

TEST_F(PresetListTest, WhatALoadHasWrittenIsReadAfterIt) {
  write("lib/Presets/Programs/p", ""), makeFolder("lib/Presets/Effects");
  hardLink("lib/Presets/Programs/p", "lib/Presets/Effects/Default");
  manager.openAllPresets();
  EXPECT_EQ(manager.findings().count(FindingSort::kOtherKind, kProgramKind), 1u)
      << "an effects preset by now";
}

// Without a "User" or a "Default" of its own, a kind is read as it is, and no other preset is
// spoilt.
TEST_F(PresetListTest, WhatCannotBeMadeHarmsNothing) {
  const std::string file = kRoot + "/mine",
                    bytes = PresetFile{"Velocity Maps/mine", false, 7}.bytes();
  for (const bool hasUserFolder : {false, true}) {
    write(file, bytes);
    if (hasUserFolder) makeFolder(kRoot + "/User");
    list.clearPresets();
    host().calls.mkdir = [](auto...) { return failWith(EACCES); };
    intercept(host().calls.open,
              [](const auto& open, int folder, auto* path, int flags, auto mode) {
                return (flags & O_CREAT) != 0 ? failWith(EACCES) : open(folder, path, flags, mode);
              });
    load();
    host().calls = toSee();
    EXPECT_EQ(shown(), "mine ROM 0; ") << "in memory alone";
    EXPECT_TRUE(list.savePreset(0) == 0 && list.presetAt(0)->status() == permErr);
    EXPECT_EQ(list.newPreset(pascal("new"), true, true), hasUserFolder ? noErr : permErr);
    EXPECT_TRUE(read(file) == bytes && exists(kRoot + "/User") == hasUserFolder);
    const Findings& findings = manager.findings();
    EXPECT_EQ(findings.count(FindingSort::kUserFolderNotMade), hasUserFolder ? 0u : 1u);
    EXPECT_EQ(findings.kept().back().sort, FindingSort::kDefaultNotMade);
    EXPECT_EQ(findings.passedOver(kVelocityMapKind), 0u);
  }
}

TEST_F(PresetListTest, SynchronisingAndPresetsAtTheTop) {
  manager.openAllPresets();
  const std::string bytes = read("lib/Presets/Effects/Default");
  remove("lib/Presets/Effects/Default");
  manager.synchronizePresetList(0x12345678), manager.synchronizePresetList(kProgramKind);
  EXPECT_FALSE(exists("lib/Presets/Effects/Default"));
  write("lib/Presets/Effects/New", bytes);
  manager.synchronizePresetList(kAllKinds);
  EXPECT_EQ(read("lib/Presets/Effects/Default"), bytes);
  EXPECT_NE(manager.effects().findPresetUsingFileSpec(ref("lib/Presets/Effects/New")), nullptr);
  manager.effects().deletePreset(1);
  for (const std::string folder : {"Velocity Maps", "Effects", "Programs", "Sessions"})
    write("lib/Presets/loose " + folder, read("lib/Presets/" + folder + "/Default"));
  write("lib/Presets/text", "no preset at all");
  EXPECT_TRUE(manager.openTopLevelPresets(kEffectsKind) == 0 && manager.effects().count() == 2);
  EXPECT_EQ(manager.openTopLevelPresets(kAllKinds), 0);
  EXPECT_TRUE(list.count() == 2 && manager.effects().count() == 2);
  EXPECT_TRUE(manager.programs().count() == 2 && manager.sessions().count() == 2);
  EXPECT_EQ(list.countLeafsRecursively(), 1) << "no limb stands for Presets itself";
}

TEST_F(PresetListTest, PositionsAndSaving) {
  manager.openAllPresets();
  list.newPreset(pascal("ram"), true, false);
  Preset* const byDefault = list.findPreset("Default");
  EXPECT_TRUE(list.findPresetIndex(list.findPreset("ram")) == 1 && list.isDefault(0));
  EXPECT_EQ(list.findPresetIndex(manager.effects().presetAt(0)), 0) << "nor is a stranger -1";
  list.setCurrentPreset(nullptr);
  EXPECT_EQ(list.currentPreset(), byDefault);
  for (const std::string saved : {"1----", "12345"}) {
    const std::string files[] = {"Velocity Maps/ram", "Velocity Maps/Default", "Effects/Default",
                                 "Programs/Default", "Sessions/Default"};
    for (const std::string& file : files)
      write("lib/Presets/" + file, "");
    saved == "12345" ? manager.saveAllPresets() : list.saveAllRAMPresets();
    for (std::size_t i = 0; i < 5; ++i)
      EXPECT_EQ(read("lib/Presets/" + files[i]).empty(), saved[i] == '-') << saved << i;
  }
  byDefault->setROM(false);
  EXPECT_FALSE(list.isDefault(0)) << "it has to be ROM";
  manager.sessions().setUserFolder(FSRef()), manager.sessions().deletePreset(0);
  EXPECT_EQ(manager.sessions().count(), 1) << "unconfirmed";
  remove("lib/Presets/Effects");
  PresetManager copy(manager);
  FSRef folder;
  EXPECT_EQ(copy.velocityMaps().currentPreset(), byDefault);
  EXPECT_TRUE(copy.velocityMaps().confirmed() && !copy.effects().confirmed());
  EXPECT_TRUE(PresetList::findFolder(ref("lib"), "none", false, folder) == fnfErr &&
              folder == FSRef());
}

TEST(BrowserSorting, ByIndexWithinTheThousandAndByTheInstrumentOfTheKeyset) {
  std::string found, before;
  for (std::int32_t index = -1999; index < 1020; ++index)
    if (const std::string folder = effectsFolderFor(index); folder != before)
      found += std::to_string(index) + (before = folder) + ", ";
  EXPECT_EQ(
      found,
      "-1999Factory, 1Halls, 20Small Rooms, 30EQ Timbres, 60Factory, 100Choruses, 130Factory, "
      "180Special FX, 200Factory, 1001Halls, ");
  found.clear();
  for (const std::int32_t keyset : {-32767, -4, 96, 201, 331, 412, 479, 516, 579, 5, INT32_MIN})
    found += programFolderFor(keyset) + std::string(", ");
  EXPECT_EQ(found,
            "Synth, Concerto, Nordic D, Salon 7ft, Alpine 10ft, Urban Upright, Antique Upright, "
            "Saloon Upright, Pin Piano, Factory, Factory, ");
}

TEST(ExchangeOrder, MovesEqualKeysAsTheExchangesDo) {
  // By hand: 2a 2b 1 becomes 1 2b 2a, since 2a is exchanged with the 1.
  EXPECT_EQ(exchangeOrder({2, 2, 1}), (std::vector<std::size_t>{2, 1, 0}));
  std::mt19937 random(7);
  for (int round = 0; round < 20'000; ++round) {
    // Mostly short with few keys, where ties meet in every way; some long.
    std::vector<std::int64_t> keys(random() % (round % 1000 == 0 ? 400 : 13));
    const auto different = 1 + random() % 9;
    for (auto& key : keys)
      key = static_cast<std::int64_t>(random() % different) - 4;
    std::vector<std::size_t> order(keys.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    for (std::size_t i = 0; i < order.size(); ++i)
      for (std::size_t j = i + 1; j < order.size(); ++j)
        if (keys[order[j]] < keys[order[i]]) std::swap(order[i], order[j]);
    ASSERT_EQ(exchangeOrder(keys), order) << "round " << round;
  }
}

}  // namespace cairnset
