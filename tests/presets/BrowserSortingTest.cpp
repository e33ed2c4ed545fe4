#include <gtest/gtest.h>

#include "presets/BrowserSorting.h"

namespace cairnset {
namespace {

TEST(BrowserSorting, EffectsGoByTheirIndexWithinTheThousand) {
  const std::pair<std::int32_t, const char*> cases[] = {
      {0, "Factory"},      {1, "Halls"},           {19, "Halls"},
      {20, "Small Rooms"}, {29, "Small Rooms"},    {30, "EQ Timbres"},
      {59, "EQ Timbres"},  {60, "Factory"},        {99, "Factory"},
      {100, "Choruses"},   {129, "Choruses"},      {130, "Factory"},
      {179, "Factory"},    {180, "Special FX"},    {199, "Special FX"},
      {200, "Factory"},    {999, "Factory"},       {1000, "Factory"},
      {1105, "Choruses"},  {2070, "Factory"},      {-1, "Factory"},
      {-1985, "Factory"},  {INT32_MIN, "Factory"}, {INT32_MAX, "Factory"}};  // ...647
  for (const auto& [index, folder] : cases)
    EXPECT_STREQ(effectsFolderFor(index), folder) << index;
}

TEST(BrowserSorting, ProgramsGoByTheInstrumentOfTheirKeyset) {
  const std::pair<std::int32_t, const char*> cases[] = {{0, "Synth"},
                                                        {-32767, "Synth"},
                                                        {-4, "Concerto"},
                                                        {51, "Concerto"},
                                                        {96, "Nordic D"},
                                                        {201, "Salon 7ft"},
                                                        {331, "Alpine 10ft"},
                                                        {412, "Urban Upright"},
                                                        {479, "Antique Upright"},
                                                        {516, "Saloon Upright"},
                                                        {579, "Pin Piano"},
                                                        {5, "Factory"},
                                                        {-1, "Factory"}};
  for (const auto& [keyset, folder] : cases) {
    EXPECT_STREQ(programFolderFor(keyset), folder) << keyset;
  }
}

}  // namespace
}  // namespace cairnset
