// The sampled-piano variants that a program can select, and their instruments.
#pragma once

#include <cstdint>

#pragma GCC visibility push(default)
namespace cairnset {

struct KeysetRow {
  std::int32_t keysetID;       // as stored in programs
  std::uint32_t instrumentID;  // 0 to 8; 0 means no piano
  const char* name;
};

/// 82 rows, then one with a null name and ids of 0. Ids are unique and unordered. Two rows, with
/// ids -32767 and 0, mean no piano.
extern const KeysetRow keysetIDList[];

/// Null if no row has the id.
const char* findKeysetNameWithID(int id);

/// 0 if no row has the id.
std::uint32_t findInstrumentIDWithKeysetID(int id);

/// The product that the keyset is part of: 1 for instruments 1 to 3, 2 for instrument 4, 3 for
/// instruments 5 to 8; 0 for no piano and for an unknown id.
int getProductIDFromKeysetID(int id);

/// The form of the piano: 1 for a grand (instruments 1 to 4), 2 for an upright or other (5 to 8); 0
/// for no piano and for an unknown id.
int getFormFromKeysetID(int id);

}  // namespace cairnset
#pragma GCC visibility pop
