// The handle of a camera stream and the record of the frame in flight.
#ifndef VOREL_CORE_HANDLE_H_
#define VOREL_CORE_HANDLE_H_

#include <pthread.h>

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "platform/debug_levels.h"
#include "platform/frame_dumps.h"
#include "platform/plane_dump.h"
#include "threading/thread_pool_state.h"
#include "tuning/tuning.h"
#include "vorel/convert.h"
#include "vorel/filters.h"
#include "vorel/frame.h"
#include "vorel/thread_pool.h"
#include "vorel/tuning.h"
#include "vorel/vorel.h"

// Frames in flight per handle.
inline constexpr int VOREL_RING_SLOTS = 1;

inline constexpr int kPools = 3;
inline constexpr int kBoxFilterJobs = 64;
inline constexpr int kInterleaveJobs = 64;
inline constexpr int kCopyAndPadJobs = 4;
inline constexpr int kSaturationJobs = 4;
inline constexpr size_t kDumpPathSize = 128;

// Border of the half-precision planes on each side, in samples.
inline constexpr int kMfdBorder = 32;

// The threads that work on a handle's frames.
struct worker_options {
  int32_t count;
  uint32_t cpu_mask;
  int32_t nice;  // of the driver thread
  char thread_name[kThreadNameSize];
};

// What became of a frame's stages. Written by the driver thread.
struct frame_report {
  uint32_t ran;  // 1 << VOREL_STAGE_*
  uint32_t skipped;
  bool short_of_memory;  // why a stage was skipped; for want of workers otherwise
  bool had_workers;
  int64_t stage_usec[VOREL_STAGE_COUNT];

  void skip(int stage, bool for_memory) {
    skipped |= 1u << stage;
    short_of_memory = short_of_memory || for_memory;
  }
};

// One frame in flight: copies of the handle's fields and pointers into it. Filled by vorel_run,
// read by the driver thread and the stages.
struct vorel_thread {
  int32_t debug_mode;
  const char* dump_path;
  int32_t width;
  int32_t height;
  int32_t aligned_height;
  int32_t height_floor16;
  uint32_t format;
  cnr_tuning* tuning;
  uint8_t* in_address_1;
  uint8_t* in_address_2;
  uint8_t* packed_out;
  uint8_t* out_address_1;
  uint8_t* out_address_2;
  uint8_t* y_source;
  uint8_t* y_low;
  uint8_t* y_high;
  uint8_t* downsampled_y;
  uint8_t* downsampled_u;
  uint8_t* downsampled_v;
  uint8_t* filtered_y;
  uint8_t* filtered_u;
  uint8_t* filtered_v;
  uint8_t* upsampled_u;
  uint8_t* upsampled_v;
  _Float16* mfd_u;
  _Float16* mfd_v;
  int32_t mfd_width;
  int32_t mfd_height;
  pthread_mutex_t* slot_mutex;
  stage_record deinterleave_stage;
  stage_record box_filter_stage;
  stage_record yuv_stage;
  stage_record interleave_stage;
  box_filter_job box_jobs[kBoxFilterJobs];
  interleave_job interleave_jobs[kInterleaveJobs];
  pthread_t* preinit_thread;
  std::atomic<uint8_t>* preinit_joined;
  ThreadPool* pool[kPools];
  std::atomic<uint8_t>* pool_ready[kPools];
  const worker_options* workers;
  frame_report report;
};

// Argument of the pool-starting thread.
struct vorel_preinit_thread {
  ThreadPool* pool[kPools];
  std::atomic<uint8_t>* pool_ready[kPools];
  const worker_options* workers;
};

// Zero-filled at init.
struct vorel {
  vorel_thread thread[VOREL_RING_SLOTS];
  std::atomic<int32_t> slot;  // -1 until the first run
  pthread_t run_thread[VOREL_RING_SLOTS];
  pthread_mutex_t slot_mutex[VOREL_RING_SLOTS];
  vorel_preinit_thread preinit;
  pthread_t preinit_thread;
  std::atomic<uint8_t> preinit_joined;  // 1 when no pool-starting thread waits to be joined
  ThreadPool* pool[kPools];             // only the first is used
  std::atomic<uint8_t> pool_ready[kPools];
  int32_t width;
  int32_t height;
  int32_t aligned_height;  // height rounded up to a multiple of 16
  int32_t height_floor16;  // height rounded down to a multiple of 16
  uint32_t format;
  cnr_tuning tuning;
  int32_t sensorId;
  int32_t debug_mode;
  char dump_path[kDumpPathSize];
  uint8_t* in_address_1[VOREL_RING_SLOTS];
  uint8_t* in_address_2[VOREL_RING_SLOTS];
  uint8_t* out_address_1[VOREL_RING_SLOTS];
  uint8_t* out_address_2[VOREL_RING_SLOTS];
  uint8_t* packed_y;  // never allocated
  uint8_t* y_low;     // aligned_height x width
  uint8_t* y_high;
  uint8_t* downsampled_y;  // (aligned_height / 16) x (width / 16)
  uint8_t* downsampled_u;
  uint8_t* downsampled_v;
  uint8_t* filtered_y;
  uint8_t* filtered_u;
  uint8_t* filtered_v;
  uint8_t* upsampled_u;  // (aligned_height / 2) x (width / 2)
  uint8_t* upsampled_v;
  _Float16* mfd_u;  // mfd_height x mfd_width, allocated by each run that needs them
  _Float16* mfd_v;
  int32_t mfd_width;
  int32_t mfd_height;

  // What the frame guard needs to know: bytes of one full-size plane as allocated at init.
  int32_t luma_plane_bytes;

  worker_options workers;
  std::atomic<uint8_t> slot_abandoned;  // 1 while the slot is held by a call that has ended
  uint8_t* continued_frame;  // room for a frame that cannot be processed where it is, or null
  bool tuning_loaded;        // from a file or a text
  char tuning_version[kTuningVersionSize];
  char sensor_name[kSensorNameSize];
  dump_counts dumps;  // of the last frame
};

// Whether the stages may queue jobs.
[[nodiscard]] inline bool first_pool_ready(const vorel_thread* run) {
  return run->pool[0] != nullptr && run->pool_ready[0]->load(std::memory_order_acquire) != 0;
}

#endif  // VOREL_CORE_HANDLE_H_
