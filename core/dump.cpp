#include "core/dump.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "core/format_text.h"
#include "platform/frame_dumps.h"
#include "platform/log.h"
#include "vorel/debug.h"

namespace {

// Frame dumps of 4:2:0 formats always have the type for one block. Frames whose planes are no
// block, or whose odd height makes the file half a chroma row longer than the frame, are copied
// first, so that nothing outside the planes is read.
bool is_one_block(const void* plane_1, const void* plane_2, size_t width, size_t height) {
  return height % 2 == 0 && static_cast<const uint8_t*>(plane_1) + width * height == plane_2;
}

void* join_planes(const void* plane_1, const void* plane_2, size_t width, size_t height) {
  auto* joined = static_cast<uint8_t*>(std::calloc(height, width / 2 * 3));
  if (joined == nullptr) return nullptr;
  std::memcpy(joined, plane_1, width * height);
  std::memcpy(joined + width * height, plane_2, height / 2 * width);
  return joined;
}

}  // namespace

bool dump_frame(const vorel* handle, frame_dump which, const frame_request& frame) {
  const char* direction = which == frame_dump::kInput ? "input" : "output";
  int type = VOREL_IMAGE_NV21;
  switch (frame.format) {
    case VOREL_FMT_YUYV:
    case VOREL_FMT_YUY2:
      VOREL_LOGI("Dump %s image to file(YUYV)", direction);
      type = VOREL_IMAGE_YUYV;
      break;
    case VOREL_FMT_NM21:
      VOREL_LOGI("Dump %s image to file(NV21_M)", direction);
      break;
    case VOREL_FMT_NV21:
      VOREL_LOGI("Dump %s image to file(NV21)", direction);
      break;
    default:
      VOREL_LOGE("Image dumper doesn't support this input format");
      return false;
  }
  const auto columns = static_cast<unsigned>(frame.width);
  const auto rows = static_cast<unsigned>(frame.height);
  const void* block = frame.plane_1;
  void* joined = nullptr;
  if (type == VOREL_IMAGE_NV21 && !is_one_block(block, frame.plane_2, columns, rows)) {
    joined = join_planes(block, frame.plane_2, columns, rows);
    if (joined == nullptr) {
      VOREL_LOGE("Failed to dump %s image: no memory", direction);
      static_cast<void>(count_dump(handle->dump_path, ENOMEM));
      return true;
    }
    block = joined;
  }
  char suffix[kTextSize];
  format_text(suffix, "_%d_%d", handle->sensorId, frame.noise_index);
  dumpImage(type, handle->dump_path, which == frame_dump::kInput ? "input_" : "output_", suffix,
            block, nullptr, columns, rows, 1, -1, -1, -1, -1);
  std::free(joined);
  return true;
}
