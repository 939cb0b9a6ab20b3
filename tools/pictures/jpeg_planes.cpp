#include "tools/pictures/jpeg_planes.h"

#include <libyuv.h>

#include <algorithm>

#include "tools/pictures/colour.h"

namespace tool {
namespace {

int chroma_side(int side, int factor) { return (side + factor - 1) / factor; }

// Luma from a plane with a stride, chroma from dense 4:2:0 planes.
void scale_chroma(const JpegPlane& plane, JpegSampling sampling, Size size, uint8_t* to) {
  libyuv::ScalePlane(plane.samples.data(), static_cast<int>(plane.stride),
                     chroma_side(size.width, sampling.across),
                     chroma_side(size.height, sampling.down), to, chroma_side(size.width, 2),
                     chroma_side(size.width, 2), chroma_side(size.height, 2), libyuv::kFilterBox);
}

void put_chroma(const std::vector<uint8_t>& before, const std::vector<uint8_t>& after,
                JpegSampling sampling, Size size, JpegPlane& plane) {
  const Size half{chroma_side(size.width, 2), chroma_side(size.height, 2)};
  const Size full{chroma_side(size.width, sampling.across),
                  chroma_side(size.height, sampling.down)};
  std::vector<uint8_t> scaled(static_cast<size_t>(full.width) * static_cast<size_t>(full.height));
  libyuv::ScalePlane(after.data(), half.width, half.width, half.height, scaled.data(), full.width,
                     full.width, full.height, libyuv::kFilterBilinear);
  for (int y = 0; y < full.height; ++y) {
    const int half_y = std::min(y * sampling.down / 2, half.height - 1);
    const size_t half_row = static_cast<size_t>(half_y) * static_cast<size_t>(half.width);
    const size_t full_row = static_cast<size_t>(y) * static_cast<size_t>(full.width);
    for (int x = 0; x < full.width; ++x) {
      const int half_x = std::min(x * sampling.across / 2, half.width - 1);
      const size_t at = half_row + static_cast<size_t>(half_x);
      if (before[at] == after[at]) continue;
      plane.rows[static_cast<size_t>(y)][x] = scaled[full_row + static_cast<size_t>(x)];
    }
  }
}

}  // namespace

Nv21Frame join_jpeg_planes(const JpegPlane* planes, JpegSampling sampling, Size size) {
  Nv21Frame frame(size.width, size.height);
  const auto stride = [&](int i) { return static_cast<int>(planes[i].stride); };
  const uint8_t* y = planes[0].samples.data();
  if (sampling.components == 1) {
    libyuv::I400ToNV21(y, stride(0), frame.y(), frame.width, frame.vu(), frame.chroma_stride(),
                       size.width, size.height);
    return frame;
  }
  const auto is = [&](int across, int down) {
    return sampling.across == across && sampling.down == down;
  };
  const auto convert = is(1, 1)   ? libyuv::I444ToNV21
                       : is(2, 1) ? libyuv::I422ToNV21
                       : is(2, 2) ? libyuv::I420ToNV21
                                  : nullptr;
  if (convert != nullptr) {
    convert(y, stride(0), planes[1].samples.data(), stride(1), planes[2].samples.data(), stride(2),
            frame.y(), frame.width, frame.vu(), frame.chroma_stride(), size.width, size.height);
    return frame;
  }
  ChromaPlanes chroma{std::vector<uint8_t>(frame.chroma_bytes() / 2),
                      std::vector<uint8_t>(frame.chroma_bytes() / 2)};
  scale_chroma(planes[1], sampling, size, chroma.u.data());
  scale_chroma(planes[2], sampling, size, chroma.v.data());
  libyuv::CopyPlane(y, stride(0), frame.y(), frame.width, frame.width, frame.height);
  join_chroma(chroma.u.data(), chroma.v.data(), frame);
  return frame;
}

void put_into_jpeg_planes(const Nv21Frame& before, const Nv21Frame& after, JpegSampling sampling,
                          JpegPlane* planes) {
  const Size size{after.width, after.height};
  libyuv::CopyPlane(after.y(), after.width, planes[0].samples.data(),
                    static_cast<int>(planes[0].stride), after.width, after.height);
  if (sampling.components == 1) return;  // grey stays grey
  const ChromaPlanes old_chroma = split_chroma(before);
  const ChromaPlanes new_chroma = split_chroma(after);
  put_chroma(old_chroma.u, new_chroma.u, sampling, size, planes[1]);
  put_chroma(old_chroma.v, new_chroma.v, sampling, size, planes[2]);
}

}  // namespace tool
