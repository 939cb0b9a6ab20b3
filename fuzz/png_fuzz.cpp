// Any bytes as a PNG file. Mutations get the checksums that libpng asks for, else few would come
// further than the first chunk.
#include <zlib.h>

#include <cstring>

#include "fuzz/picture_check.h"

extern "C" size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t max_size);

namespace {

constexpr size_t kSignatureBytes = 8;
constexpr size_t kChunkBytes = 12;  // of length, type and checksum

uint32_t big_endian(const uint8_t* bytes) {
  return uint32_t{bytes[0]} << 24 | uint32_t{bytes[1]} << 16 | uint32_t{bytes[2]} << 8 | bytes[3];
}

void mend_checksums(uint8_t* data, size_t size) {
  for (size_t pos = kSignatureBytes; pos + kChunkBytes <= size;) {
    const size_t length = big_endian(data + pos);
    if (length > size - pos - kChunkBytes) return;
    const uLong sum = crc32(0, data + pos + 4, static_cast<uInt>(length + 4));
    for (size_t i = 0; i < 4; ++i) {
      data[pos + 8 + length + i] = static_cast<uint8_t>(sum >> (24 - 8 * i) & 0xFF);
    }
    pos += kChunkBytes + length;
  }
}

}  // namespace

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t max_size,
                                          unsigned seed) {
  const size_t mutated = LLVMFuzzerMutate(data, size, max_size);
  if (seed % 8 != 0) mend_checksums(data, mutated);
  return mutated;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  read_pictures(write_input("in.png", data, size), {});
  return 0;
}
