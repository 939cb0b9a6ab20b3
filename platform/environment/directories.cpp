#include "platform/directories.h"

#include <cstdlib>

namespace {

const char* override_or(const char* variable, const char* directory) {
  // Nobody sets variables while handles are opened. NOLINTNEXTLINE(concurrency-mt-unsafe)
  const char* named = std::getenv(variable);
  return named != nullptr && named[0] != '\0' ? named : directory;
}

}  // namespace

const char* firmware_directory() { return override_or("VOREL_FIRMWARE_DIR", "/vendor/firmware"); }

const char* dump_directory() { return override_or("VOREL_DUMP_DIR", "/data/vendor/camera/vorel"); }
