// Whole frames against a list of digests that holds on every machine and at every optimisation
// level. After a wanted change of results: VOREL_PRINT_DIGESTS=1 core_test --gtest_filter='Digest*'
// prints the new list.
#include <cstdio>
#include <map>
#include <sstream>

#include "tests/core/handle_fixture.h"
#include "tests/support/source_path.h"

namespace {

// FNV-1a, 64 bits.
uint64_t digest(const std::vector<uint8_t>& bytes) {
  uint64_t hash = 0xcbf29ce484222325u;
  for (uint8_t byte : bytes) hash = (hash ^ byte) * 0x100000001b3u;
  return hash;
}

// Keys of the tuning object besides the threshold; see data/digests/frames.txt.
const std::map<std::string, std::string> kTunings{
    {"default", ""},
    {"spatial", R"(, "MFD_UV_tuning": {"enable": 0})"},
    {"wavelet", R"(, "enable": 0)"},
    {"uv_thresh_0", R"(, "interleaving_tuning": {"d_UV_thresh_table": [0]},
        "noiseIndex_values": [100])"},
    {"y_thresh_0", R"(, "interleaving_tuning": {"d_Y_upper_thresh_table": [0]},
        "noiseIndex_values": [100])"},
    {"radial_2", R"(, "noiseIndex_values": [100], "MFD_UV_tuning": {"radialModeTable": [2.0],
        "CSatParam1Table": [-20.0], "CSatParam2Table": [35.0]})"},
    {"radial_neg", R"(, "noiseIndex_values": [100], "MFD_UV_tuning": {"radialModeTable": [-1.3],
        "denoiseThrChroma0Table": [31.7], "denoiseThrChroma1Table": [12.9],
        "denoiseThrChroma2Table": [55.1], "denoiseThrChroma3Table": [4.3],
        "denoiseThrChroma4Table": [140.6], "CSatParam1Table": [-33.3],
        "CSatParam2Table": [17.7], "CSatThr1Table": [21.9], "CSatThr2Table": [47.3]})"},
    {"levels", R"(, "noiseIndex_values": [100, 1000, 9000],
        "bilateralfiltering_tuning": {"span_row": 2, "span_col": 5, "val_delta_th": 12},
        "interleaving_tuning": {"d_Y_upper_thresh_table": [3, 9, 30],
          "d_Y_lower_thresh_table": [0, 2, 5], "d_UV_thresh_table": [8, 24, 200],
          "cs_upper_thresh_table": [60, 40, 20], "cs_lower_thresh_table": [10, 30, 50]},
        "MFD_UV_tuning": {"denoiseThrChroma0Table": [7.0, 40.0, 160.0],
          "denoiseThrChroma1Table": [5.0, 40.0, 160.0],
          "denoiseThrChroma2Table": [7.0, 28.0, 160.0],
          "denoiseThrChroma3Table": [7.0, 5.0, 28.0],
          "denoiseThrChroma4Table": [5.0, 2.0, 5.0]})"},
    {"table_variant", R"(, "bilateralfiltering_tuning": {"val_delta_th": 16},
        "MFD_UV_tuning": {"enable": 0})"},
};

struct DigestCase {
  int width;
  int height;
  std::string format;
  int noise_index;
  std::string tuning;
  std::string content;
  std::string digest;
};

std::vector<DigestCase> read_cases() {
  std::vector<DigestCase> cases;
  std::ifstream file(source_path("tests/core/data/digests/frames.txt"));
  std::string line;
  while (std::getline(file, line)) {
    if (line.empty() || line[0] == '#') continue;
    DigestCase c;
    std::istringstream words(line);
    words >> c.width >> c.height >> c.format >> c.noise_index >> c.tuning >> c.content >> c.digest;
    EXPECT_TRUE(!words.fail()) << line;
    cases.push_back(c);
  }
  return cases;
}

// "picture": edges with noise; "random": any byte; "extreme": chroma 0 and 255 only.
void fill_content(const std::string& content, TestFrame* frame) {
  if (content == "picture") return;
  std::mt19937 random(12);
  fill_pattern(frame->y.data(), frame->y.size(), Pattern::kRandom, random);
  fill_pattern(frame->uv.data(), frame->uv.size(), Pattern::kRandom, random);
  if (content == "random") return;
  for (size_t i = 0; i < frame->uv.size(); ++i) frame->uv[i] = frame->uv[i] < 128 ? 0 : 255;
}

class DigestTest : public HandleTest {};

TEST_F(DigestTest, FramesGiveTheListedBytes) {
  const std::vector<DigestCase> cases = read_cases();
  ASSERT_GE(cases.size(), 20u);
  const bool print = std::getenv("VOREL_PRINT_DIGESTS") != nullptr;
  for (const DigestCase& c : cases) {
    ASSERT_TRUE(kTunings.count(c.tuning)) << c.tuning;
    use_tuning(R"({"enableNoiseIndex": 0)" + kTunings.at(c.tuning) + "}");
    vorel* handle = open(c.width, c.height);
    ASSERT_NE(handle, nullptr);
    TestFrame frame(c.width, c.height, 11);
    fill_content(c.content, &frame);
    const std::vector<uint8_t> before = frame.bytes();
    run(handle, &frame, c.noise_index, c.format == "nv21" ? VOREL_FMT_NV21 : VOREL_FMT_NM21);
    vorel_deinit(handle);
    log_.clear();
    char actual[17];
    std::snprintf(actual, sizeof(actual), "%016llx",
                  static_cast<unsigned long long>(digest(frame.bytes())));
    if (print) {
      std::printf("%d %d %s %d %s %s %s\n", c.width, c.height, c.format.c_str(), c.noise_index,
                  c.tuning.c_str(), c.content.c_str(), actual);
      continue;
    }
    EXPECT_EQ(actual, c.digest) << c.width << "x" << c.height << " " << c.noise_index << " "
                                << c.tuning << " " << c.content;
    EXPECT_NE(frame.bytes(), before) << c.tuning;
  }
}

}  // namespace
