// Any bytes as a JPEG file: markers, metadata, all samplings, and writing it again with other
// pixels.
#include <algorithm>

#include "fuzz/picture_check.h"
#include "tools/pictures/picture_size.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string path = write_input("in.jpg", data, size);
  // Where the size is hidden behind rubbish it may be anything, and a large one only takes time.
  const uint8_t start[] = {0xFF, 0xD8};
  const bool is_jpeg = size > 2 && std::equal(start, start + 2, data);
  if (is_jpeg && !tool::size_of_file(path, {})) return -1;
  read_pictures(path, {});
  return 0;
}
