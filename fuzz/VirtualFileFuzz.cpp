// Any sequence of operations on a VirtualFile, compared with its model.
#include "fuzz/Fuzz.h"
#include "tests/storage/StorageTest.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace cairnset;
  FuzzedDataProvider input(data, size);
  VirtualFile file(input.ConsumeIntegralInRange<long>(-1, 200));
  VirtualFileModel model(file, [&input](std::size_t n) {
    return input.ConsumeIntegralInRange<std::size_t>(0, n - 1);
  });
  for (int steps = 0; steps < 300 && input.remaining_bytes() > 0; ++steps)
    check(model.step(), "as the model");
  return 0;
}
