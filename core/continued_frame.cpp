#include "core/continued_frame.h"

#include <cstddef>
#include <cstring>

#include "core/frame_size.h"

namespace {

// One plane of the frame and its place in the dense planes; an element is a sample or a pair.
struct plane_copy {
  uint8_t* frame;
  ptrdiff_t frame_stride;
  size_t frame_bytes;  // of a row
  int32_t frame_rows;
  uint8_t* dense;
  size_t dense_bytes;
  int32_t dense_rows;
  size_t element_bytes;
};

plane_copy luma_copy(const vorel_frame& frame, const dense_planes& planes) {
  return {frame.luma,
          frame.luma_stride,
          static_cast<size_t>(frame.width),
          frame.height,
          planes.luma,
          static_cast<size_t>(planes.width),
          planes.height,
          1};
}

plane_copy chroma_copy(const vorel_frame& frame, const dense_planes& planes) {
  return {frame.chroma,
          frame.chroma_stride,
          (static_cast<size_t>(frame.width) + 1) / 2 * 2,
          frame.height / 2 + frame.height % 2,
          planes.chroma,
          static_cast<size_t>(planes.width),
          planes.height / 2,
          2};
}

void copy_plane_continued(const plane_copy& copy) {
  const uint8_t* src = copy.frame;
  uint8_t* dst = copy.dense;
  for (int32_t row = 0; row < copy.dense_rows; ++row) {
    std::memcpy(dst, src, copy.frame_bytes);
    for (size_t i = copy.frame_bytes; i < copy.dense_bytes; ++i) {
      dst[i] = dst[i - copy.element_bytes];
    }
    if (row + 1 < copy.frame_rows) src += copy.frame_stride;
    dst += copy.dense_bytes;
  }
}

void copy_plane_back(const plane_copy& copy) {
  const uint8_t* src = copy.dense;
  uint8_t* dst = copy.frame;
  for (int32_t row = 0; row < copy.frame_rows; ++row) {
    std::memcpy(dst, src, copy.frame_bytes);
    src += copy.dense_bytes;
    if (row + 1 < copy.frame_rows) dst += copy.frame_stride;
  }
}

}  // namespace

dense_planes dense_size(const vorel_frame& frame) {
  return {nullptr, nullptr, align_up_16(frame.width), frame.height + frame.height % 2};
}

bool is_dense(const vorel_frame& frame) {
  return frame.width % 16 == 0 && frame.height % 2 == 0 && frame.luma_stride == frame.width &&
         frame.chroma_stride == frame.width;
}

void copy_continued(const vorel_frame& frame, const dense_planes& planes) {
  copy_plane_continued(luma_copy(frame, planes));
  copy_plane_continued(chroma_copy(frame, planes));
}

void copy_back(const dense_planes& planes, const vorel_frame& frame) {
  copy_plane_back(luma_copy(frame, planes));
  copy_plane_back(chroma_copy(frame, planes));
}
