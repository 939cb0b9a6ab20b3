#include <sys/stat.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>

#include "platform/debug_levels.h"
#include "platform/error_text.h"
#include "platform/frame_dumps.h"
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

[[nodiscard]] bool write_bytes(FILE* file, const void* data, size_t bytes) {
  return std::fwrite(data, 1, bytes, file) == bytes;
}

struct image_size {
  size_t width;
  size_t height;
  size_t element_bytes;
};

[[nodiscard]] bool write_whole(FILE* file, int type, const void* buf1, const void* buf2,
                               const image_size& size) {
  const size_t width = size.width;
  const size_t height = size.height;
  const size_t element_size = size.element_bytes;
  switch (type) {
    case VOREL_IMAGE_RAW:
      return write_bytes(file, buf1, width * height * element_size);
    case VOREL_IMAGE_YUYV:
      return write_bytes(file, buf1, width * height * 2 * element_size);
    case VOREL_IMAGE_NV21:
      return write_bytes(file, buf1, height * (width / 2) * 3 * element_size);
    case VOREL_IMAGE_NV21M:
      return write_bytes(file, buf1, width * height * element_size) &&
             write_bytes(file, buf2, width / 2 * height * element_size);
    default:
      return true;
  }
}

// A part of `plane` that lies inside.
[[nodiscard]] bool write_part(FILE* file, const plane_view& plane, const plane_part& part) {
  const auto* bytes = static_cast<const uint8_t*>(plane.data);
  const size_t pitch = static_cast<size_t>(static_cast<unsigned>(plane.width)) * plane.element_size;
  for (int32_t row = 0; row < part.height; ++row) {
    const uint8_t* first = bytes +
                           (static_cast<size_t>(part.y) + static_cast<size_t>(row)) * pitch +
                           static_cast<size_t>(part.x) * plane.element_size;
    if (!write_bytes(file, first, static_cast<size_t>(part.width) * plane.element_size)) {
      return false;
    }
  }
  return true;
}

// Closes a file of which `written` tells whether everything was handed over. Returns 0, or the
// reason why the file is incomplete; it is removed then, unless it is a device.
int finish_file(FILE* file, const char* name, bool written) {
  int error = written ? 0 : errno;
  struct stat found;
  const bool is_file = fstat(fileno(file), &found) == 0 && S_ISREG(found.st_mode);
  if (std::fclose(file) != 0 && error == 0) error = errno;
  if (error != 0 && is_file) std::remove(name);
  return error;
}

// An empty directory means that none could be made: the root is no place for dumps.
FILE* open_dump(const char* dir, const char* name, int length) {
  errno = ENOENT;
  if (dir == nullptr || dir[0] == '\0') return nullptr;
  errno = ENAMETOOLONG;
  if (length < 0 || static_cast<size_t>(length) >= kFileNameSize) return nullptr;
  return std::fopen(name, "wb");
}

}  // namespace

void dumpImage(int type, const char* dir, const char* prefix, const char* suffix, const void* buf1,
               const void* buf2, unsigned width, unsigned height, unsigned elementSize,
               int cropWidth, int cropHeight, int cropX, int cropY) {
  const bool crop = cropWidth >= 0 && cropHeight >= 0 && cropX >= 0 && cropY >= 0;
  const char* folder = dir != nullptr ? dir : "";
  char name[kFileNameSize];
  const int length =
      std::snprintf(name, sizeof(name), "%s/%s%u_%u%s%s%s", folder, prefix != nullptr ? prefix : "",
                    crop ? static_cast<unsigned>(cropWidth) : width,
                    crop ? static_cast<unsigned>(cropHeight) : height, crop ? "_crop" : "",
                    suffix != nullptr ? suffix : "", image_extension(type));
  FILE* file = open_dump(dir, name, length);
  if (file == nullptr) {
    if (count_dump(folder, errno)) VOREL_LOGE("Failed to open dump file %s!", name);
    return;
  }
  bool written = false;
  if (crop) {
    const unsigned endX = static_cast<unsigned>(cropX) + static_cast<unsigned>(cropWidth);
    const unsigned endY = static_cast<unsigned>(cropY) + static_cast<unsigned>(cropHeight);
    if (endX > width || endY > height) {
      VOREL_LOGE("Failed to write dump file(out of range of image) endX: %u endY: %u!", endX, endY);
      std::fclose(file);
      return;
    }
    written = write_part(
        file, {buf1, static_cast<int32_t>(width), static_cast<int32_t>(height), elementSize},
        {cropX, cropY, cropWidth, cropHeight});
  } else {
    written = write_whole(file, type, buf1, buf2, {width, height, elementSize});
  }
  const int error = finish_file(file, name, written);
  const bool wanted = count_dump(folder, error);
  if (error == 0) {
    VOREL_LOGI("Image is dumped in %s", name);
  } else if (wanted) {
    char text[kErrorTextSize];
    VOREL_LOGE("Failed to write dump file %s: %s", name, error_text(error, text));
  }
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
