// The sampled-piano variants that a program can select, and the instruments that they belong to.
#pragma once

#include <cstdint>

namespace cairnset {

struct KeysetRow {
  std::int32_t keysetID;       // as programs store it
  std::uint32_t instrumentID;  // 0 to 8; 0 is no piano
  const char* name;
};

/// 82 rows, then one with a null name and ids of 0. Ids are unique and in no order; two rows, of
/// ids -32767 and 0, both stand for no piano.
extern const KeysetRow keysetIDList[];

/// Null where no row has the id.
const char* findKeysetNameWithID(int id);

/// 0 where no row has the id.
std::uint32_t findInstrumentIDWithKeysetID(int id);

/// The product that the keyset is part of: 1 for instruments 1 to 3, 2 for instrument 4, 3 for
/// instruments 5 to 8; 0 for no piano and for an unknown id.
int getProductIDFromKeysetID(int id);

/// The form of the piano: 1 for a grand (instruments 1 to 4), 2 for an upright or other (5 to 8); 0
/// for no piano and for an unknown id.
int getFormFromKeysetID(int id);

}  // namespace cairnset
