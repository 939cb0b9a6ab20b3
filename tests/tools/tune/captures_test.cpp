// Captures: manifests, names, bursts.
#include <gmock/gmock.h>

#include <cmath>

#include "tests/tools/run_command.h"
#include "tests/tools/test_pictures.h"
#include "tools/files/failure.h"
#include "tools/pictures/colour.h"
#include "tools/pictures/noise_model.h"
#include "tools/tune/burst.h"
#include "tools/tune/manifest.h"
#include "tools/tune/score.h"

namespace {

using namespace tool;
using testing::HasSubstr;

std::string spelled(const std::vector<CaptureSource>& sources, const std::string& folder) {
  std::string text;
  for (const CaptureSource& source : sources) {
    text += source.scene + " " + std::to_string(source.noise_index);
    for (const std::string& noisy : source.noisy) text += " " + noisy;
    if (!source.clean.empty()) text += " = " + source.clean;
    text += "\n";
  }
  for (size_t at = 0; (at = text.find(folder + "/", at)) != std::string::npos;) {
    text.erase(at, folder.size() + 1);
  }
  return text;
}

template <typename Call>
std::string failure_of(const Call& call) {
  try {
    call();
  } catch (const Failure& failure) {
    return failure.what();
  }
  return "";
}

TEST(TuneManifest, ListsCapturesAsCsvAndAsJson) {
  const TestDirectory directory;
  const struct {
    const char* name;
    const char* text;
    const char* expected;
  } kCases[] = {
      {"a.csv",
       "\xEF\xBB\xBFscene, noise_index, noisy, clean\r\n# a "
       "remark\r\nhall,800,\"h,1.png\",h.png\r\n"
       "\r\nyard,400,y1.png,\nyard,400,y2.png,\nyard,800,y3.png,\n,1600,,sky.png\n",
       "hall 800 h,1.png = h.png\nyard 400 y1.png y2.png\nyard 800 y3.png\nsky 1600 = sky.png\n"},
      {"a.json",
       "[{\"scene\": \"hall\", \"noise_index\": 800, \"noisy\": [\"1.png\", \"2.png\"], "
       "\"clean\": \"h.png\"}, {\"noise_index\": 100, \"clean\": \"sky.png\"}]",
       "hall 800 1.png 2.png = h.png\nsky 100 = sky.png\n"},
      {"bad.csv", "scene,iso\n", "line 1: 'iso' is no column"},
      {"short.csv", "scene,noise_index,clean\nx,100,a.png\ny,100\n", "line 3: has 2 fields"},
      {"index.csv", "noise_index,clean\n1e3,a.png\n", "line 2: noise_index must be a whole number"},
      {"nothing.csv", "scene,noise_index,clean\nx,100,\n", "line 2: names neither"},
      {"empty.csv", "scene,noise_index,clean\n", "names no pictures"},
      {"key.json", "[{\"noise\": 1}]", "entry 1: 'noise' is no key"},
      {"type.json", "[{\"noise_index\": 1, \"clean\": []}]", "entry 1: 'clean' must be a text"},
      {"broken.json", "[\n{]", "line 2"},
      {"object.json", "{}", "is no array"},
  };
  for (const auto& test : kCases) {
    const std::string path = directory / test.name;
    write_text(path, test.text);
    std::string got;
    const std::string failure =
        failure_of([&] { got = spelled(read_manifest(path), directory.path()); });
    if (failure.empty()) {
      EXPECT_EQ(got, test.expected) << test.name;
    } else {
      EXPECT_THAT(failure, testing::AllOf(HasSubstr(path), HasSubstr(test.expected)));
    }
  }
}

TEST(TuneNames, SayWhatBelongsTogether) {
  EXPECT_EQ(spelled(sources_by_name({"d/hall_n800_2.png", "d/hall_clean.jpg", "d/hall_n800_1.png",
                                     "d/red_car_640x480_iso100.nv21"}),
                    "d"),
            "hall 800 hall_n800_2.png hall_n800_1.png = hall_clean.jpg\n"
            "red_car 100 red_car_640x480_iso100.nv21\n");
  for (const char* bad : {"d/photo.png", "d/n800.png", "d/hall_n0.png", "d/hall_night.png"}) {
    EXPECT_THAT(failure_of([&] { static_cast<void>(sources_by_name({bad})); }), HasSubstr(bad));
  }
  EXPECT_THAT(failure_of([] {
                static_cast<void>(sources_by_name({"a_clean.png", "a_truth.png", "a_n1.png"}));
              }),
              HasSubstr("clean picture already"));
}

class TuneBurst : public testing::Test {
 protected:
  Nv21Frame noisy(uint64_t frame) const {
    return rgb_to_nv21(add_camera_noise(scene, {16, 7, frame}), {});
  }
  Burst burst_of(size_t count) const {
    Burst burst;
    for (size_t i = 0; i < count; ++i) burst.add("f" + std::to_string(i), noisy(i));
    return burst;
  }
  static std::string complaint(const Burst& burst) {
    return failure_of([&] { burst.check(); });
  }

