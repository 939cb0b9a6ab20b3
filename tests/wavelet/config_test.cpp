#include "vorel/wavelet/config.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace {

std::vector<uint32_t> words() {
  std::vector<uint32_t> all;
  for (unsigned level = 0; level < 3; ++level) all.push_back(getWtCfg(level));
  for (unsigned level = 0; level < 3; ++level) {
    all.push_back(getWtRange(level, WT_SUBBAND_FIRST));
    all.push_back(getWtRange(level, WT_SUBBAND_LAST));
  }
  return all;
}

TEST(WaveletConfig, OnlyTheValueTwoSelectsTheUpperRange) {
  setWtCfg(2, 2, 2);
  EXPECT_EQ(words(), (std::vector<uint32_t>{2, 2, 2, 4, 8, 4, 8, 4, 8}));
  setWtCfg(0, 1, 3);
  EXPECT_EQ(words(), (std::vector<uint32_t>{0, 1, 3, 0, 7, 0, 7, 0, 7}));
  setWtCfg(4, 2, -2);
  EXPECT_EQ(words(), (std::vector<uint32_t>{4, 2, 0xFFFFFFFE, 0, 7, 4, 8, 0, 7}));
}

TEST(WaveletConfig, DefaultIgnoresItsArguments) {
  setWtCfg(0, 0, 0);
  initLlsMerge(7, 9);
  EXPECT_EQ(words(), (std::vector<uint32_t>{2, 4, 4, 4, 8, 0, 7, 0, 7}));
  allocate_memory();
  deallocate_memory();
  reconfigureMerge(nullptr, nullptr);
  EXPECT_EQ(words(), (std::vector<uint32_t>{2, 4, 4, 4, 8, 0, 7, 0, 7}));
}

// Callers may look at the record as nine words.
TEST(WaveletConfig, RecordIsNineWordsInOrder) {
  setWtCfg(5, 2, 6);
  uint32_t record[9];
  static_assert(sizeof(record) == sizeof(g_waveletCfg));
  std::memcpy(record, &g_waveletCfg, sizeof(record));
  EXPECT_EQ(std::vector<uint32_t>(record, record + 9), words());
}

}  // namespace
