// What frames cost: time, processor time, voluntary context switches and allocations.
#ifndef VOREL_BENCH_PAIR_FRAME_COST_H_
#define VOREL_BENCH_PAIR_FRAME_COST_H_

#include <cstddef>
#include <vector>

struct FrameCost {
  double wall_ms = 0;
  double cpu_ms = 0;  // of all threads, in the kernel too
  double switches = 0;
  double allocations = 0;
};

// Sums of the process so far; what lies between two of them is a frame's.
FrameCost cost_until_now();

FrameCost operator-(const FrameCost& after, const FrameCost& before);

// The value that the share `part` of the values does not exceed.
double percentile(std::vector<double> values, double part);

#endif  // VOREL_BENCH_PAIR_FRAME_COST_H_
