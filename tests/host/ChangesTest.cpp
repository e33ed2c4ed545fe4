#include <cstring>
#include <sys/stat.h>

#include "host/FileSystemHelpers.h"
#include "tests/host/FileTest.h"

namespace cairnset {
namespace {

// The ways by which a rename can go, by what the volume refuses.
struct Road {
  const char* name;
  int renameError, linkError;  // 0 where the call is let through
};

constexpr Road kRoads[] = {{"kernel", 0, 0},           {"EINVAL, link", EINVAL, 0},
                           {"ENOSYS, link", ENOSYS, 0}, {"ENOTSUP, link", ENOTSUP, 0},
                           {"EINVAL, check", EINVAL, EPERM}, {"ENOSYS, check", ENOSYS, ENOTSUP}};

Road road;

class ChangesTest : public FileTest {
 protected:
  void take(const Road& taken) {
    road = taken;
    if (taken.renameError != 0) {
      systemCalls().renameNoReplace = [](int, const char*, int, const char*) {
        return failWith(road.renameError);
      };
    }
    if (taken.linkError != 0) {
      systemCalls().link = [](int, const char*, int, const char*) {
        return failWith(road.linkError);
      };
    }
  }
  ~ChangesTest() override { systemCalls() = real; }

  void symlink(const std::string& target, const std::string& name) {
    ASSERT_EQ(::symlink(target.c_str(), path(name).c_str()), 0) << name;
  }
  // Bytes of a file, target of an alias, content of a folder.
  std::string look(const std::string& name) {
    namespace fs = std::filesystem;
    if (fs::is_symlink(path(name))) return "-> " + fs::read_symlink(path(name)).string();
    if (!exists(name) || !fs::is_directory(path(name))) return exists(name) ? read(name) : "none";
    std::string all = "[";
    for (const std::string& item : list(name))
      all += item + "=" + look(name + "/" + item) + " ";
    return all + "]";
  }
};

// Every kind of item onto every kind of occupant, by rename and by move.
TEST_F(ChangesTest, NeverReplacesAnything) {
  const auto makeItems = [](const TestFolder& f, const std::string& name) {
    f.write(name + "file", name + " bytes");
    f.makeFolder(name + "folder");
    f.makeFolder(name + "full");
    f.write(name + "full/inner", name);
    std::filesystem::create_symlink("nowhere", f.path(name + "alias"));
    std::filesystem::create_hard_link(f.path(name + "file"), f.path(name + "FILE"));
  };
  makeItems(*this, "");
  makeFolder("other");
  makeItems(*this, "other/");
  const std::string before = look("");
  const std::u16string_view kinds[] = {u"file", u"folder", u"full", u"alias", u"FILE"};
  for (const Road& way : kRoads) {
    take(way);
    for (const auto& from : kinds) {
      for (const auto& to : kinds) {
        FSRef item, other, out{77};
        ASSERT_EQ(find(ref(""), from, &item), noErr);
        ASSERT_EQ(find(ref(""), to, &other), noErr);
        SCOPED_TRACE(testing::Message() << way.name << ": " << volumeName(item) << " onto "
                                        << volumeName(other));
        if (from != to) {
          EXPECT_EQ(rename(item, to, &out), dupFNErr);
        }
        EXPECT_EQ(move(item, ref("other"), &out), dupFNErr);
        EXPECT_EQ(out.node, 77u);
        ASSERT_EQ(look(""), before);
      }
    }
    // Onto a free name each goes by every road, and the old place is empty then.
    for (const auto& from : kinds) {
      SCOPED_TRACE(testing::Message() << way.name << " from " << from.size());
      FSRef item, moved, back;
      ASSERT_EQ(find(ref(""), from, &item), noErr);
      const std::string was = look(volumeName(item));
      EXPECT_EQ(rename(item, u"free", &moved), noErr);
      EXPECT_EQ(look("free"), was);
      EXPECT_EQ(FSRefIsValid(item), fnfErr);
      EXPECT_EQ(rename(item, u"x"), fnfErr);
      EXPECT_EQ(move(moved, ref("other"), &moved), noErr);
      EXPECT_EQ(look("other/free"), was);
      EXPECT_EQ(move(moved, ref(""), &moved), noErr);
      EXPECT_EQ(rename(moved, from, &back), noErr);
      EXPECT_EQ(back, item) << "the same place is the same reference";
      ASSERT_EQ(look(""), before);
    }
    systemCalls() = real;
  }
}

// A volume that ignores case, as far as a rename can see; and one whose file numbers are all alike.
TEST_F(ChangesTest, CaseAloneIsNoCollision) {
  static bool sameNumbers;
  for (const Road& way : kRoads) {
    SCOPED_TRACE(way.name);
    write("Warm", "warm");
    take(way);
    systemCalls().lstat = [](int folder, const char* name, struct stat* out) {
      std::string other = name;
      if (const std::size_t at = other.rfind("/wARM"); at != std::string::npos) {
        other.replace(at, 5, "/Warm");
      }
      const int result = ::fstatat(folder, other.c_str(), out, AT_SYMLINK_NOFOLLOW);
      if (sameNumbers) out->st_ino = 1, out->st_nlink = 1;
      return result;
    };
    if (way.renameError == 0) {
      systemCalls().renameNoReplace = [](int, const char*, int, const char*) {
        return failWith(EEXIST);
      };
    }
    if (way.linkError == 0) {
      systemCalls().link = [](int, const char*, int, const char*) { return failWith(EEXIST); };
    }
    FSRef renamed;
    sameNumbers = false;
    EXPECT_EQ(rename(ref("Warm"), u"Warm", &renamed), noErr) << "onto itself";
    EXPECT_EQ(rename(ref("Warm"), u"wARM", &renamed), noErr);
    EXPECT_EQ(list(""), std::vector<std::string>{"wARM"});
    sameNumbers = true;
    write("Cold", "cold");
    EXPECT_EQ(rename(renamed, u"Cold"), dupFNErr);
    EXPECT_EQ(look(""), "[Cold=cold wARM=warm ]");
    systemCalls() = real;
    std::filesystem::remove(path("wARM"));
    std::filesystem::remove(path("Cold"));
  }
}

// Each call of a rename in turn fails, at once or after all was done, as over a network. Whatever
// happens, the item's bytes are under one of its names and the occupant's under its own.
TEST_F(ChangesTest, LosesNothingWhicheverCallFails) {
  static int countdown, error;
  static bool doneAllTheSame;
  static SystemCalls under;
  const auto fails = [](auto call) {
    const bool hit = --countdown == 0;
    if (hit && !doneAllTheSame) return failWith(error);
    const int result = call();
    return hit && result == 0 ? failWith(error) : result;
  };
  static const auto failing = fails;
  for (const Road& way : kRoads) {
    for (const int number : {EIO, ENOENT, EEXIST, EPERM, EINVAL}) {
      for (int mode = 0; mode < 4; ++mode) {
        bool reached = true;
        for (int n = 1; reached; ++n) {
          SCOPED_TRACE(testing::Message() << way.name << " errno " << number << " mode " << mode
                                          << " call " << n);
          const bool occupied = mode % 2 != 0;
          TestFolder fresh;
          fresh.write("mine", "mine");
          if (occupied) fresh.write("taken", "theirs");
          const FSRef item = fresh.ref("mine");
          take(way);
          under = systemCalls();
          SystemCalls& calls = systemCalls();
          calls.renameNoReplace = [](int a, const char* b, int c, const char* d) {
            return failing([&] { return under.renameNoReplace(a, b, c, d); });
          };
          calls.rename = [](int a, const char* b, int c, const char* d) {
            return failing([&] { return under.rename(a, b, c, d); });
          };
          calls.link = [](int a, const char* b, int c, const char* d) {
            return failing([&] { return under.link(a, b, c, d); });
          };
          calls.unlink = [](int a, const char* b, int c) {
            return failing([&] { return under.unlink(a, b, c); });
          };
          calls.lstat = [](int a, const char* b, struct stat* c) {
            return failing([&] { return under.lstat(a, b, c); });
          };
          countdown = n, error = number, doneAllTheSame = mode >= 2;
          FSRef renamed;
          const OSErr result = rename(item, occupied ? u"taken" : u"free", &renamed);
          reached = countdown <= 0;
          systemCalls() = real;
          const bool left = fresh.exists("mine");
          if (left) EXPECT_EQ(fresh.read("mine"), "mine");
          if (occupied) {
            EXPECT_TRUE(left && result != noErr) << result;
            EXPECT_EQ(fresh.read("taken"), "theirs");
          } else if (!left || result == noErr) {
            EXPECT_EQ(fresh.read("free"), "mine");
          }
          if (result == noErr) EXPECT_FALSE(left);
        }
      }
    }
  }
}

TEST_F(ChangesTest, UnlinkRefusedAfterTheLink) {
  take({"", EINVAL, 0});
  static int refused;
  systemCalls().unlink = [](int folder, const char* name, int flags) {
    return std::strstr(name, "/kept") != nullptr ? (++refused, failWith(EACCES))
                                                 : ::unlinkat(folder, name, flags);
  };
  write("kept", "bytes");
  FSRef out{77};
  EXPECT_EQ(rename(ref("kept"), u"new", &out), permErr);
  EXPECT_EQ(refused, 1);
  EXPECT_EQ(out.node, 77u);
  EXPECT_EQ(look(""), "[kept=bytes ]") << "one name again, the old one";
}

TEST_F(ChangesTest, ResultCodes) {
  makeFolder("folder");
  makeFolder("folder/inner");
  makeFolder("gone");
  write("file", "x");
  symlink("folder", "alias");
  const FSRef top = ref(""), folder = ref("folder"), file = ref("file"), gone = ref("gone");
  FSRef alias, lost, none{0}, root;
  ASSERT_EQ(find(top, u"alias", &alias), noErr);
  ASSERT_EQ(create(gone, u"lost", &lost), noErr);
  ASSERT_EQ(FSPathMakeRef("/", &root, nullptr), noErr);
  std::filesystem::remove_all(path("gone"));
  std::uint32_t number = 0;
  FSRef made;
  const auto makeFolderAt = [&](const FSRef& at, std::u16string_view name) {
    return FSCreateDirectoryUnicode(&at, name.size(), name.data(), &made, nullptr, &number);
  };
  const auto makeAlias = [&](const FSRef& at, std::u16string_view name, const FSRef& to) {
    return FSCreateAliasFile(&at, name.size(), name.data(), &to, nullptr);
  };
  const std::u16string longest(255, u'n'), tooLong(256, u'n');
  const std::pair<OSErr, OSErr> cases[] = {
      {create(top, u"file"), dupFNErr},
      {create(top, u"alias"), dupFNErr},
      {create(alias, u"x"), dirNFErr},
      {create(file, u"x"), dirNFErr},
      {create(gone, u"x"), dirNFErr},
      {create(none, u"x"), errFSBadFSRef},
      {create(top, u""), bdNamErr},
      {create(top, u".."), bdNamErr},
      {create(top, u"a:b"), bdNamErr},
      {create(top, tooLong), bdNamErr},
      {makeFolderAt(top, u"alias"), dupFNErr},
      {makeFolderAt(top, u"folder"), dupFNErr},
      {makeFolderAt(alias, u"x"), dirNFErr},
      {makeAlias(top, u"file", folder), dupFNErr},
      {makeAlias(alias, u"x", file), dirNFErr},
      {makeAlias(top, u"x", lost), dirNFErr},
      {rename(file, tooLong), bdNamErr},
      {rename(file, u"a:b"), bdNamErr},
      {rename(file, u"."), bdNamErr},
      {rename(lost, u"x"), dirNFErr},
      {rename(none, u"x"), errFSBadFSRef},
      {rename(root, u"x"), errFSBadFSRef},
      {move(file, alias), dirNFErr},
      {move(file, file), dirNFErr},
      {move(file, gone), dirNFErr},
      {move(file, none), errFSBadFSRef},
      {move(lost, top), dirNFErr},
      {move(folder, ref("folder/inner")), paramErr},
      {FSDeleteObject(&folder), fBsyErr},
      {FSDeleteObject(&lost), dirNFErr},
      {FSDeleteObject(&none), errFSBadFSRef},
      {create(top, longest), noErr},
      {makeFolderAt(folder, u"new"), noErr},
      {FSDeleteObject(&made), noErr},
      {FSDeleteObject(&made), fnfErr},
      {FSDeleteObject(&alias), noErr},
  };
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    EXPECT_EQ(cases[i].first, cases[i].second) << "case " << i;
  }
  EXPECT_EQ(number, made.node);
  EXPECT_EQ(look(""), "[file=x folder=[inner=[] ] " + std::string(255, 'n') + "= ]");
  systemCalls().renameNoReplace = [](int, const char*, int, const char*) {
    return failWith(EXDEV);
  };
  EXPECT_EQ(move(file, folder), diffVolErr);
}

TEST_F(ChangesTest, PermissionsAreKept) {
  if (::geteuid() == 0) GTEST_SKIP() << "nothing is refused to root";
  makeFolder("locked");
  write("locked/file", "x");
  write("secret", "x");
  const FSRef folder = ref("locked"), file = ref("locked/file");
  std::int16_t fork = 0;
  ::chmod(path("secret").c_str(), 0200);
  EXPECT_EQ(openFork(ref("secret"), fsRdPerm, &fork), permErr);
  ::chmod(path("locked").c_str(), 0500);
  EXPECT_EQ(create(folder, u"x"), permErr);
  EXPECT_EQ(rename(file, u"x"), permErr);
  EXPECT_EQ(FSDeleteObject(&file), permErr);
  EXPECT_EQ(move(file, ref("")), permErr);
  ::chmod(path("locked").c_str(), 0);
  std::vector<std::string> names;
  EXPECT_EQ(iterate(folder, names), permErr);
  EXPECT_EQ(FSRefIsValid(file), permErr) << "not seen is not missing";
  ::chmod(path("locked").c_str(), 0700);
  EXPECT_EQ(read("locked/file"), "x");
}

}  // namespace
}  // namespace cairnset
