#include "filters/box_filter.h"
#include "tests/kernels/kernel_list.h"
#include "tests/kernels/plain_box_filter.h"

namespace {

enum : size_t { kSource, kLow, kHigh };

// Rows of the smooth plane that a frame needs.
constexpr int kLowStep = 16;

int tab_bit(const KernelData& data) { return (data.variant + 4) % 8; }

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
  const PlainBoxFilter plain{data.bytes(kSource), data.size.width, data.size.height,
                             tab_bit(data),       strip.first,     strip.end};
  plain.filter(data.bytes(kLow), data.bytes(kHigh), low_step);
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
