#include "core/stages.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <memory>
#include <numeric>

#include "core/run_thread.h"
#include "tests/core/handle_fixture.h"

namespace {

// A record with every plane in place and no pool.
class Record {
 public:
  Record(int width, int height, uint32_t format = VOREL_FMT_NM21) : frame_(width, height) {
    handle_ = vorel_init(width, height, 0, 0);
    run_ = std::make_unique<vorel_thread>();
    std::memset(static_cast<void*>(run_.get()), 0, sizeof(vorel_thread));
    handle_->tuning.enableNoiseIndex = 0;
    static_cast<frame_planes&>(*run_) = *handle_;
    run_->format = format;
    run_->tuning = &handle_->tuning;
    run_->in_address_1 = run_->out_address_1 = run_->y_source = frame_.y.data();
    run_->in_address_2 = run_->out_address_2 = frame_.uv.data();
    for (box_filter_job& job : run_->box_jobs) {
      job.tuning = &handle_->tuning.boxfiltering_tuning;
    }
    for (interleave_job& job : run_->interleave_jobs) {
      job.tuning = &handle_->tuning.interleaving_tuning;
    }
  }
  ~Record() { vorel_deinit(handle_); }
  Record(const Record&) = delete;
  Record& operator=(const Record&) = delete;

  vorel_thread* get() { return run_.get(); }
  vorel_thread* operator->() { return run_.get(); }
  TestFrame& frame() { return frame_; }
  cnr_tuning& tuning() { return handle_->tuning; }

