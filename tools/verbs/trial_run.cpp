#include "tools/verbs/trial_run.h"

#include "tools/measure/frame_view.h"

namespace tool {

Removal try_noise_index(const Nv21Frame& frame, int noise_index, EngineSettings settings,
                        const LibraryCalls& calls) {
  settings.size = {frame.width, frame.height};
  Engine engine(settings, calls);
  Nv21Frame denoised = frame;
  engine.process(denoised, false, noise_index);
  return measure_removal(view_of(frame), view_of(denoised));
}

}  // namespace tool
