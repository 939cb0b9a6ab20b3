#include "bench/frame_schedule.h"

#include <sched.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <utility>

#include "tests/support/log_sink.h"
#include "threading/run_jobs.h"
#include "vorel/frame.h"
#include "vorel/trace.h"

namespace {

void drop_line(int, const char*, const char*) {}

// Android's benchmarks have no exceptions.
[[noreturn]] void give_up(const char* reason) {
  std::fprintf(stderr, "frame_schedule: %s\n", reason);
  std::abort();
}

[[nodiscard]] bool is_stage(const std::string& slice) {
  return slice == "MFD_UV" || slice.starts_with("vorel_");
}

// One frame as the driver thread goes through it. All of it happens on that thread.
class Recorder {
 public:
  static Recorder* current;

  void begin() {
    phases_.clear();
    begin_phase("");
  }
  std::vector<FramePhase> end() {
    add_serial();
    return std::move(phases_);
  }

  void run(const job_batch& batch) {
    add_serial();
    char* record = batch.record;
    for (int i = 0; i < batch.count; ++i, record += batch.stride) {
      mark_ms_ = now_ms();
      batch.function(record);
      phases_.back().job_ms.push_back(since_mark());
    }
    begin_phase(phases_.back().stage);
  }

  // Stages are the outermost slices of the driver thread.
  static void receive(void* self, int32_t kind, const char* name, int64_t) {
    auto* recorder = static_cast<Recorder*>(self);
    if (kind == VOREL_TRACE_COUNTER) return;
    const bool begins = kind == VOREL_TRACE_BEGIN;
    if (begins) ++recorder->depth_;
    if (recorder->depth_ == 1) {
      recorder->add_serial();
      recorder->begin_phase(begins ? name : "");
    }
    if (!begins) --recorder->depth_;
  }

 private:
  // A stage counts by processor time, so that what else runs on the machine does not; the rest of a
  // frame, which is mostly waiting for threads and not on one thread, by the wall clock.
  [[nodiscard]] double now_ms() const {
    timespec now{};
    clock_gettime(is_stage(phases_.back().stage) ? CLOCK_THREAD_CPUTIME_ID : CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
  }
  [[nodiscard]] double since_mark() const { return now_ms() - mark_ms_; }
  void add_serial() { phases_.back().serial_ms += since_mark(); }
  void begin_phase(const std::string& stage) {
    phases_.emplace_back().stage = stage;
    mark_ms_ = now_ms();
  }

  double mark_ms_ = 0;
  std::vector<FramePhase> phases_;
  int depth_ = 0;
};

Recorder* Recorder::current = nullptr;

// Keeps this thread, and those that it creates, on one processor.
class OneProcessor {
 public:
  OneProcessor() {
    sched_getaffinity(0, sizeof(before_), &before_);
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(static_cast<size_t>(sched_getcpu()), &one);
    sched_setaffinity(0, sizeof(one), &one);
  }
  ~OneProcessor() { sched_setaffinity(0, sizeof(before_), &before_); }
  OneProcessor(const OneProcessor&) = delete;
  OneProcessor& operator=(const OneProcessor&) = delete;

 private:
  cpu_set_t before_;
};

void keep_least(std::vector<FramePhase>* least, const std::vector<FramePhase>& phases) {
  if (least->empty()) *least = phases;
  if (least->size() != phases.size()) give_up("frames differ in their phases");
  for (size_t i = 0; i < phases.size(); ++i) {
    FramePhase& kept = (*least)[i];
    if (kept.job_ms.size() != phases[i].job_ms.size()) give_up("frames differ in their jobs");
    kept.serial_ms = std::min(kept.serial_ms, phases[i].serial_ms);
    for (size_t k = 0; k < kept.job_ms.size(); ++k) {
      kept.job_ms[k] = std::min(kept.job_ms[k], phases[i].job_ms[k]);
    }
  }
}

}  // namespace

// The program is linked so that the stages' calls of run_batch and usable_cpus come here: jobs run
// one by one, and are cut as on a machine with a processor for every worker.
extern "C" {
int __real__Z11usable_cpusv();
int __wrap__Z11usable_cpusv() {
  constexpr int kMany = 64;
  return Recorder::current == nullptr ? __real__Z11usable_cpusv() : kMany;
}

void __real__Z9run_batchP10ThreadPool9job_batch(ThreadPool* pool, job_batch batch);
void __wrap__Z9run_batchP10ThreadPool9job_batch(ThreadPool* pool, job_batch batch) {
  if (Recorder::current == nullptr) {
    __real__Z9run_batchP10ThreadPool9job_batch(pool, batch);
  } else {
    Recorder::current->run(batch);
  }
}
}

std::vector<FramePhase> record_frame(const FrameSize& size, int workers, int rounds) {
  static constexpr char kBothPaths[] =
      R"([{"enableNoiseIndex": 0, "enable": 1, "MFD_UV_tuning": {"enable": 1}}])";
  set_log_sink<drop_line>();
  vorel_options options = vorel_default_options(size.width, size.height);
  options.workers = workers;
  options.tuning_text = kBothPaths;
  options.tuning_text_bytes = sizeof(kBothPaths) - 1;
  const std::unique_ptr<vorel, decltype(&vorel_deinit)> handle(vorel_open(&options, nullptr),
                                                               vorel_deinit);
  std::vector<uint8_t> bytes = make_bench_plane(size.frame_bytes(), 5);
  const vorel_frame frame{sizeof(frame), bytes.data(),      bytes.data() + size.luma_bytes(),
                          size.width,    size.width,        size.width,
                          size.height,   VOREL_LAYOUT_NV21, 640};
  const auto run = [&] {
    if (vorel_denoise_frame(handle.get(), &frame, nullptr) != VOREL_DONE) {
      give_up("a frame was not denoised");
    }
  };
  run();
  std::vector<FramePhase> least;
  const OneProcessor one;
  for (int i = 0; i < rounds; ++i) {
    Recorder recorder;
    Recorder::current = &recorder;
    vorel_set_trace_sink(Recorder::receive, &recorder);
    recorder.begin();
    run();
    const std::vector<FramePhase> phases = recorder.end();
    vorel_set_trace_sink(nullptr, nullptr);
    Recorder::current = nullptr;
    keep_least(&least, phases);
  }
  return least;
}

double scheduled_ms(const std::vector<FramePhase>& phases, const char* stage, int workers) {
  double elapsed = 0;
  for (const FramePhase& phase : phases) {
    if (stage != nullptr && phase.stage != stage) continue;
    std::vector<double> free_at(static_cast<size_t>(workers), 0.0);
    for (const double job : phase.job_ms) *std::min_element(free_at.begin(), free_at.end()) += job;
    elapsed += phase.serial_ms + *std::max_element(free_at.begin(), free_at.end());
  }
  return elapsed;
}
