// Expected texts in files.
#ifndef VOREL_TESTS_TUNING_EXPECTED_FILE_H_
#define VOREL_TESTS_TUNING_EXPECTED_FILE_H_

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "tests/support/temp_dir.h"

// Holds a text to the file; with VOREL_WRITE_EXPECTED set the file is written instead.
inline void expect_file(const std::string& actual, const std::filesystem::path& expected) {
  if (std::getenv("VOREL_WRITE_EXPECTED") != nullptr) {
    std::ofstream(expected, std::ios::binary) << actual;
    GTEST_SKIP() << "wrote " << expected << ": read it before you believe it";
  }
  EXPECT_EQ(actual, read_file(expected));
}

#endif  // VOREL_TESTS_TUNING_EXPECTED_FILE_H_
