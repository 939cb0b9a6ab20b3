#include "tools/tune/chroma_bands.h"

#include <new>

#include "vorel/wavelet.h"

namespace tool {
namespace {

constexpr uint32_t kBorder = 32;  // samples around a chroma plane

struct PaddedPlane {
  PaddedPlane(uint32_t width, uint32_t height, uint32_t kind)
      : samples(size_t{round_up(width)} * round_up(height)) {
    record.data = samples.data();
    record.width = round_up(width);
    record.height = round_up(height);
    record.kind = kind;
    record.padX = kBorder;
    record.padY = kBorder;
    record.innerWidth = width;
    record.innerHeight = height;
    record.borrowed = true;
  }

  _Float16& inner(uint32_t row, uint32_t col) {
    return samples[size_t{row + kBorder} * record.width + kBorder + col];
  }

  static uint32_t round_up(uint32_t side) { return (side + 2 * kBorder + 1) & ~1u; }

  std::vector<_Float16> samples;
  buffer record{};
};

// A band of the level that halves the plane `halvings` times.
ChromaBand make_band(const buffer& plane, int halvings) {
  const auto halved = [halvings](uint32_t side) {
    return static_cast<int>((side + (1u << halvings) - 1) >> halvings);
  };
  ChromaBand band;
  band.rows = halved(plane.height);
  band.cols = halved(plane.width);
  band.margin = static_cast<int>(kBorder) >> halvings;
  band.inner_rows = halved(plane.innerHeight);
  band.inner_cols = halved(plane.innerWidth);
  band.samples.resize(static_cast<size_t>(band.rows) * static_cast<size_t>(band.cols));
  return band;
}

buffer describe(ChromaBand& band) {
  buffer record{};
  record.data = band.samples.data();
  record.width = static_cast<uint32_t>(band.cols);
  record.height = static_cast<uint32_t>(band.rows);
  record.borrowed = true;
  return record;
}

PlaneBands decompose_plane(Sym4Transform& transform, PaddedPlane& plane) {
  PlaneBands bands;
  buffer records[kChromaBands];
  for (size_t i = 0; i < kChromaBands; ++i) {
    bands[i] = make_band(plane.record, i < 4 ? 2 : 1);
    records[i] = describe(bands[i]);
  }
  transform.forwardWtRun(&plane.record, records, plane.record.width, plane.record.height,
                         plane.record.kind, nullptr);
  return bands;
}

}  // namespace

FrameBands decompose_chroma(const ChromaImage& chroma) {
  const auto cols = static_cast<uint32_t>(chroma.cols);
  const auto rows = static_cast<uint32_t>(chroma.rows);
  PaddedPlane first(cols, rows, VOREL_PLANE_FIRST);
  PaddedPlane second(cols, rows, VOREL_PLANE_SECOND);
  const float* pair = chroma.pairs.data();
  for (uint32_t row = 0; row < rows; ++row) {
    for (uint32_t col = 0; col < cols; ++col, pair += 2) {
      first.inner(row, col) = static_cast<_Float16>(pair[0]);
      second.inner(row, col) = static_cast<_Float16>(pair[1]);
    }
  }
  BorderHandler::getInstance()->runPad(&first.record, &second.record, 0, first.record.height);
  Sym4Transform transform;
  const auto width = static_cast<int>(first.record.width);
  const auto height = static_cast<int>(first.record.height);
  const bool ready =
      transform.setup(width, height, width / 2, height / 2, 0, nullptr, nullptr, nullptr);
  FrameBands bands;
  if (ready) {
    bands.planes = {decompose_plane(transform, first), decompose_plane(transform, second)};
  }
  transform.deallocate();
  if (!ready) throw std::bad_alloc();
  return bands;
}

}  // namespace tool
