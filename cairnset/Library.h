// A preset library, for other programs: the header to begin with, which needs no other of ours.
//
//   cairnset::Library library;
//   if (const auto error = library.open("/home/me/Olvan Items")) return fail(error.message);
//   for (const auto& preset : library.presets()) std::cout << preset.name << '\n';
//
// Errors are values. Nothing throws but std::bad_alloc, after which the library can only be closed;
// its files are as after any stop (docs/reliability.md).
//
// Threads: none of Cairnset is thread-safe, and the state of its file system is one for the whole
// process. Use it from one thread at a time. open() reads with threads of its own, which have ended
// when it returns.
//
// Texts: names and messages are UTF-8. A name is as reports show it; a character that the
// instrument does not have is "_". Paths are the exact bytes on the volume, mostly UTF-8 too.
//
// A command-line program that changes files should first call prepareProcess(), and hold signals
// back during a change so that it is complete (both host/terminal/Process.h). A change that is
// stopped breaks no reference, and is completed by making it again.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#pragma GCC visibility push(default)
namespace cairnset {

class PresetManager;

/// One library, and the presets in it. At most one can be open in a process.
class Library {
 public:
  enum class Access {
    kChange,  // locks the library's folder until it is closed: other programs then wait, or give up
    kDryRun,  // changes nothing: all changes are kept in memory, where this object sees them
  };

  enum class Kind : std::uint8_t { kVelocityMap, kEffects, kProgram, kSession };

  /// Codes above 0; those below are the result codes in the manual (host/ResultCodes.h).
  enum ErrorCode : int {
    kBusy = 1,     // another program has locked the library
    kAlreadyOpen,  // another Library of this process is open
    kNotOpen,
    kNoLibrary,    // the folder has no "Presets"
    kRefused,      // nothing was changed
    kKeepsOldName  // not all references could be rewritten, so the file has its old name as well
  };

  struct Error {
    int code = 0;
    std::string message;  // one line
    /// True if there is an error.
    explicit operator bool() const { return code != 0; }
  };

  /// A reference from one preset to another, by name alone.
  struct Reference {
    Kind kind;                          // of the preset that it is to
    std::string name;                   // as stored
    std::optional<std::size_t> preset;  // which one it leads to, in presets(); none: it is missing
  };

  /// A preset as it is in memory.
  struct Preset {
    Kind kind;
    std::string name;
    std::string path;  // below "Presets", for example "Effects/Halls/Warm Hall"; unique
    bool isRom;        // a factory preset, and not one of the user's
    std::int32_t index;
    bool isDamaged;                  // the file is not a whole preset
    std::vector<Reference> uses;     // what it refers to
    std::vector<std::size_t> users;  // which presets have references that lead to it
  };

  /// A setting as the instrument shows it, with its unit.
  struct Setting {
    std::string name;
    std::string value;
  };

  /// A file or folder that could not be loaded: what is in it is not in presets().
  struct PassedOver {
    Kind kind;
    std::string path;  // below "Presets"
    Error error;
  };

  struct Rename {
    std::string path;     // as in Preset, or any other path that leads there
    std::string newName;  // at most 63 characters, none of those that Windows rejects
  };

  /// What has become of a change.
  struct Outcome {
    std::vector<Error> errors;           // none if everything was done
    std::vector<std::string> renamed;    // the presets' new paths
    std::vector<std::string> rewritten;  // the presets whose references were changed, by path
  };

  /// A change of the disk in a dry run.
  struct Change {
    enum class Action { kMakeFolder, kMake, kRename, kMove, kReplace, kRewrite, kDelete };
    Action action;
    std::string path;     // below "Presets", or else absolute
    std::string newPath;  // kRename, kMove, and for kReplace the path of what is replaced
  };

  Library();
  /// Closes the library. What was changed is on the disk already; nothing else is saved.
  ~Library();
  Library(Library&&) noexcept;
  Library& operator=(Library&&) noexcept;

  /// Opens the library in this folder, in which "Presets" is, and loads it; one that is open is
  /// closed first. Waits half a second for a program that has locked it, then returns kBusy. From
  /// here on the library is the same folder, whatever the path comes to lead to.
  ///
  /// **Loading changes the disk**, as with the instrument: missing folders and "Default"s are made,
  /// and a "Default" that is not ROM with index 0 is rewritten. With kDryRun it does not, and can
  /// also read what cannot be written.
  [[nodiscard]] Error open(std::string_view folder, Access access = Access::kChange);
  void close();
  bool isOpen() const { return _state != nullptr; }

  /// All presets, kind by kind in the order of Kind, and within a kind as the instrument shows
  /// them: factory presets first. Owned by the library, and valid until the next call of a function
  /// that is not const.
  std::span<const Preset> presets() const;
  /// The settings of one of presets(); none if `preset` is too large, or nothing in the file can be
  /// read. References are not settings.
  std::vector<Setting> settings(std::size_t preset) const;
  /// Which presets refer to this name of a kind, also if it is missing. Case is ignored, as in the
  /// instrument's own look-ups. Of several presets that share the name, the references lead to the
  /// first.
  std::vector<std::size_t> usersOf(Kind kind, std::string_view name) const;

  /// What loading has passed over: the first ten of each sort, and the number of all. As long as
  /// there are any, a renamed preset may keep its old name beside the new one.
  std::vector<PassedOver> passedOver() const;
  std::size_t passedOverCount() const;

  /// Renames presets, and rewrites all references that lead to them. All renames are checked first,
  /// each as those before it will leave the library: either all are made, or none and there is an
  /// error kRefused. A failure while they are made ends it. Correct what the error says, open the
  /// library again, and make the same call: it completes what was left.
  [[nodiscard]] Outcome rename(std::span<const Rename> renames);
  /// Leads all references to this name of a kind, case ignored, to the preset that is called
  /// `newName`.
  [[nodiscard]] Outcome relink(Kind kind, std::string_view name, std::string_view newName);
  /// The renames that would correct all names that Windows rejects. One that cannot be made, as the
  /// corrected name is taken or empty, makes rename() refuse all that are passed with it.
  std::vector<Rename> nameRepairs() const;

  /// What would be different on the disk, in order; nothing without kDryRun.
  std::vector<Change> changes() const;

  /// The library behind this one, for all else: presets/PresetManager.h. Null if none is open. Get
  /// it again for each use; presets() is made anew after this.
  PresetManager* manager();

 private:
  struct State;
  std::unique_ptr<State> _state;
};

}  // namespace cairnset
#pragma GCC visibility pop
