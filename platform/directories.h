// Directories that the library reads from and writes to.
#ifndef VOREL_PLATFORM_DIRECTORIES_H_
#define VOREL_PLATFORM_DIRECTORIES_H_

// Holds the tuning files. "/vendor/firmware"; on hosts and in tests VOREL_FIRMWARE_DIR names
// another.
const char* firmware_directory();

// Holds one dump directory per handle. "/data/vendor/camera/vorel"; on hosts and in tests
// VOREL_DUMP_DIR names another.
const char* dump_directory();

#endif  // VOREL_PLATFORM_DIRECTORIES_H_
