// Makes allocations, thread creation and other calls of the system fail on demand.
#ifndef VOREL_TESTS_SUPPORT_FAULTS_H_
#define VOREL_TESTS_SUPPORT_FAULTS_H_

// While an object lives, the `nth` (1-based) of the calls that the program's own objects make
// fails, on whatever thread it is made, and the later ones with it when asked for; 0 only counts.
// Test programs that use it link `test_faults`.
class FaultScope {
 public:
  enum class Kind {
    kAllocation,    // malloc, calloc, new (std::nothrow)
    kThreadCreate,  // pthread_create fails with EAGAIN
    kClock,         // gettimeofday
    // Only where harden/system_faults.cpp is linked, which adds clocks too.
    kLockSetUp,      // pthread_mutex_init, pthread_cond_init
    kAffinity,       // sched_setaffinity, sched_getaffinity
    kPriority,       // setpriority
    kThreadName,     // prctl
    kMakeDirectory,  // mkdir
    kOpenStream,     // fopen
    kWriteStream,    // fwrite writes nothing
    kCloseStream,    // fclose closes and fails
    kOpenFile,       // open
    kFileStatus,     // fstat
    kReadFile,       // read
  };
  enum class Span { kOnce, kFromThere };

  // Of threads only those that run `thread_function`, when it is not null.
  FaultScope(Kind kind, int nth, void* (*thread_function)(void*) = nullptr,
             Span span = Span::kOnce);
  ~FaultScope();
  FaultScope(const FaultScope&) = delete;
  FaultScope& operator=(const FaultScope&) = delete;

  // Calls seen so far, the failed one included.
  int calls() const;
  bool fired() const;

  // Whether a call of that kind, which this counts, has to fail.
  [[nodiscard]] static bool is_due(Kind kind);

  // Blocks that the program's own objects have from malloc, calloc or new (std::nothrow) and have
  // not given back. Only differences mean something, over calls that do not use the throwing new.
  [[nodiscard]] static int live_blocks();

 private:
  int nth_;
};

// Calls `body` with a scope in which the first call of that kind fails, then the second and so on,
// until `body` does not make that many; it then has had a run without a fault too. Returns the
// number of calls that failed.
template <typename Body>
int for_each_fault(FaultScope::Kind kind, Body body,
                   FaultScope::Span span = FaultScope::Span::kOnce) {
  for (int nth = 1;; ++nth) {
    const FaultScope fault(kind, nth, nullptr, span);
    body(nth);
    if (!fault.fired()) return nth - 1;
  }
}

#endif  // VOREL_TESTS_SUPPORT_FAULTS_H_
