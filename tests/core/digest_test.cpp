// Whole frames against a list of digests that holds on every machine and at every optimisation
// level. After a wanted change of results: VOREL_PRINT_DIGESTS=1 core_test --gtest_filter='Digest*'
// prints the new list.
#include <cstdio>

#include "tests/core/digest_cases.h"

namespace {

class DigestTest : public HandleTest {};

TEST_F(DigestTest, FramesGiveTheListedBytes) {
  const std::vector<DigestCase> cases = read_digest_cases();
  ASSERT_GE(cases.size(), 20u);
  const bool print = std::getenv("VOREL_PRINT_DIGESTS") != nullptr;
  for (const DigestCase& c : cases) {
    use_tuning(tuning_of(c));
    vorel* handle = open(c.width, c.height);
    ASSERT_NE(handle, nullptr);
    TestFrame frame(c.width, c.height, 11);
    fill_content(c.content, &frame);
    const std::vector<uint8_t> before = frame.bytes();
    run(handle, &frame, c.noise_index, c.format == "nv21" ? VOREL_FMT_NV21 : VOREL_FMT_NM21);
    vorel_deinit(handle);
    log_.clear();
    const std::string actual = digest(frame.bytes());
    if (print) {
      std::printf("%d %d %s %d %s %s %s\n", c.width, c.height, c.format.c_str(), c.noise_index,
                  c.tuning.c_str(), c.content.c_str(), actual.c_str());
      continue;
    }
    EXPECT_EQ(actual, c.digest) << c.width << "x" << c.height << " " << c.noise_index << " "
                                << c.tuning << " " << c.content;
    EXPECT_NE(frame.bytes(), before) << c.tuning;
  }
}

}  // namespace
