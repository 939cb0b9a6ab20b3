#include "tools/pictures/colour.h"

#include <libyuv.h>

#include "tools/files/failure.h"

namespace tool {
namespace {

// libyuv refuses only null pointers and empty sizes, which cannot get here.
void check(int libyuv_result) {
  if (libyuv_result != 0) throw Failure(kFailed, "colour conversion failed");
}

// The matrices for swapped U and V: libyuv's 24-bit output is B, G, R in memory, and swapping
// chroma turns it around.
const libyuv::YuvConstants* swapped_constants(Colour colour) {
  const bool full = colour.range == Range::kFull;
  if (colour.matrix == Matrix::kBt601) {
    return full ? &libyuv::kYvuJPEGConstants : &libyuv::kYvuI601Constants;
  }
  return full ? &libyuv::kYvuF709Constants : &libyuv::kYvuH709Constants;
}

}  // namespace

Nv21Frame rgb_to_nv21(const RgbImage& image, Colour colour) {
  if (colour.matrix == Matrix::kBt709) {
    throw usage_error("--matrix 709: RGB can be made from BT.709 YUV, but not turned into it");
  }
  Nv21Frame frame(image.width, image.height, colour);
  const int stride = static_cast<int>(image.stride());
  if (colour.range == Range::kFull) {
    check(libyuv::RAWToJNV21(image.pixels.data(), stride, frame.y(), frame.width, frame.vu(),
                             frame.chroma_stride(), image.width, image.height));
    return frame;
  }
  std::vector<uint8_t> u(frame.chroma_bytes() / 2);
  std::vector<uint8_t> v(frame.chroma_bytes() / 2);
  check(libyuv::RAWToI420(image.pixels.data(), stride, frame.y(), frame.width, u.data(),
                          frame.chroma_width(), v.data(), frame.chroma_width(), image.width,
                          image.height));
  libyuv::MergeUVPlane(v.data(), frame.chroma_width(), u.data(), frame.chroma_width(), frame.vu(),
                       frame.chroma_stride(), frame.chroma_width(), frame.chroma_height());
  return frame;
}

RgbImage nv21_to_rgb(const Nv21Frame& frame) {
  const ChromaPlanes chroma = split_chroma(frame);
  RgbImage image(frame.width, frame.height);
  check(libyuv::I420ToRGB24MatrixFilter(
      frame.y(), frame.width, chroma.v.data(), frame.chroma_width(), chroma.u.data(),
      frame.chroma_width(), image.pixels.data(), static_cast<int>(image.stride()),
      swapped_constants(frame.colour), frame.width, frame.height, libyuv::kFilterBilinear));
  return image;
}

Nv21Frame as_nv21(const Picture& picture, Colour colour) {
  if (const auto* frame = std::get_if<Nv21Frame>(&picture.pixels)) {
    if (frame->colour == colour) return *frame;
    return rgb_to_nv21(nv21_to_rgb(*frame), colour);
  }
  return rgb_to_nv21(std::get<RgbImage>(picture.pixels), colour);
}

RgbImage as_rgb(const Picture& picture) {
  if (const auto* image = std::get_if<RgbImage>(&picture.pixels)) return *image;
  return nv21_to_rgb(std::get<Nv21Frame>(picture.pixels));
}

Nv21Frame nv21_from_planes(int width, int height, const uint8_t* y, const uint8_t* u,
                           const uint8_t* v) {
  Nv21Frame frame(width, height);
  check(libyuv::I420ToNV21(y, width, u, frame.chroma_width(), v, frame.chroma_width(), frame.y(),
                           width, frame.vu(), frame.chroma_stride(), width, height));
  return frame;
}

void join_chroma(const uint8_t* u, const uint8_t* v, Nv21Frame& frame) {
  libyuv::MergeUVPlane(v, frame.chroma_width(), u, frame.chroma_width(), frame.vu(),
                       frame.chroma_stride(), frame.chroma_width(), frame.chroma_height());
}

ChromaPlanes split_chroma(const Nv21Frame& frame) {
  ChromaPlanes planes{std::vector<uint8_t>(frame.chroma_bytes() / 2),
                      std::vector<uint8_t>(frame.chroma_bytes() / 2)};
  libyuv::SplitUVPlane(frame.vu(), frame.chroma_stride(), planes.v.data(), frame.chroma_width(),
                       planes.u.data(), frame.chroma_width(), frame.chroma_width(),
                       frame.chroma_height());
  return planes;
}

}  // namespace tool
