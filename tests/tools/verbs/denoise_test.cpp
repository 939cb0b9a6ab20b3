#include "tools/verbs/denoise.h"

#include <gmock/gmock.h>
#include <stdlib.h>

#include "tests/tools/run_command.h"
#include "tests/tools/test_pictures.h"
#include "tools/files/failure.h"
#include "tools/pictures/colour.h"
#include "tools/pictures/noise_model.h"
#include "tools/verbs/denoise_summary.h"

namespace {

using testing::HasSubstr;
using testing::Not;
using tool::DenoiseOptions;
using tool::LibraryCalls;
using tool::Nv21Frame;
using tool::Size;
using Source = tool::NoiseIndexRequest::Source;

// A library that does what a test says and notes how it is called.
struct FakeLibrary {
  int width = 0;
  int height = 0;
  unsigned sensor = 0;
  std::string tuning;
  int frames = 0;
  int deinits = 0;
  int noise_index = 0;
  bool planes_touch = false;
  vorel_status open_status = VOREL_DONE;
  vorel_status frame_status = VOREL_DONE;
} fake;

vorel* fake_open(const vorel_options* options, vorel_status* status) {
  fake.width = options->width;
  fake.height = options->height;
  fake.sensor = options->sensor_id;
  fake.tuning.assign(options->tuning_text, options->tuning_text_bytes);
  *status = fake.open_status;
  return fake.open_status < 0 ? nullptr : reinterpret_cast<vorel*>(&fake);
}

// Adds 1 to luma and 2 to chroma.
vorel_status fake_denoise(vorel*, const vorel_frame* frame, vorel_frame_info* info) {
  ++fake.frames;
  fake.noise_index = frame->noise_index;
  const auto width = static_cast<size_t>(frame->width);
  const auto height = static_cast<size_t>(frame->height);
  fake.planes_touch = frame->luma + width * height == frame->chroma;
  info->status = fake.frame_status;
  info->enable_noise_index = 400;
  if (fake.frame_status != VOREL_DONE) return fake.frame_status;
  for (size_t i = 0; i < width * height; ++i) ++frame->luma[i];
  const size_t chroma = (width + 1) / 2 * 2 * ((height + 1) / 2);
  for (size_t i = 0; i < chroma; ++i) frame->chroma[i] = static_cast<uint8_t>(frame->chroma[i] + 2);
  return VOREL_DONE;
}

vorel_status fake_info(const vorel*, vorel_handle_info*) { return VOREL_DONE; }
int fake_deinit(vorel*) { return ++fake.deinits; }

class Denoise : public testing::Test {
 protected:
  Denoise() {
    fake = {};
    unsetenv("VOREL_FIRMWARE_DIR");
    options.quiet = true;
  }

  int run() {
    try {
      message.clear();
      options.inputs = {input};
      return tool::run_denoise(options, {fake_open, fake_denoise, fake_info, fake_deinit});
    } catch (const tool::Failure& failure) {
      message = failure.what();
      return failure.status();
    }
  }

  Nv21Frame result() { return std::get<Nv21Frame>(read(options.output).pixels); }
  static tool::Picture read(const std::string& path) { return tool::read_picture(path, {}); }

