#include "platform/directories.h"

const char* firmware_directory() { return "/vendor/firmware"; }

const char* dump_directory() { return "/data/vendor/camera/vorel"; }
