// Any bytes as a y4m file, with and without a range of the caller's.
#include "fuzz/picture_check.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  tool::ReadOptions options;
  if (size % 2 != 0) options.range = tool::Range::kLimited;
  read_pictures(write_input("in.y4m", data, size), options);
  return 0;
}
