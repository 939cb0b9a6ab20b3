// The handle of a camera stream and the record of the frame in flight.
#ifndef VOREL_CORE_HANDLE_H_
#define VOREL_CORE_HANDLE_H_

#include <pthread.h>

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "convert/restore_strip.h"
#include "core/dump_directory.h"
#include "core/frame_planes.h"
#include "core/frame_pool.h"
#include "platform/debug_levels.h"
#include "platform/plane_dump.h"
#include "tuning/tuning.h"
#include "vorel/convert.h"
#include "vorel/filters.h"
#include "vorel/frame.h"
#include "vorel/tuning.h"
#include "vorel/vorel.h"

// Frames in flight per handle.
inline constexpr int VOREL_RING_SLOTS = 1;

// Strips of a frame; the init log line tells them.
inline constexpr int kBoxFilterJobs = 64;
inline constexpr int kInterleaveJobs = 64;

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

// One frame in flight. Filled by the calling thread, read by the driver thread, the stages and
// their jobs.
struct vorel_thread : frame_planes, stage_record {
  cnr_tuning* tuning;
  uint8_t* packed_out;
  uint8_t* y_source;
  box_filter_job box_jobs[kBoxFilterJobs];
  restore_strip interleave_jobs[kInterleaveJobs];
  bool whole_planes;  // upsampled planes are wanted, as dumps show them
  frame_pool* pool;
  int32_t nice;  // of the driver thread
  frame_report report;
};

// Zero-filled at init.
struct vorel : frame_planes {
  vorel_thread thread[VOREL_RING_SLOTS];
  std::atomic<int32_t> slot;  // -1 until the first run
  pthread_t run_thread[VOREL_RING_SLOTS];
  pthread_mutex_t slot_mutex[VOREL_RING_SLOTS];
  std::atomic<uint8_t> slot_abandoned;  // 1 while a call that has ended holds the slot
  frame_pool pool;
  int32_t driver_nice;
  cnr_tuning tuning;
  bool tuning_loaded;  // from a file or a text
  char tuning_version[kTuningVersionSize];
  char sensor_name[kSensorNameSize];
  int32_t sensorId;
  int32_t debug_mode;
  char dump_path[kDumpPathSize];
  int32_t luma_bytes;  // of one full-size plane as allocated at init
  spare_half_planes spare;
  uint8_t* continued_frame;  // room for a frame that cannot be processed where it is, or null
};

#endif  // VOREL_CORE_HANDLE_H_
