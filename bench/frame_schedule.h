// A frame's jobs, each timed alone on one processor, and the time they would take on any number.
#ifndef VOREL_BENCH_FRAME_SCHEDULE_H_
#define VOREL_BENCH_FRAME_SCHEDULE_H_

#include <string>
#include <vector>

#include "bench/bench_frames.h"

// What the driver thread does up to a wait, and the jobs that it then waits for.
struct FramePhase {
  std::string stage;  // empty between stages
  double serial_ms = 0;
  std::vector<double> job_ms;
};

// Runs frames through both paths with `workers` workers at hand, which the stages may cut their
// work for, but every job alone on the driver thread, on one processor. Times are the least of
// `rounds` frames.
std::vector<FramePhase> record_frame(const FrameSize& size, int workers, int rounds);

// Elapsed time of the phases of one stage, or of all (null), on `workers` workers: whoever is free
// first takes the next job, and the driver goes on when all have ended.
double scheduled_ms(const std::vector<FramePhase>& phases, const char* stage, int workers);

#endif  // VOREL_BENCH_FRAME_SCHEDULE_H_
