#include "tools/pictures/exif_iso.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <utility>

namespace {

using Bytes = std::vector<uint8_t>;

void put(Bytes& bytes, uint32_t value, int size, bool big_endian) {
  for (int i = 0; i < size; ++i) {
    bytes.push_back(static_cast<uint8_t>(value >> 8 * (big_endian ? size - 1 - i : i)));
  }
}

struct Entry {
  uint16_t tag;
  uint16_t type;  // 3 is 16 bits, 4 is 32
  uint32_t value;
};

// A TIFF structure: a directory that points to the Exif directory, which has the entries.
Bytes exif(bool big_endian, std::initializer_list<Entry> entries) {
  Bytes bytes(2, big_endian ? 'M' : 'I');
  const auto add = [&](uint32_t value, int size) { put(bytes, value, size, big_endian); };
  const auto add_entry = [&](const Entry& entry) {
    add(entry.tag, 2);
    add(entry.type, 2);
    add(1, 4);
    add(entry.value, entry.type == 3 ? 2 : 4);
    if (entry.type == 3) add(0, 2);
  };
  add(42, 2);
  add(8, 4);
  add(1, 2);
  add_entry({0x8769, 4, 26});
  add(0, 4);
  add(static_cast<uint32_t>(entries.size()), 2);
  for (const Entry& entry : entries) add_entry(entry);
  add(0, 4);
  return bytes;
}

TEST(ExifIso, IsFoundInBothByteOrdersAndBothFields) {
  for (const bool big_endian : {false, true}) {
    EXPECT_EQ(tool::exif_iso(exif(big_endian, {{0x8827, 3, 6400}})), 6400);
    EXPECT_EQ(tool::exif_iso(exif(big_endian, {{0x8827, 3, 65535}, {0x8832, 4, 102400}})), 102400);
  }
}

TEST(ExifIso, IsMissingWhenNothingSaysIt) {
  const Bytes whole = exif(false, {{0x8827, 3, 6400}});
  EXPECT_EQ(tool::exif_iso({}), std::nullopt);
  EXPECT_EQ(tool::exif_iso(exif(false, {{0x9000, 3, 1}})), std::nullopt);
  EXPECT_EQ(tool::exif_iso(exif(false, {{0x8827, 3, 0}})), std::nullopt);
  EXPECT_EQ(tool::exif_iso(exif(false, {{0x8827, 3, 65535}})), std::nullopt);
  for (size_t length = 0; length < whole.size(); ++length) {
    const std::optional<int> iso =
        tool::exif_iso(Bytes(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(length)));
    EXPECT_TRUE(!iso || iso == 6400) << length;
  }
}

}  // namespace
