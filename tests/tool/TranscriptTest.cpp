// Runs of the program, each file of tests/transcripts/ a library and what is done to it.
//
//   // ...            a comment
//   : ITEM           before the first run: an item of the library
//   $ COMMAND        a run: a shell's command line, in the folder that holds "lib", the library;
//                    XDG_CONFIG_HOME is "config" there. What follows is all that it does.
//   > TEXT           a line on standard output
//   >>               the banner, and the line that says that the path is set to "lib"
//   ! TEXT           a line on standard error
//   = STATUS         its exit status
//   + ITEM           an item that was not there before
//   ~ ITEM           a file that was written to, and what it holds now
//   - PATH           an item that is gone
//   - PATH to PATH   an item that was moved or renamed, and not written to
//   end              the last line
//
// All items below the folder are looked at, and every file that is written to must be told, even
// where it comes out as it was. An ITEM is one of
//
//   complete                      the four kinds' folders, "User" in three of them, and "Default"s
//   PATH/                         a folder
//   PATH = BYTES                  a file
//   PATH @ TARGET                 a symbolic link
//   PATH ROM|RAM INDEX CHANGE...  a preset file of the kind in whose folder it lies. Fields that
//                                 are not given are filled with a pattern. The changes:
//       named NAME                the stored name, where it is not the file's
//       keyset NUMBER             of a program
//       zero                      all of the payload but its length is zero
//       cut SIZE, tail BYTES, at OFFSET BYTES
//       fresh                     in + and ~ only: the payload is as the program fills it, and only
//                                 the references are looked at
//       -> NAME...                the references, to the end of the line; "Default" where not given
//
// A PATH is below the library's "Presets", or with "/" in front below the folder that holds "lib".
// Words with blanks are quoted; \xHH is a byte.
#include <cstdlib>
#include <map>
#include <sstream>
#include <sys/wait.h>

#include "tests/TestFolder.h"
#include "tests/tool/LibraryFiles.h"

namespace cairnset {
namespace {

namespace fs = std::filesystem;

constexpr const char* kBanner =
    "\nCairnset v1.71.00  Jul 11 2008 09:28:09\nCopyright (c) 2008-2026 the Cairnset authors\n"
    "Cairnset explicit path set to: [lib]\n";
const fs::file_time_type kLongAgo = fs::file_time_type::clock::now() - std::chrono::hours(1000);

std::vector<std::string> wordsOf(const std::string& line) {
  std::vector<std::string> words;
  for (std::size_t i = 0; i < line.size(); ++i) {
    if (line[i] == ' ') continue;
    const bool isQuoted = line[i] == '"';
    std::string word;
    for (i += isQuoted; i < line.size() && line[i] != (isQuoted ? '"' : ' '); ++i) {
      if (line[i] == '\\' && line.at(i + 1) == 'x') {
        word += static_cast<char>(std::stoi(line.substr(i + 2, 2), nullptr, 16));
        i += 3;
      } else {
        word += line[i] == '\\' ? line.at(++i) : line[i];
      }
    }
    words.push_back(word);
  }
  return words;
}

struct Item {
  enum { kFolder, kLink, kFile } type = kFolder;
  std::string bytes{};  // a link's target
  std::size_t shown = std::string::npos;
  bool isWritten = false;