  TestDirectory directory;
  std::string input;
  DenoiseOptions options;
  std::string message;
};

TEST_F(Denoise, FrameGoesInAndComesOutInPlaceForBothFormats) {
  const Nv21Frame original = patterned_frame(32, 6);
  input = directory / "in_32x6.nv21";
  options.output = directory / "out_32x6.nv21";
  options.noise_index = {Source::kNumber, 700};
  save(input, original);
  for (const bool separate : {false, true}) {
    for (const int percent : {100, 50, 20}) {
      options.separate_planes = separate;
      options.noise_index.percent = percent;
      ASSERT_EQ(run(), tool::kDone) << message;
      const Nv21Frame denoised = result();
      const int chroma_change = percent / 50;
      for (size_t i = 0; i < original.data.size(); ++i) {
        ASSERT_EQ(denoised.data[i], original.data[i] + (i < 32 * 6 ? 1 : chroma_change)) << i;
      }
      EXPECT_EQ(fake.planes_touch, !separate);
      EXPECT_EQ(fake.noise_index, 700);
    }
  }
  EXPECT_EQ(fake.deinits, 6);
}

TEST_F(Denoise, EverySizeReachesTheLibraryAndComesBack) {
  for (const Size size : {Size{17, 5}, Size{1, 1}, Size{3, 1}}) {
    const Nv21Frame original = patterned_frame(size.width, size.height);
    const std::string name =
        std::to_string(size.width) + "x" + std::to_string(size.height) + ".nv21";
    input = directory / ("in_" + name);
    options.output = directory / ("out_" + name);
    save(input, original);
    ASSERT_EQ(run(), tool::kDone) << message;
    EXPECT_EQ(fake.width, std::max(size.width, 2)) << "the least that the library takes";
    EXPECT_EQ(fake.height, std::max(size.height, 2));
    const Nv21Frame denoised = result();
    ASSERT_EQ(denoised.data.size(), original.data.size());
    for (size_t i = 0; i < original.data.size(); ++i) {
      ASSERT_EQ(denoised.data[i], original.data[i] + (i < original.luma_bytes() ? 1 : 2)) << i;
    }
  }
}

TEST_F(Denoise, EveryFrameOfAVideoIsProcessed) {
  input = directory / "in.y4m";
  options.output = directory / "out.y4m";
  const auto output = tool::PictureOutput::open(input);
  tool::Picture picture{patterned_frame(16, 4), {}};
  picture.metadata.y4m_tags = "W16 H4 F24:1 C420mpeg2 XCOLORRANGE=LIMITED";
  for (int i = 0; i < 3; ++i) output->write(picture);
  output->finish();
  ASSERT_EQ(run(), tool::kDone) << message;
  EXPECT_EQ(fake.frames, 3);
  EXPECT_EQ(fake.deinits, 1);
  EXPECT_THAT(read_text(options.output),
              testing::StartsWith("YUV4MPEG2 W16 H4 F24:1 C420mpeg2 XCOLORRANGE=LIMITED\n"));
  const auto written = tool::PictureInput::open(options.output, {});
  for (int i = 0; i < 3; ++i) {
    const Nv21Frame frame = std::get<Nv21Frame>(written->next()->pixels);
    EXPECT_EQ(frame.data[0], patterned_frame(16, 4).data[0] + 1) << "no conversion on the way";
  }
  options.output = directory / "out.png";
  EXPECT_EQ(run(), tool::kBadUsage) << "three frames do not fit into one picture";
  EXPECT_THAT(directory.names(), Not(testing::Contains("out.png")));
}

TEST_F(Denoise, RgbPicturesComeBackWithinTheConversion) {
  const tool::RgbImage image = gradient_picture(48, 32);
  input = directory / "in.png";
  options.output = directory / "out.png";
  options.compare = directory / "side.png";
  save(input, image);
  ASSERT_EQ(run(), tool::kDone) << message;
  const tool::RgbImage denoised = std::get<tool::RgbImage>(read(options.output).pixels);
  ASSERT_EQ(denoised.pixels.size(), image.pixels.size());
  EXPECT_NE(denoised.pixels, image.pixels);
  for (int x = 2; x < 20; ++x) EXPECT_NEAR(denoised.row(3)[3 * x], image.row(3)[3 * x], 8);
  EXPECT_EQ(read(*options.compare).size(), (Size{2 * 48 + 8, 32}));
}

TEST_F(Denoise, SkippedPicturesAreWrittenAsTheyCame) {
  const tool::RgbImage image = gradient_picture(48, 32);
  input = directory / "in.png";
  options.output = directory / "out.png";
  save(input, image);
  fake.frame_status = VOREL_BELOW_GATE;
  ASSERT_EQ(run(), tool::kDone) << message;
  EXPECT_EQ(std::get<tool::RgbImage>(read(options.output).pixels).pixels, image.pixels);
}

TEST_F(Denoise, LibraryThatDoesNotStartOrProcessFailsTheRun) {
  input = directory / "in_16x4.nv21";
  options.output = directory / "out_16x4.nv21";
  save(input, patterned_frame(16, 4));
  fake.open_status = VOREL_NO_PROCESSOR;
  EXPECT_EQ(run(), tool::kFailed);
  EXPECT_THAT(message, HasSubstr(vorel_status_text(VOREL_NO_PROCESSOR)));
  EXPECT_EQ(fake.deinits, 0);
  for (const vorel_status status : {VOREL_STAGE_SKIPPED, VOREL_NO_MEMORY}) {
    fake = {};
    fake.frame_status = status;
    EXPECT_EQ(run(), tool::kFailed);
    EXPECT_THAT(message, HasSubstr(vorel_status_text(status)));
    EXPECT_EQ(fake.deinits, 1);
    EXPECT_THAT(directory.names(), testing::ElementsAre("in_16x4.nv21"));
  }
}

TEST_F(Denoise, TruthMustHaveThePicturesSize) {
  input = directory / "in_16x4.nv21";
  options.output = directory / "out_16x4.nv21";
  options.truth = directory / "truth.png";
  save(input, patterned_frame(16, 4));
  save(*options.truth, gradient_picture(16, 6));
  EXPECT_EQ(run(), tool::kBadInput);
  EXPECT_THAT(message, HasSubstr("is 16 x 6, but"));
}

TEST_F(Denoise, TuningFileReachesTheLibraryAsItIs) {
  input = directory / "in_16x4.nv21";
  options.output = directory / "out_16x4.nv21";
  options.tuning.sensor = 120;
  options.tuning.name = directory / "my tuning.txt";
  save(input, patterned_frame(16, 4));
  const std::string text = R"([{"CNRTuningSetfile":{"Date":"x"},"enable":1}] rest)";
  write_text(*options.tuning.name, text);
  ASSERT_EQ(run(), tool::kDone) << message;
  EXPECT_EQ(fake.sensor, 120u);
  EXPECT_EQ(fake.tuning, text);
}

TEST_F(Denoise, NoiseIndexComesFromWhereItIsSaidToCome) {
  // A little-endian TIFF structure whose Exif directory says ISO 6400.
  const std::vector<uint8_t> iso{'I', 'I', 42, 0,  8, 0, 0, 0,  1, 0, 0x69, 0x87, 4, 0,    1,
                                 0,   0,   0,  26, 0, 0, 0, 0,  0, 0, 0,    1,    0, 0x27, 0x88,
                                 3,   0,   1,  0,  0, 0, 0, 25, 0, 0, 0,    0,    0, 0};
  input = directory / "in.jpg";
  options.output = directory / "out.jpg";
  const tool::RgbImage clean = gradient_picture(320, 256);
  const auto index = [&](tool::NoiseIndexRequest request, const std::vector<uint8_t>& exif,
                         int gain) {
    const auto output = tool::PictureOutput::open(input);
    output->write({tool::add_camera_noise(clean, {gain, 1, 0}), {exif, {}, {}}});
    output->finish();
    options.noise_index = request;
    return run() == tool::kDone ? fake.noise_index : -1;
  };
  EXPECT_EQ(index({Source::kNumber, 700}, iso, 16), 700);
  EXPECT_EQ(index({Source::kExif, 0}, iso, 16), 6400);
  EXPECT_EQ(index({Source::kExif, 0}, {}, 16), -1);
  EXPECT_THAT(message, HasSubstr("in.jpg: has no ISO sensitivity"));
  const int estimated = index({}, iso, 16);
  EXPECT_GT(estimated, 800);
  EXPECT_LT(estimated, 3200);
  EXPECT_LT(index({}, iso, 4), estimated);
  // The tuning's own calibration counts.
  options.tuning.name = directory / "t.json";
  write_text(*options.tuning.name, R"([{"CNRTuningSetfile": {"Date": "d"},
    "noiseIndex_values": [7, 8], "chromaNoise_values": [0.01, 0.02]}])");
  EXPECT_EQ(index({}, iso, 16), 8);
}

