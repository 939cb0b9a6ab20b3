#include <fcntl.h>
#include <jansson.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "platform/directories.h"
#include "platform/log.h"
#include "tuning/decode.h"
#include "tuning/tuning.h"

namespace {

constexpr size_t kPathSize = 512;

// Opens a regular file and tells its size; -1 for anything else. Not blocking, because opening a
// pipe would wait for a writer.
int open_file(const char* path, off_t& size) {
  const int file = open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (file < 0) return -1;
  struct stat status{};
  if (fstat(file, &status) != 0 || !S_ISREG(status.st_mode)) {
    close(file);
    return -1;
  }
  size = status.st_size;
  return file;
}

// Reads up to `size` bytes; fewer when the file has become shorter. -1 when reading fails.
ssize_t read_all(int file, char* text, size_t size) {
  size_t done = 0;
  while (done < size) {
    const ssize_t part = read(file, text + done, size - done);
    if (part < 0 && errno == EINTR) continue;
    if (part < 0) return -1;
    if (part == 0) break;
    done += static_cast<size_t>(part);
  }
  return static_cast<ssize_t>(done);
}

// The file's bytes with a terminator, from malloc; null when they cannot be had (logged).
char* read_text(const char* path, int file, off_t size) {
  if (size > INT32_MAX) {
    VOREL_LOGE("LoadJson, %s is too large", path);
    return nullptr;
  }
  const size_t bytes = static_cast<size_t>(size);
  char* text = static_cast<char*>(std::malloc(bytes + 1));
  if (text == nullptr) {
    VOREL_LOGE("LoadJson, no memory for %zu bytes of %s", bytes, path);
    return nullptr;
  }
  const ssize_t got = read_all(file, text, bytes);
  if (got < 0) {
    VOREL_LOGE("LoadJson, cannot read %s, error %d", path, errno);
    std::free(text);
    return nullptr;
  }
  text[got] = '\0';
  return text;
}

}  // namespace

bool LoadJson(const char* sensor_name, json_t*& root) {
  const char* directory = firmware_directory();
  char path[kPathSize];
  const int length = std::snprintf(path, sizeof(path), "%s/vorel_%s.json", directory, sensor_name);
  off_t size = 0;
  const bool fits = length > 0 && static_cast<size_t>(length) < sizeof(path);
  const int file = fits ? open_file(path, size) : -1;
  if (file < 0) {
    VOREL_LOGE("Cannot open %s/vorel_%s.json", directory, sensor_name);
    return false;
  }
  VOREL_LOGD("JSON[vorel_%s.json] fileSize=%d", sensor_name, static_cast<int>(size));
  char* text = read_text(path, file, size);
  close(file);
  if (text == nullptr) return false;

  json_error_t error;
  root = json_loads(text, JSON_DISABLE_EOF_CHECK, &error);
  std::free(text);
  if (root == nullptr) {
    VOREL_LOGE("Error loading JSON file %s on line %d: %s", path, error.line, error.text);
    return false;
  }
  return true;
}

void ReleaseJson(json_t* root) { json_decref(root); }

void load_tuning_file(const char* sensor_name, cnr_tuning* tuning) {
  json_t* root = nullptr;
  if (!LoadJson(sensor_name, root)) {
    VOREL_LOGE("LoadJson(%s) failed", sensor_name);
    return;
  }
  VOREL_LOGI("LoadJson(%s) success", sensor_name);

  // Each of the two readers drops a reference of a root that it refuses.
  const bool refused = !json_is_array(root) || first_non_object(root) < json_array_size(root);
  if (refused) {
    json_incref(root);
    json_incref(root);
  }
  char tuning_version[kTuningVersionSize] = {};
  getTuningVersions(root, tuning_version);
  VOREL_LOGI("TUNING_VERSION: %s", tuning_version);
  decodeJson(root, tuning);
  ReleaseJson(root);
}
