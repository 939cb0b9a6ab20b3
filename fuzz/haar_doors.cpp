#include "fuzz/doors.h"
#include "tests/wavelet/plain_haar.h"
#include "vorel/wavelet/denoise.h"

namespace {

Plane any_plane(FuzzedDataProvider& input, int width, int height) {
  Plane plane(width, height);
  plane.fill(any_halves(input, plane.size()));
  return plane;
}

void require_plane(const char* what, const Plane& actual, const Plane& expected) {
  require_same(what, actual.data(), expected.data(), expected.size());
}

// The object for a pass, at debug level 1 now and then.
struct Haar : HaarTransform {
  Haar(FuzzedDataProvider& input, int width, int height) {
    if (!setup(width, height, input.ConsumeIntegralInRange(0, 7) == 0 ? 1 : 0, nullptr)) {
      std::abort();
    }
  }
  ~Haar() { deallocate(); }
};

struct BandSet {
  BandSet(int width, int height) {
    for (buffer& record : records) {
      planes.emplace_back(width, height).fill(0);
      record = planes.back().record();
    }
  }
  std::vector<Plane> planes;
  buffer records[7];
};

void split(FuzzedDataProvider& input, Haar& haar, int width, int height) {
  const PlainSplit& pass = kSplits[input.ConsumeIntegralInRange<size_t>(0, std::size(kSplits) - 1)];
  Plane src = any_plane(input, width, height);
  Plane lo(width, height), hi(width, height), plain_lo(width, height), plain_hi(width, height);
  (haar.*pass.method)(src.data(), lo.data(), hi.data(), width, height);
  split_plainly(pass, src, plain_lo, plain_hi);
  require_plane(pass.name, lo, plain_lo);
  require_plane(pass.name, hi, plain_hi);
}

void join(FuzzedDataProvider& input, Haar& haar, int width, int height) {
  const PlainJoin& pass = kJoins[input.ConsumeIntegralInRange<size_t>(0, std::size(kJoins) - 1)];
  Plane lo = any_plane(input, width, height), hi = any_plane(input, width, height);
  Plane out(width, height), plain(width, height);
  (haar.*pass.method)(lo.data(), hi.data(), out.data(), width, height);
  join_plainly(pass, lo, hi, plain);
  require_plane(pass.name, out, plain);
}

// Rows of another length than the output's.
void join_pitched(FuzzedDataProvider& input, Haar& haar, int width, int height) {
  const bool columns = input.ConsumeBool();
  const int gap = input.ConsumeIntegralInRange(0, columns ? 5 : std::min(5, width - 1));
  const int pitch = columns ? width + gap : width - gap;
  Plane lo = any_plane(input, pitch, height + 6), hi = any_plane(input, pitch, height + 6);
  Plane dense_lo(width, height), dense_hi(width, height), out(width, height), plain(width, height);
  for (int y = 0; y < height; ++y) {
    std::copy_n(lo.data() + y * pitch, width, dense_lo.data() + y * width);
    std::copy_n(hi.data() + y * pitch, width, dense_hi.data() + y * width);
  }
  join_plainly(kJoins[columns ? 1 : 0], dense_lo, dense_hi, plain);
  // One row stays as it was.
  std::fill_n(plain.data() + (columns ? (height - 1) * width : 0), width, _Float16{7});
  if (columns) {
    haar.iwtVertPitch(lo.data(), hi.data(), out.data(), width, height, gap);
  } else {
    haar.iwtPitch(lo.data(), hi.data(), out.data(), width, height, gap);
  }
  require_plane("pitched join", out, plain);
}

void join_high_and_add(FuzzedDataProvider& input, Haar& haar, int width, int height) {
  Plane high = any_plane(input, width, height), other = any_plane(input, width, height);
  Plane out(width, height), plain(width, height), sum(width, height);
  const PlainJoin pass = {"", nullptr, true, {{true, 0, -kL}, {true, -1, kL}}, false, 0.5, 0, 0, 1};
  haar.iwtVertDirSingle(high.data(), out.data(), width, height);
  join_plainly(pass, other, high, plain);
  require_plane("iwtVertDirSingle", out, plain);
  haar.SubbandsSum2SubBands(high.data(), other.data(), sum.data(), width, height);
  for (int i = 0; i < width * height; ++i) {
    const _Float16 expected =
        i < width ? PlainHalf(7.0) : PlainHalf(high.data()[i]) + PlainHalf(other.data()[i]);
    require_same("SubbandsSum2SubBands", sum.data() + i, &expected, 1);
  }
}

// Bytes give what the same numbers give, in each pass and in the whole decomposition.
void split_bytes(FuzzedDataProvider& input, Haar& haar, int width, int height) {
  Plane numbers(width, height);
  std::vector<uint8_t> bytes = any_bytes(input, numbers.size());
  std::copy(bytes.begin(), bytes.end(), numbers.data());
  Plane lo(width, height), hi(width, height), byte_lo(width, height), byte_hi(width, height);
  const bool level1 = input.ConsumeBool();
  if (level1) {
    haar.fwt(numbers.data(), lo.data(), hi.data(), width, height);
    haar.fwtFirstStep(bytes.data(), byte_lo.data(), byte_hi.data(), width, height);
  } else {
    haar.fwtL2Dir(numbers.data(), lo.data(), hi.data(), width, height);
    haar.fwtL2DirPixel(bytes.data(), byte_lo.data(), byte_hi.data(), width, height);
  }
  require_plane("low band of bytes", byte_lo, lo);
  require_plane("high band of bytes", byte_hi, hi);
  BandSet bands(width, height), byte_bands(width, height);
  buffer record = numbers.record();
  const auto cols = static_cast<unsigned>(width), rows = static_cast<unsigned>(height);
  haar.forwardUnHaarRun(&record, bands.records, cols, rows, false, false);
  record.data = bytes.data();
  Haar(input, width, height).forwardUnHaarRun(&record, byte_bands.records, cols, rows, true, true);
  for (size_t i = 0; i < 7; ++i) require_plane("a band", byte_bands.planes[i], bands.planes[i]);
}

// A frame's walk over the low band and the passes over whole planes.
void denoise_low_band(FuzzedDataProvider& input, Haar& haar, int width, int height) {
  Plane band = any_plane(input, width, height), expected(width, height);
  std::copy_n(band.data(), band.size(), expected.data());
  const _Float16 thr = any_half(input), A = any_half(input), B = any_half(input);
  Denoise denoise;
  denoise.setup(width, height, width, height, input.ConsumeIntegralInRange(0, 7) == 0 ? 1 : 0,
                nullptr, nullptr);
  BandSet bands(width, height);
  buffer io = expected.record();
  const auto cols = static_cast<unsigned>(width), rows = static_cast<unsigned>(height);
  haar.forwardUnHaarRun(&io, bands.records, cols, rows, false, false);
  const _Float16 kHaar = half_of_bits(0x49D7), kHaarLow = half_of_bits(0x4FD7);
  for (size_t i = 0; i < 7; ++i) {
    denoise.shrinkage1(bands.planes[i].data(), thr, A, B, height, width, 8, 0,
                       i == 0 ? kHaarLow : kHaar);
  }
  haar.inverseUnHaarRunAllSubbands(bands.records, &io, cols, rows);
  io = band.record();
  std::vector<_Float16> memory(input.ConsumeIntegralInRange<size_t>(0, 2000), kNotANumber);
  buffer lent{};
  lent.data = memory.data();
  lent.height = 1;
  lent.width = static_cast<uint32_t>(memory.size() * sizeof(_Float16));
  denoise.haarL2Denoise(&io, memory.empty() ? nullptr : &lent, thr, A, B, nullptr);
  require_plane("haarL2Denoise", band, expected);
}

}  // namespace

void try_haar_doors(FuzzedDataProvider& input) {
  const int width = input.ConsumeIntegralInRange(1, 40);
  const int height = input.ConsumeIntegralInRange(1, 9);
  Haar haar(input, width, height);
  constexpr decltype(&split) kDoors[] = {
      split, join, join_pitched, join_high_and_add, split_bytes, denoise_low_band};
  input.PickValueInArray(kDoors)(input, haar, width, height);
}
