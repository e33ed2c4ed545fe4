// The words in the names of example presets, and their folders. Mac Roman, as all held names are.
#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace cairnset::words {

using Nouns = std::array<const char*, 8>;

inline constexpr std::array<const char*, 32> kAdjectives = {
    "Warm",   "Bright",  "Dark",   "Soft",    "Gentle", "Mellow", "Close",    "Distant",
    "Silver", "Golden",  "Velvet", "Crystal", "Hushed", "Open",   "Deep",     "Airy",
    "Rich",   "Clear",   "Smoky",  "Misty",   "Sunlit", "Winter", "Autumn",   "Spring",
    "Summer", "Morning", "Sunday", "Evening", "Wide",   "Slow",   "Midnight", "Ancient"};

inline constexpr Nouns kHalls = {"Hall",    "Cathedral",  "Chapel", "Op\x8Era",
                                 "Theatre", "Auditorium", "Abbey",  "Ballroom"};
inline constexpr Nouns kRooms = {"Room",  "Parlour", "Studio",  "Caf\x8E",
                                 "Cabin", "Attic",   "Library", "Cellar"};
inline constexpr Nouns kTimbres = {"Tilt", "Sparkle", "Presence", "Tone",
                                   "Veil", "Shine",   "Body",     "Edge"};
inline constexpr Nouns kChoruses = {"Chorus", "Ensemble", "Shimmer", "Doubling",
                                    "Drift",  "Swirl",    "Waves",   "Quartet"};
inline constexpr Nouns kSpecials = {"Echo",  "Telephone", "Gramophone", "Mirage",
                                    "Cloud", "R\x90ve",   "Spiral",     "Tunnel"};
inline constexpr Nouns kAmbiences = {"Plate", "Ambience", "Glow",  "Space",
                                     "Halo",  "Depth",    "Bloom", "Tail"};
inline constexpr Nouns kPieces = {"Ballad", "Nocturne",   "\x83tude", "Jazz",
                                  "Gospel", "Pr\x8Elude", "Waltz",    "Pop"};
inline constexpr Nouns kTouches = {"Touch",    "Action", "Curve",   "Hammers",
                                   "Response", "Keys",   "Fingers", "Weight"};
inline constexpr Nouns kOccasions = {"Recital",
                                     "Rehearsal",
                                     "Soir\x8E"
                                     "e",
                                     "Concert",
                                     "Lesson",
                                     "Recording",
                                     "Tour",
                                     "Matin\x8E"
                                     "e"};

/// A folder of example presets and their names: before + adjective + noun + after.
struct Place {
  const char* folder;  // below the kind's root, "/" between its parts
  const char* before;
  const Nouns& nouns;
  const char* after;
  bool rom;
  /// In every thousand, ROM indexes use the `width` numbers from `first` on, so that sorting would
  /// choose the same folder.
  std::int32_t first, width;
  std::uint32_t instrument;  // a program uses its keysets
  bool eqOn, chorusOn, ambienceOn;
};

inline constexpr Place kVelocityMapPlaces[] = {
    {"Factory", "", kTouches, "", true, 1, 999, 0, false, false, false},
    {"User", "My ", kTouches, "", false, 1, 999, 0, false, false, false},
    {"Factory/Controllers", "", kTouches, " 88", true, 1, 999, 0, false, false, false},
    {"User/Live", "", kTouches, " Live", false, 1, 999, 0, false, false, false},
};

inline constexpr Place kEffectsPlaces[] = {
    {"Halls", "", kHalls, "", true, 1, 19, 0, false, false, true},
    {"User", "My ", kHalls, "", false, 1, 999, 0, false, false, true},
    {"Choruses", "", kChoruses, "", true, 100, 30, 0, false, true, false},
    {"EQ Timbres", "", kTimbres, "", true, 30, 30, 0, true, false, false},
    {"Small Rooms", "", kRooms, "", true, 20, 10, 0, false, false, true},
    {"User/Live", "", kRooms, " Live", false, 1, 999, 0, true, false, true},
    {"Special FX", "", kSpecials, "", true, 180, 20, 0, true, true, true},
    {"User/Studio/Mixes", "", kSpecials, " Mix", false, 1, 999, 0, true, true, true},
    {"Factory", "", kAmbiences, "", true, 60, 40, 0, false, false, true},
};

inline constexpr Place kProgramPlaces[] = {
    {"Concerto", "Concerto ", kPieces, "", true, 1, 999, 1, false, false, false},
    {"User", "My ", kPieces, "", false, 1, 999, 2, false, false, false},
    {"Nordic D", "Nordic ", kPieces, "", true, 1, 999, 2, false, false, false},
    {"Salon 7ft", "Salon ", kPieces, "", true, 1, 999, 3, false, false, false},
    {"User/Live", "", kPieces, " Live", false, 1, 999, 1, false, false, false},
    {"Alpine 10ft", "Alpine ", kPieces, "", true, 1, 999, 4, false, false, false},
    {"Urban Upright", "Urban ", kPieces, "", true, 1, 999, 5, false, false, false},
    {"Antique Upright", "Antique ", kPieces, "", true, 1, 999, 6, false, false, false},
    {"User/Studio/Takes", "", kPieces, " Take", false, 1, 999, 4, false, false, false},
    {"Saloon Upright", "Saloon ", kPieces, "", true, 1, 999, 7, false, false, false},
    {"Pin Piano", "Pin ", kPieces, "", true, 1, 999, 8, false, false, false},
    {"Synth", "Synth ", kPieces, "", true, 1, 999, 0, false, false, false},
};

inline constexpr Place kSessionPlaces[] = {
    {"Recitals", "", kOccasions, "", true, 1, 999, 0, false, false, false},
    {"Home", "", kOccasions, " at Home", false, 1, 999, 0, false, false, false},
    {"Recitals/Abroad", "", kOccasions, " Abroad", false, 1, 999, 0, false, false, false},
};

/// Appended to a good name, each makes a name that Windows rejects.
inline constexpr const char* kRejectedEndings[] = {"?", "/Alt",   " *new*", " <close>",
                                                   ".", " | Dry", " \"B\"", " "};

/// The names in broken references. No preset has such a name.
inline constexpr const char* kLostNames[] = {"Lost Pavilion", "Untitled 7", "Copy of Mist"};

struct Kind {
  const char* folder;
  const char* name;
  bool hasUserFolder;
  std::span<const Place> places;
};

/// In the order in which presets refer to one another: velocity maps, effects, programs, sessions.
inline constexpr std::array<Kind, 4> kKinds = {{
    {"Velocity Maps", "velocity maps", true, kVelocityMapPlaces},
    {"Effects", "effects", true, kEffectsPlaces},
    {"Programs", "programs", true, kProgramPlaces},
    {"Sessions", "sessions", false, kSessionPlaces},
}};

}  // namespace cairnset::words