TEST(NoiseIndexChoice, SaysWhereTheNumberComesFrom) {
  const Nv21Frame small = patterned_frame(16, 4);
  tool::NoiseIndexChoice choice({}, "a.y4m", {}, {});
  EXPECT_EQ(choice.next({small, {}}, small), tool::Strength{});
  EXPECT_THAT(choice.text(), HasSubstr("0 (too little"));
  tool::NoiseIndexChoice number({Source::kNumber, 300}, "a.y4m", {}, {});
  EXPECT_EQ(number.next({small, {}}, small), tool::Strength{300});
  EXPECT_EQ(number.text(), "300");
  tool::NoiseIndexChoice part({Source::kNumber, 300, 40}, "a.y4m", {}, {});
  EXPECT_EQ(part.next({small, {}}, small), (tool::Strength{300, 40}));
  EXPECT_EQ(part.text(), "300 at 40 %");
}

TEST(DenoiseSummaryText, SaysWhatHappened) {
  tool::DenoiseSummary summary;
  summary.input = "a.png";
  summary.output = "b.png";
  summary.tuning = "my.json";
  summary.tuning_date = "dated 2026-01-02";
  summary.sensor = "0 (NOTHING)";
  summary.noise_index_text = "1600 (estimated)";
  summary.size = {17, 5};
  summary.frames = 2;
  summary.milliseconds = 25;
  Nv21Frame before = patterned_frame(16, 4);
  Nv21Frame after = before;
  after.vu()[0] = static_cast<uint8_t>(after.vu()[0] + 32);
  summary.change.add(before, after);
  const std::string text = tool::summary_text(summary);
  EXPECT_THAT(text, HasSubstr("a.png -> b.png\n"));
  EXPECT_THAT(text, HasSubstr("my.json, dated 2026-01-02"));
  EXPECT_THAT(text, HasSubstr("noise index  1600 (estimated)\n"));
  EXPECT_THAT(text, HasSubstr("size         17 x 5\n"));
  EXPECT_THAT(text, HasSubstr("12.5 ms per frame, 2 frames"));
  EXPECT_THAT(text, HasSubstr("chroma 3.1 % of samples, mean change 1.00; luma unchanged"));
}

TEST(DenoiseSummaryText, NothingIsSaidToBeNothing) {
  tool::DenoiseSummary summary;
  summary.strength.noise_index = 100;
  summary.size = {16, 4};
  summary.frames = 1;
  EXPECT_THAT(tool::summary_text(summary), HasSubstr("nothing: this tuning leaves every sample"));
  summary.skipped_frames = 1;
  summary.enable_noise_index = 400;
  EXPECT_THAT(tool::summary_text(summary),
              HasSubstr("nothing: noise index 100 is below the tuning's enableNoiseIndex 400"));
}

}  // namespace