  std::string text() const {
    if (type != kFile) return type == kFolder ? "folder\n" : "link to " + bytes + "\n";
    std::ostringstream out;
    out << bytes.size() << " bytes" << (isWritten ? ", written" : "") << '\n';
    for (std::size_t i = 0; i < std::min(shown, bytes.size()); ++i) {
      if (i % 16 == 0) out << (i > 0 ? "\n" : "") << "  " << i << ": ";
      const int byte = static_cast<unsigned char>(bytes[i]);
      if (byte > ' ' && byte < 0x7F) {
        out << ' ' << bytes[i] << ' ';
      } else {
        out << "0123456789ABCDEF"[byte / 16] << "0123456789ABCDEF"[byte % 16] << ' ';
      }
    }
    out << '\n';
    return out.str();
  }
};

std::pair<std::string, Item> itemFrom(const std::vector<std::string>& words) {
  const std::string& path = words.at(0);
  if (words.size() == 1 && path.back() == '/') return {path.substr(0, path.size() - 1), {}};
  if (words.at(1) == "=") return {path, {Item::kFile, words.at(2)}};
  if (words.at(1) == "@") return {path, {Item::kLink, words.at(2)}};
  PresetFile preset{path, words.at(1) == "ROM", std::stol(words.at(2))};
  if (!preset.rom && words[1] != "RAM") throw std::runtime_error("not an item: " + path);
  Item item{Item::kFile};
  std::string tail;
  std::vector<std::pair<std::size_t, std::string>> patches;
  std::size_t size = std::string::npos;
  for (std::size_t i = 3; i < words.size(); ++i) {
    if (words[i] == "named") {
      preset.path = path.substr(0, path.find('/') + 1) + words.at(++i);
    } else if (words[i] == "keyset") {
      preset.keyset = std::stol(words.at(++i));
    } else if (words[i] == "zero") {
      preset.isZero = true;
    } else if (words[i] == "cut") {
      size = std::stoul(words.at(++i));
    } else if (words[i] == "tail") {
      tail = words.at(++i);
    } else if (words[i] == "at") {
      patches.emplace_back(std::stoul(words.at(i + 1)), words.at(i + 2));
      i += 2;
    } else if (words[i] == "fresh") {
      item.shown = 93 + 64 * formatOf(path).references;
    } else if (words[i] == "->") {
      preset.references.assign(words.begin() + static_cast<std::ptrdiff_t>(i) + 1, words.end());
      break;
    } else {
      throw std::runtime_error("not a change: " + words[i]);
    }
  }
  item.bytes = preset.bytes();
  for (const auto& [offset, bytes] : patches)
    item.bytes.replace(offset, bytes.size(), bytes);
  item.bytes = item.bytes.substr(0, size) + tail;
  return {path, item};
}

class TranscriptTest : public testing::TestWithParam<std::string>, protected TestFolder {
 protected:
  using Items = std::map<std::string, Item>;

  std::string place(const std::string& item) const {
    return item.front() == '/' ? path(item.substr(1)) : path("lib/Presets/" + item);
  }

  void make(const std::string& name, const Item& item) {
    fs::create_directories(fs::path(place(name)).parent_path());
    if (item.type == Item::kFolder) fs::create_directories(place(name));
    if (item.type == Item::kLink) fs::create_symlink(item.bytes, place(name));
    if (item.type == Item::kFile) write(place(name).substr(path("").size() + 1), item.bytes);
  }

  // All that is there; what was found is then as if written long ago.
  Items look() const {
    Items items;
    for (const auto& entry : fs::recursive_directory_iterator(path(""))) {
      const std::string below = entry.path().string().substr(path("").size());
      const bool isPreset = below.starts_with("/lib/Presets/");
      Item& item = items[isPreset ? below.substr(13) : below];
      if (entry.is_symlink()) {
        item = {Item::kLink, fs::read_symlink(entry).string()};
      } else if (entry.is_regular_file()) {
        item = {Item::kFile, read(below.substr(1))};
        item.isWritten = fs::last_write_time(entry) != kLongAgo;
        fs::last_write_time(entry, kLongAgo);
      }
    }
    return items;
  }

  struct Run {
    std::string command, out, err, changes;
    int status = -1;
  };

