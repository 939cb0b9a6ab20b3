// The library as the command uses it: a handle, frames in place, failures as exceptions.
#ifndef VOREL_TOOLS_LIBRARY_ENGINE_H_
#define VOREL_TOOLS_LIBRARY_ENGINE_H_

#include <string>

#include "tools/library/library_log.h"
#include "tools/pictures/picture.h"
#include "vorel/vorel.h"

namespace tool {

// The library's functions; tests put others in.
struct LibraryCalls {
  decltype(&vorel_init) init = vorel_init;
  decltype(&vorel_run) run = vorel_run;
  decltype(&vorel_release_frame_buffers) release_frame_buffers = vorel_release_frame_buffers;
  decltype(&vorel_deinit) deinit = vorel_deinit;
};

struct FrameReport {
  double milliseconds = 0.0;
  bool skipped = false;        // by the noise index
  int enable_noise_index = 0;  // of the tuning, known when skipped
};

class Engine {
 public:
  // Frames of `size`, which the library must be able to take. Throws when it gives no handle.
  Engine(Size size, unsigned sensor, LibraryLog& log, const LibraryCalls& calls);
  ~Engine();
  Engine(const Engine&) = delete;
  Engine& operator=(const Engine&) = delete;

  // Denoises the frame in place; throws when the library says that it did not. `separate_planes`
  // hands the planes over as two buffers (NM21) instead of one (NV21).
  FrameReport process(Nv21Frame& frame, bool separate_planes, int noise_index);

  // Whether a tuning file was read, and its date as far as it has one.
  [[nodiscard]] bool tuning_loaded() const { return tuning_loaded_; }
  [[nodiscard]] const std::string& tuning_date() const { return tuning_date_; }
  // Where the library writes its dumps; empty when it writes none.
  [[nodiscard]] const std::string& dump_directory() const { return dump_directory_; }

 private:
  LibraryLog& log_;
  LibraryCalls calls_;
  vorel* handle_ = nullptr;
  bool tuning_loaded_ = false;
  std::string tuning_date_;
  std::string dump_directory_;
};

}  // namespace tool

#endif  // VOREL_TOOLS_LIBRARY_ENGINE_H_
