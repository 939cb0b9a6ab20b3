// The library as the command uses it: a handle, frames in place, failures as exceptions.
#ifndef VOREL_TOOLS_LIBRARY_ENGINE_H_
#define VOREL_TOOLS_LIBRARY_ENGINE_H_

#include <string>

#include "tools/pictures/picture.h"
#include "vorel/frame.h"

namespace tool {

// The library's functions; tests put others in.
struct LibraryCalls {
  decltype(&vorel_open) open = vorel_open;
  decltype(&vorel_denoise_frame) denoise_frame = vorel_denoise_frame;
  decltype(&vorel_get_handle_info) get_handle_info = vorel_get_handle_info;
  decltype(&vorel_deinit) deinit = vorel_deinit;
};

struct EngineSettings {
  Size size{};  // of the largest frame
  unsigned sensor = 0;
  std::string tuning;   // text of a tuning file
  std::string dumps{};  // an existing directory for all of the library's dumps; empty for none
};

class Engine {
 public:
  // Throws when the library gives no handle.
  explicit Engine(const EngineSettings& settings, const LibraryCalls& calls = {});
  ~Engine();
  Engine(const Engine&) = delete;
  Engine& operator=(const Engine&) = delete;

  // Denoises a frame of any size up to the settings' in place. `separate_planes` hands the planes
  // over as two buffers instead of one. Throws when the frame, or a part of it, was not processed.
  vorel_frame_info process(Nv21Frame& frame, bool separate_planes, int noise_index);

  [[nodiscard]] const vorel_handle_info& info() const { return info_; }

 private:
  LibraryCalls calls_;
  vorel* handle_ = nullptr;
  vorel_handle_info info_{};
};

}  // namespace tool

#endif  // VOREL_TOOLS_LIBRARY_ENGINE_H_