  void check(const Run& run, Items& expected) {
    SCOPED_TRACE("$ " + run.command);
    if (run.status < 0) throw std::runtime_error("a run without its status");
    const TestFolder output;
    const std::string program = CAIRNSET_PROGRAM;
    const int status = std::system(
        ("cd '" + path("") + "' && export HOME=$PWD XDG_CONFIG_HOME=$PWD/config PATH=\"" +
         program.substr(0, program.rfind('/')) + ":$PATH\" && { " + run.command + "\n} >'" +
         output.path("out") + "' 2>'" + output.path("err") + "' </dev/null")
            .c_str());
    EXPECT_EQ(WIFEXITED(status) ? WEXITSTATUS(status) : -1, run.status);
    EXPECT_EQ(output.read("out"), run.out);
    EXPECT_EQ(output.read("err"), run.err);
    std::istringstream changes(run.changes);
    for (std::string line; std::getline(changes, line);) {
      const std::vector<std::string> words = wordsOf(line.substr(1));
      if (line.front() == '-') {
        auto item = expected.extract(words.at(0));
        if (item.empty()) throw std::runtime_error("was not there: " + words[0]);
        item.key() = words.back();
        if (words.size() > 1) expected.insert(std::move(item));
      } else {
        auto [name, item] = itemFrom(words);
        item.isWritten = item.type == Item::kFile;
        EXPECT_EQ(expected.insert_or_assign(name, item).second, line.front() == '+') << line;
      }
    }
    const Items actual = look();
    std::string expectedText, actualText;
    for (const auto& [name, item] : expected)
      expectedText += name + ": " + item.text();
    for (auto [name, item] : actual) {
      if (const auto known = expected.find(name); known != expected.end()) {
        item.shown = known->second.shown;
      }
      actualText += name + ": " + item.text();
    }
    EXPECT_EQ(actualText, expectedText);
    expected = actual;
    for (auto& [name, item] : expected)
      item.isWritten = false;
  }
};

TEST_P(TranscriptTest, GoesAsWritten) {
  std::ifstream file(GetParam());
  std::vector<Run> runs;
  std::string line;
  for (; std::getline(file, line) && line != "end";) {
    if (line.empty() || line.starts_with("//")) continue;
    const std::string text = line.size() > 2 ? line.substr(2) : "";
    if (line.front() == '$') runs.push_back({text, "", "", ""});
    if (line.front() == ':' && runs.empty()) {
      if (text == "complete") {
        for (const char* kind : {"Velocity Maps/", "Effects/", "Programs/", "Sessions/"}) {
          const auto [name, item] = itemFrom({kind + std::string("Default"), "ROM", "0"});
          make(name, item);
          if (*kind != 'S') make(kind + std::string("User"), {});
        }
      } else {
        const auto [name, item] = itemFrom(wordsOf(text));
        make(name, item);
      }
    } else if (line == ">>" && !runs.empty()) {
      runs.back().out += kBanner;
    } else if ((line.front() == '>' || line.front() == '!') && !runs.empty()) {
      (line.front() == '>' ? runs.back().out : runs.back().err) += text + '\n';
    } else if (line.front() == '=' && !runs.empty()) {
      runs.back().status = std::stoi(text);
    } else if (std::string("+~-").find(line.front()) != std::string::npos && !runs.empty()) {
      runs.back().changes += line + '\n';
    } else if (line.front() != '$') {
      throw std::runtime_error("not understood: " + line);
    }
  }
  if (line != "end" || std::getline(file, line)) throw std::runtime_error("no end at the end");
  ASSERT_FALSE(runs.empty());
  look();
  Items items = look();
  for (const Run& run : runs)
    check(run, items);
}

std::vector<std::string> transcripts() {
  std::vector<std::string> paths;
  for (const auto& entry : fs::directory_iterator(CAIRNSET_TRANSCRIPTS))
    paths.push_back(entry.path().string());
  if (paths.empty()) throw std::runtime_error("no transcripts");
  std::sort(paths.begin(), paths.end());
  return paths;
}

INSTANTIATE_TEST_SUITE_P(Files, TranscriptTest, testing::ValuesIn(transcripts()),
                         [](const auto& file) { return fs::path(file.param).stem().string(); });

}  // namespace
}  // namespace cairnset
