// Comparing planes so that a failure names the first sample that differs.
#ifndef VOREL_TESTS_FILTERS_PLANE_COMPARE_H_
#define VOREL_TESTS_FILTERS_PLANE_COMPARE_H_

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// "name=value" pairs for the message of a failed case.
inline std::string describe() { return ""; }
template <typename Value, typename... More>
std::string describe(const char* name, Value value, More... more) {
  return std::string(name) + "=" + std::to_string(value) + " " + describe(more...);
}

inline ::testing::AssertionResult planes_equal(const std::vector<uint8_t>& expected,
                                               const uint8_t* actual, int width,
                                               const std::string& parameters) {
  for (size_t i = 0; i < expected.size(); ++i) {
    if (expected[i] == actual[i]) continue;
    const size_t columns = static_cast<size_t>(width);
    return ::testing::AssertionFailure()
           << parameters << "row=" << i / columns << " column=" << i % columns << ": expected "
           << int{expected[i]} << ", got " << int{actual[i]};
  }
  return ::testing::AssertionSuccess();
}

#endif  // VOREL_TESTS_FILTERS_PLANE_COMPARE_H_
