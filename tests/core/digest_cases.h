// The frames whose digests tests/core/data/digests/frames.txt lists: their tunings and contents.
#ifndef VOREL_TESTS_CORE_DIGEST_CASES_H_
#define VOREL_TESTS_CORE_DIGEST_CASES_H_

#include <map>
#include <sstream>

#include "tests/core/handle_fixture.h"
#include "tests/support/source_path.h"

// FNV-1a, 64 bits.
inline std::string digest(const std::vector<uint8_t>& bytes) {
  uint64_t hash = 0xcbf29ce484222325u;
  for (uint8_t byte : bytes) hash = (hash ^ byte) * 0x100000001b3u;
  char text[17];
  std::snprintf(text, sizeof(text), "%016llx", static_cast<unsigned long long>(hash));
  return text;
}

// Keys of the tuning object besides the threshold; see data/digests/frames.txt.
inline const std::map<std::string, std::string> kDigestTunings{
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

// Text of a case's tuning, one object.
inline std::string tuning_of(const DigestCase& c) {
  return R"({"enableNoiseIndex": 0)" + kDigestTunings.at(c.tuning) + "}";
}

inline std::vector<DigestCase> read_digest_cases() {
  std::vector<DigestCase> cases;
  std::ifstream file(source_path("tests/core/data/digests/frames.txt"));
  std::string line;
  while (std::getline(file, line)) {
    if (line.empty() || line[0] == '#') continue;
    DigestCase c;
    std::istringstream words(line);
    words >> c.width >> c.height >> c.format >> c.noise_index >> c.tuning >> c.content >> c.digest;
    EXPECT_TRUE(!words.fail() && kDigestTunings.count(c.tuning) == 1) << line;
    cases.push_back(c);
  }
  return cases;
}

// "picture": edges with noise; "random": any byte; "extreme": chroma 0 and 255 only.
inline void fill_content(const std::string& content, TestFrame* frame) {
  if (content == "picture") return;
  std::mt19937 random(12);
  fill_pattern(frame->y.data(), frame->y.size(), Pattern::kRandom, random);
  fill_pattern(frame->uv.data(), frame->uv.size(), Pattern::kRandom, random);
  if (content == "random") return;
  for (size_t i = 0; i < frame->uv.size(); ++i) frame->uv[i] = frame->uv[i] < 128 ? 0 : 255;
}

#endif  // VOREL_TESTS_CORE_DIGEST_CASES_H_
