// What tests of reading and writing pictures share.
#ifndef VOREL_TESTS_TOOLS_PICTURES_PICTURE_CHECKS_H_
#define VOREL_TESTS_TOOLS_PICTURES_PICTURE_CHECKS_H_

#include <gmock/gmock.h>

#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "tools/files/failure.h"
#include "tools/pictures/picture_io.h"

// Status and text of the failure that `action` ends with; kDone and "" when it does not fail.
template <typename Action>
std::pair<int, std::string> failure_of(Action action) {
  try {
    action();
  } catch (const tool::Failure& failure) {
    return {failure.status(), failure.what()};
  }
  return {tool::kDone, ""};
}

// Reading must fail as bad input, naming the file and saying `reason`.
inline void expect_unreadable(const std::string& path, const std::string& reason,
                              const tool::ReadOptions& options = {}) {
  const auto [status, text] =
      failure_of([&] { static_cast<void>(tool::read_picture(path, options)); });
  EXPECT_EQ(status, tool::kBadInput) << path << ": " << text;
  EXPECT_THAT(text, testing::HasSubstr(path));
  EXPECT_THAT(text, testing::HasSubstr(reason));
}

inline const tool::RgbImage& rgb(const tool::Picture& picture) {
  return std::get<tool::RgbImage>(picture.pixels);
}
inline const tool::Nv21Frame& frame(const tool::Picture& picture) {
  return std::get<tool::Nv21Frame>(picture.pixels);
}

inline double mean_difference(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b) {
  double sum = 0;
  for (size_t i = 0; i < a.size(); ++i) sum += std::abs(a[i] - b[i]);
  return sum / static_cast<double>(a.size());
}

#endif  // VOREL_TESTS_TOOLS_PICTURES_PICTURE_CHECKS_H_
