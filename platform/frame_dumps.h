// What becomes of a frame's dumps: one error line a frame, and counts for whoever asks.
#ifndef VOREL_PLATFORM_FRAME_DUMPS_H_
#define VOREL_PLATFORM_FRAME_DUMPS_H_

#include <cstdint>

struct dump_counts {
  int32_t written;
  int32_t failed;
  int32_t error;  // errno of the first failure, 0 without one
};

// While an object lives, dumps to `folder` belong to its frame, whichever thread and class writes
// them: the frame is found by the folder's name, all that an exported class is told. A second frame
// with the same folder at the same time counts with one of the two. `folder` must outlive the
// object. Does nothing at debug levels without dumps.
class FrameDumps {
 public:
  FrameDumps(int32_t debug_mode, const char* folder);
  ~FrameDumps();
  FrameDumps(const FrameDumps&) = delete;
  FrameDumps& operator=(const FrameDumps&) = delete;

  // So far.
  [[nodiscard]] dump_counts counts() const;

 private:
  friend bool count_dump(const char* folder, int error);

  bool enabled_;
  const char* folder_;
  dump_counts counts_{};
  FrameDumps* next_ = nullptr;
};

// Counts a dump that was written (`error` 0) or failed. Returns whether a failure is to be logged:
// the first one of a frame, and every one outside a frame.
bool count_dump(const char* folder, int error);

#endif  // VOREL_PLATFORM_FRAME_DUMPS_H_
