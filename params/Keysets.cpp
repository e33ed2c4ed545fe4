#include "params/Keysets.h"

#include <iterator>

namespace cairnset {

const KeysetRow keysetIDList[] = {
    {-32767, 0, "No Piano Keyset"},
    {0, 0, "No Piano Keyset"},
    {-4, 1, "Concerto 10 Level"},
    {-3, 1, "Concerto 10 Level II"},
    {1, 1, "Concerto 8 Level"},
    {2, 1, "Concerto 8 Level II"},
    {10, 1, "Concerto 6 Level"},
    {11, 1, "Concerto 6 Level II"},
    {20, 1, "Concerto 4 Level"},
    {21, 1, "Concerto 4 Level II"},
    {26, 1, "Concerto88 10 Level"},
    {27, 1, "Concerto88 10 Level II"},
    {30, 1, "Concerto88 8 Level"},
    {31, 1, "Concerto88 8 Level II"},
    {40, 1, "Concerto88 6 Level"},
    {41, 1, "Concerto88 6 Level II"},
    {50, 1, "Concerto88 4 Level"},
    {51, 1, "Concerto88 4 Level II"},
    {96, 2, "Nordic D 10 Level"},
    {97, 2, "Nordic D 10 Level II"},
    {100, 2, "Nordic D 8 Level"},
    {101, 2, "Nordic D 8 Level II"},
    {110, 2, "Nordic D 6 Level"},
    {111, 2, "Nordic D 6 Level II"},
    {120, 2, "Nordic D 4 Level"},
    {121, 2, "Nordic D 4 Level II"},
    {195, 3, "Salon 7ft 8 Level"},
    {196, 3, "Salon 7ft 8 Level II"},
    {200, 3, "Salon 7ft 6 Level"},
    {201, 3, "Salon 7ft 6 Level II "},  // the trailing space is part of the name
    {210, 3, "Salon 7ft 5 Level"},
    {211, 3, "Salon 7ft 5 Level II"},
    {220, 3, "Salon 7ft 4 Level"},
    {221, 3, "Salon 7ft 4 Level II"},
    {310, 4, "Alpine Grand 12 Level"},
    {311, 4, "Alpine Grand 12 Level II"},
    {314, 4, "Alpine Grand 10 Level"},
    {315, 4, "Alpine Grand 10 Level II"},
    {318, 4, "Alpine Grand 8 Level"},
    {319, 4, "Alpine Grand 8 Level II"},
    {322, 4, "Alpine Grand 6 Level"},
    {323, 4, "Alpine Grand 6 Level II"},
    {326, 4, "Alpine Grand 4 Level"},
    {327, 4, "Alpine Grand 4 Level II"},
    {330, 4, "Alpine Grand Hard Levels"},
    {331, 4, "Alpine Grand Soft Levels"},
    {412, 5, "Urban Upright 10 Level"},
    {413, 5, "Urban Upright 10 Level II"},
    {416, 5, "Urban Upright 8 Level"},
    {417, 5, "Urban Upright 8 Level II"},
    {420, 5, "Urban Upright 6 Level"},
    {421, 5, "Urban Upright 6 Level II"},
    {424, 5, "Urban Upright 4 Level"},
    {425, 5, "Urban Upright 4 Level II"},
    {428, 5, "Urban Upright Hard Levels"},
    {429, 5, "Urban Upright Soft Levels"},
    {462, 6, "Antique Upright 10 Level"},
    {463, 6, "Antique Upright 10 Level II"},
    {466, 6, "Antique Upright 8 Level"},
    {467, 6, "Antique Upright 8 Level II"},
    {470, 6, "Antique Upright 6 Level"},
    {471, 6, "Antique Upright 6 Level II"},
    {474, 6, "Antique Upright 4 Level"},
    {475, 6, "Antique Upright 4 Level II"},
    {478, 6, "Antique Upright Hard Levels"},
    {479, 6, "Antique Upright Soft Levels"},
    {516, 7, "Saloon Upright 8 Level"},
    {517, 7, "Saloon Upright 8 Level II"},
    {520, 7, "Saloon Upright 6 Level"},
    {521, 7, "Saloon Upright 6 Level II"},
    {524, 7, "Saloon Upright 4 Level"},
    {525, 7, "Saloon Upright 4 Level II"},
    {528, 7, "Saloon Upright Hard Levels"},
    {529, 7, "Saloon Upright Soft Levels"},
    {566, 8, "Pin Piano 8 Level"},
    {567, 8, "Pin Piano 8 Level II"},
    {570, 8, "Pin Piano 6 Level"},
    {571, 8, "Pin Piano 6 Level II"},
    {574, 8, "Pin Piano 4 Level"},
    {575, 8, "Pin Piano 4 Level II"},
    {578, 8, "Pin Piano Hard Levels"},
    {579, 8, "Pin Piano Soft Levels"},
    {0, 0, nullptr},
};

namespace {

struct InstrumentClass {
  int product;
  int form;
};

constexpr InstrumentClass kInstrumentClasses[] = {
    {0, 0}, {1, 1}, {1, 1}, {1, 1}, {2, 1}, {3, 2}, {3, 2}, {3, 2}, {3, 2},
};

const KeysetRow& rowOf(int id) {
  const KeysetRow* row = keysetIDList;
  while (row->name != nullptr && row->keysetID != id)
    ++row;
  return *row;
}

InstrumentClass classOf(int id) {
  const std::uint32_t instrument = rowOf(id).instrumentID;
  return instrument < std::size(kInstrumentClasses) ? kInstrumentClasses[instrument]
                                                    : InstrumentClass{0, 0};
}

}  // namespace

const char* findKeysetNameWithID(int id) {
  return rowOf(id).name;
}

std::uint32_t findInstrumentIDWithKeysetID(int id) {
  return rowOf(id).instrumentID;
}

int getProductIDFromKeysetID(int id) {
  return classOf(id).product;
}

int getFormFromKeysetID(int id) {
  return classOf(id).form;
}

}  // namespace cairnset
