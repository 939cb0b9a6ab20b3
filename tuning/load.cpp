#include <fcntl.h>
#include <jansson.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform/directories.h"
#include "platform/log.h"
#include "tuning/tuning.h"
#include "tuning/used_object.h"

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

bool load_json_file(const char* path, json_t*& root) {
  off_t size = 0;
  const int file = open_file(path, size);
  if (file < 0) {
    VOREL_LOGE("Cannot open %s", path);
    return false;
  }
  const char* slash = std::strrchr(path, '/');
  VOREL_LOGD("JSON[%s] fileSize=%d", slash != nullptr ? slash + 1 : path, static_cast<int>(size));
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

bool load_json_text(const char* text, size_t bytes, json_t*& root) {
  json_error_t error;
  root = json_loadb(text, bytes, JSON_DISABLE_EOF_CHECK, &error);
  if (root == nullptr) {
    VOREL_LOGE("Error loading JSON text on line %d: %s", error.line, error.text);
    return false;
  }
  return true;
}

bool LoadJson(const char* sensor_name, json_t*& root) {
  const char* directory = firmware_directory();
  char path[kPathSize];
  const int length = std::snprintf(path, sizeof(path), "%s/vorel_%s.json", directory, sensor_name);
  if (length > 0 && static_cast<size_t>(length) < sizeof(path)) return load_json_file(path, root);
  VOREL_LOGE("Cannot open %s/vorel_%s.json", directory, sensor_name);
  return false;
}

void ReleaseJson(json_t* root) { json_decref(root); }

bool load_tuning(const tuning_source& source, cnr_tuning* tuning, char* version) {
  json_t* root = nullptr;
  const char* name = source.sensor_name;
  bool loaded;
  if (source.text != nullptr) {
    name = "text";
    loaded = load_json_text(source.text, source.text_bytes, root);
  } else if (source.path != nullptr) {
    name = source.path;
    loaded = load_json_file(source.path, root);
  } else {
    loaded = LoadJson(source.sensor_name, root);
  }
  if (!loaded) {
    VOREL_LOGE("LoadJson(%s) failed", name);
    return false;
  }
  VOREL_LOGI("LoadJson(%s) success", name);

  // Each of the two readers drops a reference of a root that it refuses.
  const bool refused = !json_is_array(root) || first_non_object(root) < json_array_size(root);
  if (refused) {
    json_incref(root);
    json_incref(root);
  }
  version[0] = '\0';
  getTuningVersions(root, version);
  VOREL_LOGI("TUNING_VERSION: %s", version);
  decodeJson(root, tuning);
  ReleaseJson(root);
  return !refused;
}
