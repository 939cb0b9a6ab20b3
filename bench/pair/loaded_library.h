// A libvorel.so at run time, called through its three calls: two of them can be compared in one
// process.
#ifndef VOREL_BENCH_PAIR_LOADED_LIBRARY_H_
#define VOREL_BENCH_PAIR_LOADED_LIBRARY_H_

#include <string>

#include "vorel/vorel.h"

class LoadedLibrary {
 public:
  // Throws std::runtime_error when the file is no such library.
  explicit LoadedLibrary(const std::string& path);

  decltype(&vorel_init) init;
  decltype(&vorel_run) run;
  decltype(&vorel_release_frame_buffers) release_frame_buffers;
  decltype(&vorel_deinit) deinit;
};

#endif  // VOREL_BENCH_PAIR_LOADED_LIBRARY_H_
