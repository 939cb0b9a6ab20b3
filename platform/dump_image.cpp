#include <cstdint>
#include <cstdio>

#include "platform/debug_levels.h"
#include "platform/log.h"
#include "platform/plane_dump.h"
#include "vorel/debug.h"

namespace {

constexpr size_t kFileNameSize = 1024;

const char* image_extension(int type) {
  switch (type) {
    case VOREL_IMAGE_RAW:
      return ".raw";
    case VOREL_IMAGE_YUYV:
      return ".yuyv";
    case VOREL_IMAGE_NV21:
      return ".nv21";
    case VOREL_IMAGE_NV21M:
      return ".nv21_m";
    default:
      return "";
  }
}

// Kept: write errors are ignored, a dump never disturbs the frame.
void write_elements(FILE* file, const void* data, size_t count, size_t element_size) {
  static_cast<void>(std::fwrite(data, element_size, count, file));
}

void write_whole(FILE* file, int type, const void* buf1, const void* buf2, size_t width,
                 size_t height, size_t element_size) {
  switch (type) {
    case VOREL_IMAGE_RAW:
      write_elements(file, buf1, width * height, element_size);
      break;
    case VOREL_IMAGE_YUYV:
      write_elements(file, buf1, width * height * 2, element_size);
      break;
    case VOREL_IMAGE_NV21:
      write_elements(file, buf1, height * (width / 2) * 3, element_size);
      break;
    case VOREL_IMAGE_NV21M:
      write_elements(file, buf1, width * height, element_size);
      write_elements(file, buf2, width / 2 * height, element_size);
      break;
    default:
      break;
  }
}

}  // namespace

void dumpImage(int type, const char* dir, const char* prefix, const char* suffix, const void* buf1,
               const void* buf2, unsigned width, unsigned height, unsigned elementSize,
               int cropWidth, int cropHeight, int cropX, int cropY) {
  const bool crop = cropWidth >= 0 && cropHeight >= 0 && cropX >= 0 && cropY >= 0;
  char name[kFileNameSize];
  const int length = std::snprintf(
      name, sizeof(name), "%s/%s%u_%u%s%s%s", dir != nullptr ? dir : "",
      prefix != nullptr ? prefix : "", crop ? static_cast<unsigned>(cropWidth) : width,
      crop ? static_cast<unsigned>(cropHeight) : height, crop ? "_crop" : "",
      suffix != nullptr ? suffix : "", image_extension(type));
  // An empty directory means that none could be made: the root is no place for dumps.
  const bool named =
      dir != nullptr && dir[0] != '\0' && length >= 0 && static_cast<size_t>(length) < sizeof(name);
  FILE* file = named ? std::fopen(name, "wb") : nullptr;
  if (file == nullptr) {
    VOREL_LOGE("Failed to open dump file %s!", name);
    return;
  }
  if (crop) {
    const unsigned endX = static_cast<unsigned>(cropX) + static_cast<unsigned>(cropWidth);
    const unsigned endY = static_cast<unsigned>(cropY) + static_cast<unsigned>(cropHeight);
    if (endX > width || endY > height) {
      VOREL_LOGE("Failed to write dump file(out of range of image) endX: %u endY: %u!", endX, endY);
      std::fclose(file);
      return;
    }
    const auto* bytes = static_cast<const uint8_t*>(buf1);
    for (size_t row = static_cast<size_t>(cropY); row < endY; ++row) {
      write_elements(file, bytes + (row * width + static_cast<size_t>(cropX)) * elementSize,
                     static_cast<size_t>(cropWidth), elementSize);
    }
  } else {
    write_whole(file, type, buf1, buf2, width, height, elementSize);
  }
  std::fclose(file);
  VOREL_LOGI("Image is dumped in %s", name);
}

void dump_plane(const stage_record& stage, const char* prefix, const plane_view& plane) {
  dump_plane(stage, prefix, plane, {-1, -1, -1, -1});
}

void dump_plane(const stage_record& stage, const char* prefix, const plane_view& plane,
                const plane_part& part) {
  if (stage.debug_mode < kDebugDumpPlanes) return;
  dumpImage(VOREL_IMAGE_RAW, stage.dump_path, prefix, nullptr, plane.data, nullptr,
            static_cast<unsigned>(plane.width), static_cast<unsigned>(plane.height),
            plane.element_size, part.width, part.height, part.x, part.y);
}
