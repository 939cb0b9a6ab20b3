#include <algorithm>

#include "filters/box_filter.h"
#include "tests/kernels/kernel_list.h"

namespace {

enum : size_t { kSource, kLow, kHigh };

// Rows of the smooth plane that a frame needs.
constexpr int kLowStep = 16;

int tab_bit(const KernelData& data) { return (data.variant + 4) % 8; }

// Which row is read for `row` of a strip. The mirrors are the strip's first and last row.
int mirrored(const KernelData& data, KernelStrip strip, int row) {
  for (int images = 0; row < 0 || row >= data.size.height; ++images) {
    if (strip.first == strip.end - 1 && images == 1) return strip.first;
    row = row < 0 ? 2 * strip.first - row : 2 * (strip.end - 1) - row;
  }
  return row;
}

box_filter_job describe_strip(KernelData& data, KernelStrip strip,
                              const boxfiltering_tuning* tuning) {
  box_filter_job job{};
  job.width = job.stride = data.size.width;
  job.row_limit = data.size.height;
  job.row_first = strip.first;
  job.row_end = strip.end;
  job.src = data.bytes(kSource);
  job.low = data.bytes(kLow);
  job.high = data.bytes(kHigh);
  job.tuning = tuning;
  return job;
}

void filter_plainly(KernelData& data, KernelStrip strip, int low_step) {
  const int radius = ((1 << tab_bit(data)) - 1) / 2;
  const int width = data.size.width;
  const uint8_t* src = data.bytes(kSource);
  for (int y = strip.first; y < strip.end; ++y) {
    for (int x = 0; x < width; ++x) {
      const int sample = src[y * width + x];
      int sum = sample;
      for (int i = y - radius; i <= y + radius; ++i) {
        sum += src[mirrored(data, strip, i) * width + x];
      }
      const int low = std::min((sum + radius + 1) >> tab_bit(data), 255);
      if (y % low_step == 0) data.bytes(kLow)[y * width + x] = static_cast<uint8_t>(low);
      data.bytes(kHigh)[y * width + x] =
          static_cast<uint8_t>(std::clamp(sample - low + 128, 0, 255));
    }
  }
}

}  // namespace

void make_box_filter(KernelData& data) {
  data.add_input(data.size.height, data.size.width);
  data.add_output(data.size.height, data.size.width);
  data.add_output(data.size.height, data.size.width);
}

void run_box_filter(KernelData& data, KernelStrip strip) {
  const boxfiltering_tuning tuning{tab_bit(data)};
  box_filter_job job = describe_strip(data, strip, &tuning);
  box_filter_col(&job);
}

void plain_box_filter(KernelData& data, KernelStrip strip) { filter_plainly(data, strip, 1); }

void make_box_filter_frame(KernelData& data) { make_box_filter(data); }

void run_box_filter_frame(KernelData& data, KernelStrip strip) {
  const boxfiltering_tuning tuning{tab_bit(data)};
  box_filter_strip room = box_strip(describe_strip(data, strip, &tuning));
  room.low_step = kLowStep;
  filter_strip(room);
}

void plain_box_filter_frame(KernelData& data, KernelStrip strip) {
  filter_plainly(data, strip, kLowStep);
}
