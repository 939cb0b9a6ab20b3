#include "fuzz/doors.h"
#include "tests/wavelet/plain_saturation.h"
#include "tests/wavelet/plain_shrinkage.h"
#include "vorel/wavelet/border_handler.h"
#include "vorel/wavelet/denoise.h"

namespace {

// A plane with a border; what lies outside the inner area is no number until it is filled.
struct Bordered {
  Bordered(FuzzedDataProvider& input, uint32_t kind) {
    record.kind = kind;
    record.padX = input.ConsumeIntegralInRange(0u, 9u);
    record.padY = input.ConsumeIntegralInRange(0u, 5u);
    record.innerWidth = input.ConsumeIntegralInRange(0u, 40u);
    record.innerHeight = input.ConsumeIntegralInRange(0u, 6u);
    record.width = record.padX + record.innerWidth + input.ConsumeIntegralInRange(0u, 9u);
    record.height = record.padY + record.innerHeight + input.ConsumeIntegralInRange(0u, 5u);
    samples.assign(size_t{record.width} * record.height, kNotANumber);
    record.data = samples.data();
  }
  Bordered(const Bordered& other) : record(other.record), samples(other.samples) {
    record.data = samples.data();
  }
  Bordered& operator=(const Bordered&) = delete;

  bool empty() const { return record.innerWidth == 0 || record.innerHeight == 0; }
  size_t inner(uint32_t row, uint32_t col) const {
    return size_t{record.padY + row} * record.width + record.padX + col;
  }
  void fill(const std::vector<_Float16>& values) {
    for (uint32_t i = 0; i < record.innerWidth * record.innerHeight; ++i) {
      samples[inner(i / record.innerWidth, i % record.innerWidth)] = values[i];
    }
  }

