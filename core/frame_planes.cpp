#include "core/frame_planes.h"

#include <cstdlib>

#include "core/frame_size.h"
#include "platform/log.h"
#include "wavelet/stage_layout.h"

namespace {

// A plane of the handle, in the order of allocation.
struct plane_entry {
  uint8_t* frame_planes::* plane;
  int divisor;  // of aligned_height and of width
  const char* failure;
};

constexpr plane_entry kPlanes[] = {
    {&frame_planes::y_low, 1, "vorel_init, vorel->y_low[0] alloc is fail"},
    {&frame_planes::y_high, 1, "vorel_init, vorel->y_high[0] alloc is fail"},
    {&frame_planes::downsampled_y, 16, "vorel_init, vorel->downsampled_y[0] alloc is fail"},
    {&frame_planes::downsampled_u, 16, "vorel_init, vorel->downsampled_u[0] alloc is fail"},
    {&frame_planes::downsampled_v, 16, "vorel_init, vorel->downsampled_v[0] alloc is fail"},
    {&frame_planes::filtered_y, 16, "vorel_init, vorel->filtered_y alloc is fail"},
    {&frame_planes::filtered_u, 16, "vorel_init, vorel->filtered_u alloc is fail"},
    {&frame_planes::filtered_v, 16, "vorel_init, vorel->filtered_v alloc is fail"},
    {&frame_planes::upsampled_u, 2, "vorel_init, vorel->upsampled_u alloc is fail"},
    {&frame_planes::upsampled_v, 2, "vorel_init, vorel->upsampled_v alloc is fail"},
};

// A size that has wrapped to a negative number fails to allocate.
int32_t plane_bytes(const frame_planes& planes, int divisor) {
  return static_cast<int32_t>(static_cast<uint32_t>(planes.aligned_height / divisor) *
                              static_cast<uint32_t>(planes.width / divisor));
}

template <typename T>
void release(T*& plane) {
  std::free(plane);
  plane = nullptr;
}

_Float16* allocate_half_plane(size_t samples) {
  return static_cast<_Float16*>(std::malloc(samples * sizeof(_Float16)));
}

}  // namespace

void set_size(frame_planes* planes, int32_t width, int32_t height) {
  planes->width = width;
  planes->height = height;
  planes->aligned_height = align_up_16(height);
  planes->height_floor16 = align_down_16(height);
}

int32_t luma_plane_bytes(const frame_planes& planes) { return plane_bytes(planes, 1); }

bool allocate_planes(frame_planes* planes) {
  for (const plane_entry& entry : kPlanes) {
    const int32_t bytes = plane_bytes(*planes, entry.divisor);
    // Zeroed: dumps also show rows that no stage writes.
    void* plane = bytes < 0 ? nullptr : std::calloc(1, static_cast<size_t>(bytes));
    if (plane == nullptr) {
      VOREL_LOGE("%s", entry.failure);
      return false;
    }
    planes->*entry.plane = static_cast<uint8_t*>(plane);
  }
  return true;
}

void free_planes(frame_planes* planes) {
  release(planes->packed_y);
  for (const plane_entry& entry : kPlanes) release(planes->*entry.plane);
  release(planes->mfd_u);
  release(planes->mfd_v);
}

void take_half_planes(frame_planes* planes, spare_half_planes* spare) {
  planes->mfd_width = static_cast<int32_t>(padded_size(static_cast<uint32_t>(planes->width) / 2));
  planes->mfd_height = static_cast<int32_t>(padded_size(static_cast<uint32_t>(planes->height) / 2));
  const size_t samples =
      static_cast<size_t>(planes->mfd_width) * static_cast<size_t>(planes->mfd_height);
  if (spare->samples >= samples) {
    planes->mfd_u = spare->u;
    planes->mfd_v = spare->v;
    planes->mfd_samples = spare->samples;
    *spare = {};
    return;
  }
  free_spare(spare);
  planes->mfd_u = allocate_half_plane(samples);
  planes->mfd_v = allocate_half_plane(samples);
  planes->mfd_samples = samples;
}

void return_half_planes(frame_planes* planes, spare_half_planes* spare) {
  if (planes->mfd_u == nullptr || planes->mfd_v == nullptr) {
    release(planes->mfd_u);
    release(planes->mfd_v);
    return;
  }
  free_spare(spare);
  *spare = {planes->mfd_u, planes->mfd_v, planes->mfd_samples};
  planes->mfd_u = nullptr;
  planes->mfd_v = nullptr;
}

void free_spare(spare_half_planes* spare) {
  release(spare->u);
  release(spare->v);
  spare->samples = 0;
}