 private:
  TestFrame frame_;
  vorel* handle_;
  std::unique_ptr<vorel_thread> run_;
};

class StagesTest : public HandleTest {};

TEST_F(StagesTest, BoxStripsCoverTheHeight) {
  const struct {
    int height;
    int strip;
    int last;
  } cuts[] = {{1080, 16, 72}, {720, 11, 27}, {50, 0, 50}, {64, 1, 1}, {2, 0, 2}};
  for (const auto& cut : cuts) {
    Record run(48, cut.height);
    fill_box_filter_jobs(run.get());
    int row = 0;
    for (int i = 0; i < kBoxFilterJobs; ++i) {
      const box_filter_job& job = run->box_jobs[i];
      EXPECT_EQ(job.row_first, i + 1 < 64 ? row : 63 * cut.strip);
      EXPECT_EQ(job.row_end - job.row_first, i + 1 < 64 ? cut.strip : cut.last);
      EXPECT_EQ(job.row_limit, cut.height);
      EXPECT_EQ(job.width, 48);
      EXPECT_EQ(job.stride, 48);
      row = job.row_end;
    }
    EXPECT_EQ(row, cut.height);
  }
  Record packed(48, 50, VOREL_FMT_YUYV);
  fill_box_filter_jobs(packed.get());
  EXPECT_EQ(packed->box_jobs[0].row_limit, 64);
}

TEST_F(StagesTest, InterleaveStripsPointIntoThePlanes) {
  Record run(48, 1080);
  run.tuning().mfd_uv_tuning.enable = 1;
  std::vector<_Float16> half(2 * (24 + 64) * (540 + 64));
  run->mfd_u = half.data();
  run->mfd_v = half.data() + half.size() / 2;
  run->mfd_width = 24 + 64;
  fill_interleave_jobs(run.get());
  const interleave_job& second = run->interleave_jobs[1];
  EXPECT_EQ(second.rows, 16);
  EXPECT_EQ(second.y_low - run->y_low, 16 * 48);
  EXPECT_EQ(second.y_out - run->out_address_1, 16 * 48);
  EXPECT_EQ(second.upsampled_v - run->upsampled_v, 8 * 24);
  EXPECT_EQ(second.uv_in - run->in_address_2, 8 * 48);
  EXPECT_EQ(second.mfd_u - run->mfd_u, (32 + 8) * 88 + 32);
  EXPECT_EQ(second.uv_out, nullptr);
  EXPECT_EQ(run->interleave_jobs[63].rows, 72);

  // With a zero threshold the restore step writes nothing, so chroma stays in the frame.
  for (int32_t interleaving_tuning::* threshold :
       {&interleaving_tuning::d_UV_thresh, &interleaving_tuning::d_Y_upper_thresh}) {
    const int32_t kept = run.tuning().interleaving_tuning.*threshold;
    run.tuning().interleaving_tuning.*threshold = 0;
    fill_interleave_jobs(run.get());
    EXPECT_EQ(run->interleave_jobs[1].uv_out - run->out_address_2, 8 * 48);
    run.tuning().interleaving_tuning.*threshold = kept;
  }

  Record low(48, 720);
  fill_interleave_jobs(low.get());
  EXPECT_EQ(low->interleave_jobs[62].rows, 0);
  EXPECT_EQ(low->interleave_jobs[63].rows, 720);
  EXPECT_EQ(low->interleave_jobs[63].y_low, low->y_low);

  Record packed(48, 1080, VOREL_FMT_YUY2);
  std::vector<uint8_t> frame(48 * 1080 * 2);
  packed->packed_out = frame.data();
  fill_interleave_jobs(packed.get());
  EXPECT_EQ(packed->interleave_jobs[2].packed - frame.data(), 32 * 48 * 2);
  EXPECT_EQ(packed->interleave_jobs[2].upsampled_u - packed->upsampled_u, 32 * 24);
}

TEST_F(StagesTest, PackedFramesLumaGoesToItsPlane) {
  constexpr int kWidth = 48;
  constexpr int kHeight = 50;
  Record run(kWidth, kHeight, VOREL_FMT_YUYV);
  std::vector<uint8_t> packed(2 * kWidth * 64);
  std::iota(packed.begin(), packed.end(), 0);
  std::vector<uint8_t> luma(kWidth * 64);
  run->in_address_1 = packed.data();
  run->y_source = luma.data();
  EXPECT_EQ(vorel_deinterleave(run.get()), 0);
  for (size_t i = 0; i < kWidth * kHeight; ++i) ASSERT_EQ(luma[i], packed[2 * i]) << i;
}

TEST_F(StagesTest, UnknownFormatFails) {
  Record run(48, 48, 0x30313233);
  EXPECT_EQ(vorel_deinterleave(run.get()), -1);
  EXPECT_EQ(log_.count("vorel_run, Not supported format"), 1);
  EXPECT_EQ(vorel_interleave(run.get()), -1);
  EXPECT_EQ(log_.count("vorel_interleave, Not supported format"), 1);
  vorel_u_job(run.get());
  EXPECT_EQ(log_.count("vorel_u, Not supported format"), 1);
  restore_strip job{};
  job.format = 0x30313233;
  vorel_interleave_thread_func(&job);
  EXPECT_EQ(log_.count("vorel_interleave_thread_func, Not supported format"), 1);
}

// A stage that fails ends the frame.
TEST_F(StagesTest, FailedStageEndsTheFrame) {
  Record run(48, 48, 0x30313233);
  frame_pool none{};
  none.starter_joined = 1;
  run->pool = &none;
  log_.clear();
  EXPECT_EQ(vorel_run_thread(run.get()), run.get());
  EXPECT_EQ(log_.texts(),
            (std::vector<std::string>{"vorel_deinterleave", "vorel_run, Not supported format",
                                      "vorel_deinterleave is fail.. ret = -1"}));
}

TEST_F(StagesTest, WithoutWorkersThePixelsStay) {
  Record run(48, 100);
  run.tuning().mfd_uv_tuning.enable = 0;
  const std::vector<uint8_t> before = run.frame().bytes();
  EXPECT_EQ(vorel_deinterleave(run.get()), 0);
  EXPECT_EQ(vorel_box_filter(run.get()), 0);
  EXPECT_EQ(vorel_yuv(run.get()), 0);
  EXPECT_EQ(vorel_interleave(run.get()), 0);
  EXPECT_EQ(run.frame().bytes(), before);
  for (const char* name :
       {"vorel_deinterleave", "vorel_box_filter", "vorel_yuv", "vorel_interleave"}) {
    EXPECT_EQ(log_.count(name), 1);
  }
}

TEST_F(StagesTest, LumaIsSampledAtBlockCorners) {
  Record run(48, 50);
  for (int row = 0; row < 64; ++row) {
    for (int col = 0; col < 48; ++col)
      run->y_low[row * 48 + col] = static_cast<uint8_t>(row * 3 + col);
  }
  y_low_downsample(run.get());
  const std::vector<uint8_t> expected{0, 16, 32, 48, 64, 80, 96, 112, 128, 144, 160, 176};
  EXPECT_EQ(std::vector<uint8_t>(run->downsampled_y, run->downsampled_y + 12), expected);
}

// The whole spatial path from kernels called once for the whole plane (the box filter in its
// strips), and from the strips in any order, against what vorel_run makes of the same frame.
TEST_F(StagesTest, StripsInAnyOrderGiveTheFrame) {
  use_tuning(kSpatialOnly);
  for (const auto& [width, height] :
       {std::pair(80, 2050), std::pair(48, 1025), std::pair(64, 100)}) {
    SCOPED_TRACE(std::to_string(width) + "x" + std::to_string(height));
    TestFrame expected(width, height);
    vorel* handle = open(width, height);
    HandleTest::run(handle, &expected);
    vorel_deinit(handle);

    std::mt19937 random(7);
    for (bool whole : {true, false}) {
      Record run(width, height);
      run.tuning().mfd_uv_tuning.enable = 0;
      run->whole_planes = whole;
      vorel_deinterleave(run.get());
      fill_box_filter_jobs(run.get());
      std::vector<int> order(64);
      std::iota(order.begin(), order.end(), 0);
      std::shuffle(order.begin(), order.end(), random);
      for (int i : order) box_filter_col(&run->box_jobs[i]);
      y_low_downsample(run.get());
      vorel_v_job(run.get());
      vorel_u_job(run.get());
      vorel_y_job(run.get());
      if (whole) {
        restore_interleave_yuv420_neon(run->in_address_1, run->in_address_2, run->y_low,
                                       run->y_high, run->upsampled_u, run->upsampled_v, width,
                                       height, run->out_address_1, run->out_address_2,
                                       &run.tuning().interleaving_tuning);
      } else {
        fill_interleave_jobs(run.get());
        for (int i : order) vorel_interleave_thread_func(&run->interleave_jobs[i]);
      }
      EXPECT_EQ(run.frame().bytes(), expected.bytes());
    }
  }
}

// What the dumps hold: the spatial path's planes as its kernels leave them, and the wavelet stage's
// input without its border, which is what the spatial path has restored or, alone, the frame.
TEST_F(StagesTest, DumpsHoldThePlanesTheyAreNamedAfter) {
  constexpr int kWidth = 128;
  constexpr int kHeight = 72;
  constexpr size_t kHalf = 128 * 100;  // 64 x 36 with its border
  const ScopedEnv level(kDebugVariable, "5");
  for (const std::string& paths : {kBothPaths, kWaveletOnly}) {
    const TempDir dumps;
    const ScopedEnv dump_variable("VOREL_DUMP_DIR", dumps.path().c_str());
    use_tuning(paths);
    const TestFrame original(kWidth, kHeight);
    TestFrame frame(kWidth, kHeight);
    vorel* handle = open(kWidth, kHeight);
    const std::filesystem::path folder = handle->dump_path;
    HandleTest::run(handle, &frame);
    vorel_deinit(handle);

    Record run(kWidth, kHeight);
    run->whole_planes = true;
    std::vector<_Float16> half(2 * kHalf);
    run->mfd_u = half.data();
    run->mfd_v = half.data() + kHalf;
    run->mfd_width = 128;
    std::map<std::string, std::pair<const uint8_t*, size_t>> planes{
        {"MFD_UV_128_36.raw", {frame.uv.data(), 128 * 36}}};
    if (paths == kWaveletOnly) {
      planes["VOREL_UV_128_36.raw"] = {run->in_address_2, 128 * 36};
      for (size_t i = 0; i < 128 * 36; ++i) {
        const size_t at = (32 + i / 128) * 128 + 32 + i % 128 / 2;
        (i % 2 == 0 ? run->mfd_u : run->mfd_v)[at] = run->in_address_2[i];
      }
    } else {
      vorel_deinterleave(run.get());
      fill_box_filter_jobs(run.get());
      for (box_filter_job& job : run->box_jobs) box_filter_col(&job);
      y_low_downsample(run.get());
      for (auto* job : {vorel_y_job, vorel_u_job, vorel_v_job}) job(run.get());
      planes["d_U_8_5.raw"] = {run->downsampled_u, 40};
      planes["d_V_8_5.raw"] = {run->downsampled_v, 40};
      planes["d_Y_low_8_5.raw"] = {run->downsampled_y, 40};
      planes["Y_high_128_80.raw"] = {run->y_high, 128 * 72};  // rows below are nobody's
      planes["f_Y_low_8_5.raw"] = {run->filtered_y, 40};
      planes["f_U_8_5.raw"] = {run->filtered_u, 40};
      planes["f_V_8_5.raw"] = {run->filtered_v, 40};
      planes["u_Y_low_128_80.raw"] = {run->y_low, 128 * 80};
      planes["u_U_64_40.raw"] = {run->upsampled_u, 64 * 40};
      planes["u_V_64_40.raw"] = {run->upsampled_v, 64 * 40};
      planes["Y_128_72.raw"] = {original.y.data(), 128 * 72};
      fill_interleave_jobs(run.get());
      for (restore_strip& job : run->interleave_jobs) vorel_interleave_thread_func(&job);
    }
    for (const auto& [name, plane] : planes) {
      const std::string bytes = read_file(folder / name);
      ASSERT_GE(bytes.size(), std::max<size_t>(plane.second, 1)) << name;
      EXPECT_EQ(std::memcmp(bytes.data(), plane.first, plane.second), 0) << name;
    }
    for (const auto& [name, plane] :
         {std::pair("p_U_128_100.raw", run->mfd_u), std::pair("p_V_128_100.raw", run->mfd_v)}) {
      const std::string bytes = read_file(folder / name);
      ASSERT_EQ(bytes.size(), kHalf * sizeof(_Float16)) << name;
      for (size_t row = 32; row < 32 + 36; ++row) {
        const size_t at = row * 128 + 32;
        EXPECT_EQ(std::memcmp(bytes.data() + at * sizeof(_Float16), plane + at, 64 * 2), 0) << name;
      }
    }
  }
}

}  // namespace