  buffer record{};
  std::vector<_Float16> samples;
};

uint32_t nearest(uint32_t at, uint32_t pad, uint32_t size) {
  return std::min(at > pad ? at - pad : 0, size - 1);
}

void pad(FuzzedDataProvider& input) {
  Bordered first(input, VOREL_PLANE_FIRST), second = first;
  const uint32_t width = first.record.innerWidth, height = first.record.innerHeight;
  const uint32_t pitch = 2 * width + 2 * input.ConsumeIntegralInRange(0u, 3u);
  std::vector<uint8_t> bytes = any_bytes(input, size_t{pitch} * height);
  buffer pairs{};
  pairs.data = bytes.data();
  pairs.width = pitch;
  pairs.height = height;
  const uint32_t cut = input.ConsumeIntegralInRange(0u, first.record.height);
  const bool copy = input.ConsumeBool();
  for (uint32_t i = 0; !copy && i < width * height; ++i) {
    const uint8_t* pair = bytes.data() + i / width * pitch + 2 * (i % width);
    first.samples[first.inner(i / width, i % width)] = pair[0];
    second.samples[second.inner(i / width, i % width)] = pair[1];
  }
  BorderHandler* border = BorderHandler::getInstance();
  for (const auto& [begin, end] : {std::pair{cut, first.record.height}, {0u, cut}}) {
    if (copy) {
      border->runCopyAndPad(&pairs, &first.record, &second.record, begin, end);
    } else {
      border->runPad(&first.record, &second.record, begin, end);
    }
  }
  for (uint32_t i = 0; i < first.samples.size(); ++i) {
    _Float16 expected[2] = {kNotANumber, kNotANumber};
    if (!first.empty()) {
      const uint32_t row = nearest(i / first.record.width, first.record.padY, height);
      const uint32_t col = nearest(i % first.record.width, first.record.padX, width);
      for (int k = 0; k < 2; ++k)
        expected[k] = bytes[row * pitch + 2 * col + static_cast<uint32_t>(k)];
    }
    require_same("first bordered plane", &first.samples[i], &expected[0], 1);
    require_same("second bordered plane", &second.samples[i], &expected[1], 1);
  }
  if (first.empty()) return;
  std::vector<_Float16> inner(size_t{width} * height);
  border->stripPad(first.samples.data(), inner.data(), static_cast<int>(first.record.width),
                   static_cast<int>(first.record.padX), static_cast<int>(first.record.padY),
                   static_cast<int>(width), static_cast<int>(height));
  for (uint32_t i = 0; i < inner.size(); ++i) {
    require_same("inner area", &inner[i], &first.samples[first.inner(i / width, i % width)], 1);
  }
}

void average(FuzzedDataProvider& input) {
  const int width = input.ConsumeIntegralInRange(0, 30);
  const int height = input.ConsumeIntegralInRange(0, 8);
  const size_t count = static_cast<size_t>(width) * static_cast<size_t>(height);
  std::vector<_Float16> in = any_halves(input, count), out(count, 7);
  buffer records[2] = {};
  for (buffer& record : records) {
    record.width = static_cast<uint32_t>(width);
    record.height = static_cast<uint32_t>(height);
  }
  records[0].data = in.data();
  records[1].data = out.data();
  boxFilter3x3(&records[0], &records[1], nullptr);
  for (int i = 0; i < width * height; ++i) {
    PlainHalf sum = 0.0;
    for (int k = 0; k < 9; ++k) {
      const int y = std::clamp(i / width + k / 3 - 1, 0, height - 1);
      const int x = std::clamp(i % width + k % 3 - 1, 0, width - 1);
      sum = sum + PlainHalf(in[static_cast<size_t>(y * width + x)]);
    }
    const _Float16 mean = sum * PlainHalf(1.0 / 9);
    require_same("boxFilter3x3", &out[static_cast<size_t>(i)], &mean, 1);
  }
}

void shrink(FuzzedDataProvider& input) {
  const int cols = input.ConsumeIntegralInRange(1, 40);
  const int rows = input.ConsumeIntegralInRange(1, 8);
  const int step = input.ConsumeIntegralInRange(1, 8);
  constexpr uint16_t kScales[] = {0x45D7, 0x49D7, 0x4FD7};
  const _Float16 thr = any_half(input), A = any_half(input), B = any_half(input);
  const _Float16 S =
      input.ConsumeBool() ? half_of_bits(input.PickValueInArray(kScales)) : any_half(input);
  std::vector<_Float16> data = any_halves(input, static_cast<size_t>(cols * rows));
  const std::vector<_Float16> expected = shrink_plainly(data, thr, A, B, rows, cols, step, S);
  Denoise denoise;
  shrinkage_job job = {&denoise, data.data(), thr, A, B, rows, cols, step, 0, S};
  shrkFunc(&job);
  require_same("shrinkage", data, expected);
  _Float16 multiplier = 0;
  denoise.radialNoiseEStimateChroma1(cols, rows, &multiplier, A, B, 20, 4);
  if (A == 0 && multiplier != 1) std::abort();
}

// Each subband by itself, in its level's steps.
void shrink_all(FuzzedDataProvider& input) {
  Denoise denoise;
  denoise.setup(1, 1, 1, 1);
  denoise.setup(1, 1, 1, 1, input.ConsumeIntegralInRange(0, 3) == 0 ? 1 : 0, nullptr, nullptr);
  const _Float16 A = any_half(input), B = any_half(input);
  std::vector<_Float16> bands[7], expected[7];
  buffer records[7] = {};
  _Float16 thr[16] = {};
  for (_Float16& threshold : thr) threshold = any_half(input);
  const uint32_t cols = input.ConsumeIntegralInRange(1u, 20u);
  const uint32_t rows = input.ConsumeIntegralInRange(1u, 8u);
  for (int i = 0; i < 7; ++i) {
    buffer& record = records[i];
    record.width = cols + input.ConsumeIntegralInRange(0u, 1u);
    record.height = rows + input.ConsumeIntegralInRange(0u, 1u);
    bands[i] = expected[i] = any_halves(input, size_t{record.width} * record.height);
    record.data = expected[i].data();
    if (i > 0) {
      denoise.shrinkage1(expected[i].data(), thr[i], A, B, static_cast<int>(record.height),
                         static_cast<int>(record.width), i < 4 ? 8 : 4, 0, half_of_bits(0x45D7));
    }
  }
  denoise.haarL2Denoise(&records[0], nullptr, thr[0] < 0 ? -thr[0] : thr[0], A, B, nullptr);
  for (int i = 0; i < 7; ++i) records[i].data = bands[i].data();
  denoise.denoiseChroma1And2HaarRun(records, nullptr, thr, A, B, nullptr);
  denoise.deallocate();
  for (int i = 0; i < 7; ++i) require_same("a denoised subband", bands[i], expected[i]);
}

void saturate(FuzzedDataProvider& input) {
  Bordered first(input, VOREL_PLANE_FIRST), second = first;
  const size_t count = size_t{first.record.innerWidth} * first.record.innerHeight;
  first.fill(any_halves(input, count));
  second.fill(any_halves(input, count));
  const _Float16 curve[] = {any_half(input), any_half(input), any_half(input), any_half(input)};
  const uint32_t pairs = input.ConsumeIntegralInRange(0u, first.record.innerWidth + 2);
  const uint32_t rows = input.ConsumeIntegralInRange(0u, first.record.innerHeight + 2);
  std::vector<uint8_t> bytes(size_t{pairs} * 2 * rows, 7), expected = bytes;
  buffer out{};
  out.data = bytes.data();
  out.width = 2 * pairs;
  out.height = rows;
  Denoise denoise;
  ThreadPool pool;  // without workers: the jobs run here
  denoise.setup(1, 1, 1, 1, input.ConsumeIntegralInRange(0, 3) == 0 ? 1 : 0, nullptr,
                input.ConsumeBool() ? &pool : nullptr);
  const int form = input.ConsumeIntegralInRange(0, 3);
  uint32_t begin = input.ConsumeIntegralInRange(0u, rows + 1);
  uint32_t end = input.ConsumeIntegralInRange(begin, rows + 2);
  const auto& [p1, p2, t1, t2] = curve;
  if (form == 0) {
    begin = 0;
    end = rows;
    denoise.applySaturation(&first.record, &second.record, &out, nullptr, p1, p2, t1, t2);
  } else if (form == 1) {
    denoise.applySaturation(&first.record, &second.record, &out, nullptr, p1, p2, t1, t2, begin,
                            end);
  } else if (form == 2) {
    denoise.applySaturationRegion(&first.record, &second.record, &out, nullptr, p1, p2, t1, t2,
                                  begin, end);
  } else {
    saturation_job job = {
        &denoise, &first.record, &second.record, &out, nullptr, p1, p2, t1, t2, begin, end};
    applySaturationRegionFunc(&job);
  }
  const Curve plain = {static_cast<float>(p1), static_cast<float>(p2), static_cast<float>(t1),
                       static_cast<float>(t2)};
  for (uint32_t row = begin; row < std::min({end, rows, first.record.innerHeight}); ++row) {
    for (uint32_t x = 0; x < std::min(pairs, first.record.innerWidth); ++x) {
      const size_t at = first.inner(row, x);
      const std::vector<uint8_t> pair =
          saturate_plainly(plain, {first.samples[at]}, {second.samples[at]});
      std::copy(pair.begin(), pair.end(), expected.begin() + size_t{row} * 2 * pairs + 2 * x);
    }
  }
  require_same("saturation", bytes, expected);
  const std::vector<_Float16> before = first.samples;
  denoise.AddPoint5(&first.record, &second.record, begin, end);
  for (size_t i = 0; i < before.size(); ++i) {
    const uint32_t row = static_cast<uint32_t>(i) / first.record.width;
    const bool raised = row >= begin && row < end;
    const _Float16 sum = raised ? PlainHalf(before[i]) + PlainHalf(0.5) : PlainHalf(before[i]);
    require_same("AddPoint5", &first.samples[i], &sum, 1);
  }
}

}  // namespace

void try_denoise_doors(FuzzedDataProvider& input) {
  constexpr decltype(&pad) kDoors[] = {pad, average, shrink, shrink_all, saturate};
  input.PickValueInArray(kDoors)(input);
}
