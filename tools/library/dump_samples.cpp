#include "tools/library/dump_samples.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

#include "tools/files/file_bytes.h"
#include "tools/library/dump_picture.h"

namespace tool {
namespace {

// Every `step`-th byte from `first` on.
DumpPlane plane_of_bytes(DumpComponent component, const std::vector<uint8_t>& bytes, size_t first,
                         size_t step, Size size) {
  DumpPlane plane{component, size, {}};
  const size_t count = static_cast<size_t>(size.width) * static_cast<size_t>(size.height);
  plane.samples.reserve(count);
  for (size_t i = 0; i < count; ++i) plane.samples.push_back(bytes.at(first + i * step));
  return plane;
}

std::vector<DumpPlane> planes_of_pairs(const std::vector<uint8_t>& bytes, size_t first,
                                       Size pairs) {
  return {plane_of_bytes(DumpComponent::kFirst, bytes, first, 2, pairs),
          plane_of_bytes(DumpComponent::kSecond, bytes, first + 1, 2, pairs)};
}

}  // namespace

std::vector<DumpPlane> read_dump_planes(const DumpFile& file) {
  const std::vector<uint8_t> bytes = read_file(file.path, kMaxFrameBytes);
  const auto [width, height] = file.size;
  std::vector<DumpPlane> planes;
  switch (file.layout) {
    case DumpLayout::kNv21:
      // The half row of chroma that an odd height adds is no row.
      planes = planes_of_pairs(bytes, static_cast<size_t>(width) * static_cast<size_t>(height),
                               {width / 2, height / 2});
      planes.insert(planes.begin(), plane_of_bytes(DumpComponent::kLuma, bytes, 0, 1, file.size));
      break;
    case DumpLayout::kYuyv:
      planes = {plane_of_bytes(DumpComponent::kLuma, bytes, 0, 2, file.size),
                plane_of_bytes(DumpComponent::kFirst, bytes, 1, 4, {width / 2, height}),
                plane_of_bytes(DumpComponent::kSecond, bytes, 3, 4, {width / 2, height})};
      break;
    case DumpLayout::kBytes:
      if (file.content == DumpContent::kPairs) {
        planes = planes_of_pairs(bytes, 0, {width / 2, height});
      } else {
        planes = {plane_of_bytes(file.component, bytes, 0, 1, file.size)};
      }
      break;
    case DumpLayout::kHalfFloats: {
      DumpPlane plane{file.component, file.size, std::vector<float>(bytes.size() / 2)};
      for (size_t i = 0; i < plane.samples.size(); ++i) {
        uint16_t bits = 0;
        std::memcpy(&bits, bytes.data() + 2 * i, sizeof(bits));
        plane.samples[i] = half_value(bits);
      }
      planes.push_back(std::move(plane));
      break;
    }
    case DumpLayout::kDamaged:
      break;
  }
  return planes;
}

SampleFigures figures_of(const std::vector<float>& samples) {
  SampleFigures figures{};
  size_t numbers = 0;
  size_t finite = 0;
  double sum = 0;
  for (const float sample : samples) {
    if (std::isnan(sample)) continue;
    figures.least = numbers > 0 ? std::min(figures.least, sample) : sample;
    figures.most = numbers > 0 ? std::max(figures.most, sample) : sample;
    ++numbers;
    if (!std::isfinite(sample)) continue;
    ++finite;
    sum += sample;
  }
  figures.not_numbers = samples.size() - numbers;
  if (finite == 0) return figures;
  figures.mean = sum / static_cast<double>(finite);
  double squares = 0;
  for (const float sample : samples) {
    if (std::isfinite(sample)) squares += (sample - figures.mean) * (sample - figures.mean);
  }
  figures.deviation = std::sqrt(squares / static_cast<double>(finite));
  return figures;
}

}  // namespace tool
