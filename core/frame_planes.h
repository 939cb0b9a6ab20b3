// Sizes and planes that a handle has and a frame in flight works on.
#ifndef VOREL_CORE_FRAME_PLANES_H_
#define VOREL_CORE_FRAME_PLANES_H_

#include <cstddef>
#include <cstdint>

// The handle's are what the last frame has left; a frame works on a copy.
struct frame_planes {
  int32_t width;
  int32_t height;
  int32_t aligned_height;  // height rounded up to a multiple of 16
  int32_t height_floor16;  // height rounded down to a multiple of 16
  uint32_t format;
  uint8_t* in_address_1;  // the caller's
  uint8_t* in_address_2;
  uint8_t* out_address_1;
  uint8_t* out_address_2;
  uint8_t* packed_y;  // never allocated
  uint8_t* y_low;     // aligned_height x width
  uint8_t* y_high;
  uint8_t* downsampled_y;  // (aligned_height / 16) x (width / 16)
  uint8_t* downsampled_u;
  uint8_t* downsampled_v;
  uint8_t* filtered_y;
  uint8_t* filtered_u;
  uint8_t* filtered_v;
  uint8_t* upsampled_u;  // (aligned_height / 2) x (width / 2)
  uint8_t* upsampled_v;
  _Float16* mfd_u;  // mfd_height x mfd_width, had by each run that needs them
  _Float16* mfd_v;
  int32_t mfd_width;
  int32_t mfd_height;
  size_t mfd_samples;  // that each of the two has room for
};

// A pair of half-precision planes between two frames, or none.
struct spare_half_planes {
  _Float16* u;
  _Float16* v;
  size_t samples;  // of each
};

// Stores a frame's size with its derived ones.
void set_size(frame_planes* planes, int32_t width, int32_t height);

// Bytes of one full-size plane. Kept: 32-bit arithmetic that wraps.
[[nodiscard]] int32_t luma_plane_bytes(const frame_planes& planes);

// Allocates the ten planes between the frame's and the half-precision ones for the size that is
// set. Returns false (logged) when one cannot be had; those before it stay for free_planes.
[[nodiscard]] bool allocate_planes(frame_planes* planes);

// Frees all planes but the caller's.
void free_planes(frame_planes* planes);

// Gives a frame its half-precision planes: the spare pair when it is large enough, else a new one.
// Null planes when memory is short. Kept: a pair that is already there is forgotten, not freed.
void take_half_planes(frame_planes* planes, spare_half_planes* spare);

// Makes the last frame's pair the spare one.
void return_half_planes(frame_planes* planes, spare_half_planes* spare);

void free_spare(spare_half_planes* spare);

#endif  // VOREL_CORE_FRAME_PLANES_H_
