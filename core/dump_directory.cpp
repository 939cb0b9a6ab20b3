#include "core/dump_directory.h"

#include <sys/stat.h>

#include <cerrno>
#include <ctime>

#include "core/format_text.h"
#include "platform/directories.h"
#include "platform/error_text.h"
#include "platform/log.h"

namespace {

constexpr mode_t kDumpDirectoryMode = 0777;

bool make_directory(const char* path) {
  return mkdir(path, kDumpDirectoryMode) == 0 || errno == EEXIST;
}

}  // namespace

void make_dump_directory(int32_t sensor_id, char (&path)[kDumpPathSize]) {
  char error[kErrorTextSize];
  const char* base = dump_directory();
  if (!make_directory(base)) {
    VOREL_LOGE("vorel_init, error(%s)", error_text(errno, error));
    return;
  }
  const time_t now = std::time(nullptr);
  tm local{};
  tzset();  // localtime_r alone may keep the time zone that the process started with
  localtime_r(&now, &local);
  char time_text[32];
  std::strftime(time_text, sizeof(time_text), "%Y%m%d_%H%M%S", &local);
  const bool fits = format_text(path, "%s/%d_%s", base, sensor_id, time_text);
  if (!fits) errno = ENAMETOOLONG;
  if (!fits || !make_directory(path)) {
    VOREL_LOGE("vorel_init, error(%s) creating %s", error_text(errno, error), path);
    path[0] = '\0';
    return;
  }
  VOREL_LOGI("vorel_init, dump_path %s", path);
}
