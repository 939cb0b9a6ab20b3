#include "core/dump.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "core/format_text.h"
#include "platform/log.h"

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

void dump_plane(const stage_record& stage, const char* prefix, const uint8_t* plane, int32_t width,
                int32_t height) {
  if (stage.debug_mode < kDebugDumpPlanes) return;
  dumpImage(VOREL_IMAGE_RAW, stage.dump_path, prefix, nullptr, plane, nullptr,
            static_cast<unsigned>(width), static_cast<unsigned>(height), 1, -1, -1, -1, -1);
}

bool dump_frame(const vorel* handle, frame_dump which, uint32_t format, const void* plane_1,
                const void* plane_2, int32_t width, int32_t height, int noiseIndex) {
  const char* direction = which == frame_dump::kInput ? "input" : "output";
  int type = VOREL_IMAGE_NV21;
  switch (format) {
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
  const auto columns = static_cast<unsigned>(width);
  const auto rows = static_cast<unsigned>(height);
  void* joined = nullptr;
  if (type == VOREL_IMAGE_NV21 && !is_one_block(plane_1, plane_2, columns, rows)) {
    joined = join_planes(plane_1, plane_2, columns, rows);
    if (joined == nullptr) {
      VOREL_LOGE("Failed to dump %s image: no memory", direction);
      return true;
    }
    plane_1 = joined;
  }
  char suffix[kTextSize];
  format_text(suffix, "_%d_%d", handle->sensorId, noiseIndex);
  dumpImage(type, handle->dump_path, which == frame_dump::kInput ? "input_" : "output_", suffix,
            plane_1, nullptr, columns, rows, 1, -1, -1, -1, -1);
  std::free(joined);
  return true;
}