  RgbImage scene = [] {
    RgbImage image = gradient_picture(192, 160);
    for (uint8_t& byte : image.pixels) byte = static_cast<uint8_t>(60 + byte / 2);
    return image;
  }();
};

TEST_F(TuneBurst, MeasuresLikeATruePair) {
  const Burst burst = burst_of(16);
  EXPECT_EQ(complaint(burst), "");
  const Nv21Frame clean = rgb_to_nv21(scene, {});
  BurstTruth truth = burst.mean_without(3);
  const Capture pair{"s", 1600, burst.frame(3), clean, ChromaImage(clean)};
  const Capture by_burst{
      "s", 1600, burst.frame(3), std::move(truth.rounded), std::move(truth.chroma), 1.0 / 16};
  EXPECT_NEAR(score_of(by_burst, by_burst.noisy).chroma(), score_of(pair, pair.noisy).chroma(),
              0.2);
  // Another frame of the burst has a part in that mean; the one left out has none.
  double with = 0;
  for (size_t i = 0; i < by_burst.truth_chroma.pairs.size(); ++i) {
    with += std::fabs(by_burst.truth_chroma.pairs[i] * 15 + burst.frame(3).vu()[i]);
  }
  double all = 0;
  for (size_t k = 0; k < burst.size(); ++k) {
    for (size_t i = 0; i < clean.chroma_bytes(); ++i) all += burst.frame(k).vu()[i];
  }
  EXPECT_NEAR(with, all, all * 1e-5);
}

TEST_F(TuneBurst, RefusesWhatIsNoTruth) {
  EXPECT_THAT(complaint(burst_of(7)), HasSubstr("at least 8"));

  Burst moved = burst_of(9);
  Nv21Frame shifted = noisy(100);
  for (int y = 0; y < shifted.height; ++y) {
    uint8_t* row = shifted.y() + ptrdiff_t{y} * shifted.width;
    std::copy_backward(row, row + shifted.width - 12, row + shifted.width);
  }
  moved.add("shifted", shifted);
  EXPECT_THAT(complaint(moved), testing::AllOf(HasSubstr("shifted"), HasSubstr("moved")));

  Burst brighter = burst_of(9);
  Nv21Frame light = noisy(100);
  for (size_t i = 0; i < light.luma_bytes(); ++i)
    light.data[i] = static_cast<uint8_t>(std::min(255, light.data[i] + 2));
  brighter.add("light", light);
  EXPECT_THAT(complaint(brighter), HasSubstr("light: is brighter"));

  Burst repeated = burst_of(9);
  repeated.add("again", noisy(8));
  EXPECT_THAT(complaint(repeated), HasSubstr("again: is the same frame as f8"));

  Burst dark;
  const RgbImage black(192, 160);
  for (size_t i = 0; i < 9; ++i) {
    dark.add("f", rgb_to_nv21(add_camera_noise(black, {64, 7, i}), {}));
  }
  EXPECT_THAT(complaint(dark), HasSubstr("black or white to the limit"));
}

}  // namespace
